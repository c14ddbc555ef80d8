// SPDX-License-Identifier: Apache-2.0
// Big-endian numbers in packet bytes. The caller has checked that they are within its buffer.
#pragma once

#include <cstddef>
#include <cstdint>

namespace probed {

inline void put_u16(std::uint8_t *to, std::uint16_t value) {
    to[0] = static_cast<std::uint8_t>(value >> 8);
    to[1] = static_cast<std::uint8_t>(value);
}

inline void put_u32(std::uint8_t *to, std::uint32_t value) {
    put_u16(to, static_cast<std::uint16_t>(value >> 16));
    put_u16(to + 2, static_cast<std::uint16_t>(value));
}

inline void put_u64(std::uint8_t *to, std::uint64_t value) {
    put_u32(to, static_cast<std::uint32_t>(value >> 32));
    put_u32(to + 4, static_cast<std::uint32_t>(value));
}

[[nodiscard]] inline std::uint16_t get_u16(const std::uint8_t *from) {
    return static_cast<std::uint16_t>((from[0] << 8) | from[1]);
}

[[nodiscard]] inline std::uint32_t get_u32(const std::uint8_t *from) {
    return (static_cast<std::uint32_t>(get_u16(from)) << 16) | get_u16(from + 2);
}

[[nodiscard]] inline std::uint64_t get_u64(const std::uint8_t *from) {
    return (static_cast<std::uint64_t>(get_u32(from)) << 32) | get_u32(from + 4);
}

}  // namespace probed
