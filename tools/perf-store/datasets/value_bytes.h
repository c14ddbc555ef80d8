// SPDX-License-Identifier: Apache-2.0
// Single values put into the structures of records, for both readers of JSON.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "perf-store/datasets/record_shape.h"
#include "platform/local/codec/parcel_wire.h"

namespace perf_store {

inline constexpr std::uint32_t IPV4_VALUE = 0;  // discriminators of an address
inline constexpr std::uint32_t IPV6_VALUE = 1;
inline constexpr std::uint32_t NONE_VALUE = 2;

inline constexpr std::uint64_t MAX_U32 = std::numeric_limits<std::uint32_t>::max();
inline constexpr std::uint64_t MAX_ENUMERATOR = std::numeric_limits<std::int32_t>::max();

using parcel_wire::put;

// A number of 1, 2, 4 or 8 bytes.
inline void put_unsigned(std::uint8_t *to, std::uint64_t value, std::uint32_t size) {
    switch (size) {
    case 1: put(to, static_cast<std::uint8_t>(value)); break;
    case 2: put(to, static_cast<std::uint16_t>(value)); break;
    case 4: put(to, static_cast<std::uint32_t>(value)); break;
    default: put(to, value); break;
    }
}

[[nodiscard]] inline std::uint64_t largest_of(std::uint32_t size) { return ~0ULL >> (64 - 8 * size); }

// Whether a value of 64 bits is within an int32 or, without a minus, within `largest`.
[[nodiscard]] inline bool fits_32_bits(std::uint64_t value, bool negative, std::uint64_t largest) {
    return negative ? static_cast<std::int64_t>(value) >= std::numeric_limits<std::int32_t>::min() : value <= largest;
}

// The union that every address is, from its text; false for what is no address.
[[nodiscard]] bool put_address(std::string_view text, const record_shape &shape, std::uint8_t *to);
// An IPv4 address, IPv6 address or MAC address, as the type says.
[[nodiscard]] bool put_octets(std::string_view text, const value_shape &shape, std::uint8_t *to);

}  // namespace perf_store
