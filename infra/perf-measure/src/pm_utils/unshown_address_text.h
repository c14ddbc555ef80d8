// SPDX-License-Identifier: Apache-2.0
// Called by no show: texts of addresses and keys as the measurement engine has them.
//
// Unless it says otherwise a routine gives a result that is borrowed from the rotating slots (text_ring.h): the tenth
// result after it, of whatever routine that uses the slots, overwrites it. A routine takes its slot
// even when it returns a constant.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pm_utils/unshown_address.h"

// Kind and value, "IPv4 10.1.1.1" or "Ethernet 0011.2233.4455"; the kind alone when there is no
// value, "Unknown" for null. Overwrites the result of pm_mac_to_dotted_str for Ethernet.
[[nodiscard]] const char *pm_address_to_str(const pm_address_type *address);

// The value alone. Null for null and for an address without a value. IP texts are borrowed from
// the platform (platform/address.h) and take no slot.
[[nodiscard]] const char *pm_address_value_str(const pm_address_type *address);

// "0011.2233.4455" of 6 bytes, which are never null.
[[nodiscard]] const char *pm_mac_str(const std::uint8_t *mac);

// Writes "IPv4-10.0.0.1-vrf-default" into `dst` of `n` bytes, cut to fit and terminated. Does
// nothing for a null pointer or no room.
void pm_endpoint_key_str(const pm_address_type *addr, const char *vrf, char *dst, std::size_t n);
