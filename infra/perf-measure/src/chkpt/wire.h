// SPDX-License-Identifier: Apache-2.0
// The binary form of Protocol Buffers, as far as checkpoint blobs use it: numbers, tags, and how to
// pass over a field. For the files of chkpt only.
#pragma once

#include <cstddef>
#include <cstdint>

namespace chkpt_wire {

enum type : std::uint32_t {
    VARINT = 0,
    FIXED64 = 1,
    LENGTH_DELIMITED = 2,
    FIXED32 = 5,
};

// The low bits of a tag; the others are the field number.
inline constexpr unsigned TYPE_BITS = 3;

struct tag {
    std::uint32_t value;

    [[nodiscard]] std::uint32_t number() const { return value >> TYPE_BITS; }
    [[nodiscard]] std::uint32_t type() const { return value & ((1U << TYPE_BITS) - 1); }
};

// Bytes that are still to be read. A length is compared with what is left and never added to a
// position, so none can wrap.
struct input {
    const std::uint8_t *at;
    const std::uint8_t *end;

    [[nodiscard]] bool empty() const { return at == end; }
    [[nodiscard]] std::size_t left() const { return static_cast<std::size_t>(end - at); }
};

inline constexpr std::uint8_t MORE = 0x80;  // another byte of the number follows
inline constexpr unsigned GROUP_BITS = 7;   // bits of the number in each byte

// A number that was read and where its bytes end; null when the input ends first.
struct varint {
    std::uint64_t number;
    const std::uint8_t *end;
};

// Reads a number of any length. Bits above the 64th are dropped.
[[nodiscard]] varint read_long_varint(input from);

// Reads a number, of which `Number` keeps the low bits; false when the bytes end first.
template <class Number>
[[nodiscard]] inline bool read_varint(input &from, Number &number) {
    if (!from.empty() && *from.at < MORE) {
        number = *from.at++;
        return true;
    }
    const varint read = read_long_varint(from);
    if (read.end == nullptr) {
        return false;
    }
    number = static_cast<Number>(read.number);
    from.at = read.end;
    return true;
}

// Reads a length and takes that many bytes; false when there are fewer.
[[nodiscard]] inline bool take(input &from, input &taken) {
    std::uint32_t length = 0;
    if (!read_varint(from, length) || length > from.left()) {
        return false;
    }
    taken = {from.at, from.at + length};
    from.at += length;
    return true;
}

// Passes over `size` bytes, or to the end when there are fewer.
inline void skip(input &from, std::size_t size) { from.at = size < from.left() ? from.at + size : from.end; }

}  // namespace chkpt_wire
