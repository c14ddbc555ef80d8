// SPDX-License-Identifier: Apache-2.0
// The counters of the records: members that only grow until their process starts anew. And the time stamps, by which
// a growth becomes a rate.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/parcel.h"

namespace perf_store {

// Whether numbers of that name are counters, or time stamps in milliseconds since 1970.
[[nodiscard]] bool is_counter(std::string_view member);
[[nodiscard]] bool is_time_stamp(std::string_view member);

// How a counter of 32 or 64 bits came from `from` to `to`, in words: "+20", "+20, 2.000/s", "+12 (wrapped), 1.200/s" or
// "reset". A counter that went back has wrapped when the way forward is shorter than half its range; else it was
// reset, and nobody knows by how much it has grown. There is no rate when the interval is 0.
[[nodiscard]] std::string counter_change(std::uint64_t from, std::uint64_t to, unsigned bits,
                                         std::uint64_t interval_msec);

// The greatest time stamp within a record; 0 when it has none.
[[nodiscard]] std::uint64_t newest_time_stamp(const void *record, const parcel_descriptor *type);

}  // namespace perf_store
