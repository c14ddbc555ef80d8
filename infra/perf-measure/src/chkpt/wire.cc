// SPDX-License-Identifier: Apache-2.0
// Reads tags, varints and fixed-size numbers, and passes over fields that nobody asked for.
#include "chkpt/wire.h"

namespace chkpt_wire {

varint read_long_varint(input from) {
    constexpr unsigned BITS = 64;
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < BITS; shift += GROUP_BITS) {
        if (from.empty()) {
            return {0, nullptr};
        }
        const std::uint64_t byte = *from.at++;
        number |= (byte & (MORE - 1)) << shift;
        if (byte < MORE) {
            return {number, from.at};
        }
    }
    while (!from.empty()) {
        if (*from.at++ < MORE) {
            return {number, from.at};
        }
    }
    return {0, nullptr};
}

}  // namespace chkpt_wire
