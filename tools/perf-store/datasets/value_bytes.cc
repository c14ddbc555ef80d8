// SPDX-License-Identifier: Apache-2.0
// Addresses into their fields.
#include "perf-store/datasets/value_bytes.h"

#include "perf-store/datasets/value_text.h"

namespace perf_store {

bool put_address(std::string_view text, const record_shape &shape, std::uint8_t *to) {
    if (parse_ipv4(text, to + shape.arm_of(IPV4_VALUE)->offset)) {
        put(to, IPV4_VALUE);
        return true;
    }
    put(to, IPV6_VALUE);
    return parse_ipv6(text, to + shape.arm_of(IPV6_VALUE)->offset);
}

bool put_octets(std::string_view text, const value_shape &shape, std::uint8_t *to) {
    if (shape.what == parcel_notation::kind::ipv4) {
        return parse_ipv4(text, to);
    }
    return shape.format == 's' ? parse_ipv6(text, to) : parse_mac(text, to);
}

}  // namespace perf_store
