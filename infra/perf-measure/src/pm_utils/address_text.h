// SPDX-License-Identifier: Apache-2.0
// Texts of MAC addresses and prefixes. Those of the addresses of the measurement engine are in
// unshown_address_text.h.
//
// Unless stated otherwise a result is borrowed from the rotating slots (text_ring.h): the tenth
// result after it, of whatever routine that uses the slots, overwrites it. A routine takes its slot
// even when it returns a constant.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/address.h"

inline constexpr std::size_t PM_MAC_SIZE = 6;

using pm_prefix_t = ip_prefix;

// "0011.2233.4455" of `length` bytes, of which at most 6 are read, in a buffer of its own that the next
// call overwrites. A length below 1 returns the text of the call before.
[[nodiscard]] const char *pm_mac_to_dotted_str(const std::uint8_t *bytes, std::int32_t length);

// "10.1.0.0/16"; "Empty prefix" for null.
[[nodiscard]] const char *pm_prefix_str(const pm_prefix_t *prefix);
