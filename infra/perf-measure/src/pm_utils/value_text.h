// SPDX-License-Identifier: Apache-2.0
// Texts of interfaces, counts and cut names.
//
// Unless stated otherwise a result is borrowed from the rotating slots (text_ring.h): the tenth
// result after it, of whatever routine that uses the slots, overwrites it. A routine takes its slot
// even when it returns a constant.
#pragma once

#include <cstddef>
#include <cstdint>

// Name and handle, "eth0/1/0/4 (ifh: 0x2a) " with a blank at the end. Borrowed from two buffers of
// its own, valid until the next call but one.
[[nodiscard]] const char *pm_ifh_str(std::uint32_t ifhandle);

// The number, or "All" for zero.
[[nodiscard]] const char *pm_count_or_all_str(std::uint32_t count);

// `name` if it has at most `trunc_len` characters, else its first `trunc_len` and "..". Null for
// null, which takes no slot. A `trunc_len` above 253 aborts.
[[nodiscard]] const char *pm_truncate_name(const char *name, std::size_t trunc_len);
