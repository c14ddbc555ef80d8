// SPDX-License-Identifier: Apache-2.0
// What decoder, encoder and header share: bytes of the wire form and of the structures.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/local/codec/parcel_plan.h"

namespace parcel_wire {

inline constexpr std::size_t MAX_VARINT = 5;  // bytes of a 32-bit number

// Any array in a structure, whatever its elements.
using generic_array = parcel_array<std::uint8_t>;

template <class T>
T load(const void *from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <class T>
void put(void *to, T value) {
    std::memcpy(to, &value, sizeof value);
}

// Reads a number of 7 bits a byte at `at`; returns where it ends, null when it is cut or
// takes more than 32 bits.
inline const std::uint8_t *read_varint(const std::uint8_t *at, const std::uint8_t *end, std::uint32_t *value) {
    if (at < end && *at < 0x80) {
        *value = *at;
        return at + 1;
    }
    std::uint64_t result = 0;
    for (std::size_t i = 0; i < MAX_VARINT && at < end; ++i) {
        const std::uint8_t byte = *at++;
        result |= std::uint64_t{byte & 0x7FU} << (7 * i);
        if (byte < 0x80) {
            *value = static_cast<std::uint32_t>(result);
            return result <= 0xFFFFFFFF ? at : nullptr;
        }
    }
    return nullptr;
}

// The arm of a union that a discriminator value selects; null when the value is not listed.
inline const parcel_plan::plan_arm *find_arm(const parcel_plan::record_plan &plan, const parcel_plan::plan_step &step,
                                             std::uint32_t value) {
    for (std::uint32_t i = 0; i < step.count; ++i) {
        if (plan.arms[step.first_arm + i].value == value) {
            return &plan.arms[step.first_arm + i];
        }
    }
    return nullptr;
}

}  // namespace parcel_wire
