// SPDX-License-Identifier: Apache-2.0
// Compares two records of one type, member by member, with no code per type.
//
// Texts, numbers, addresses and the like compare by their values, an absent optional and an absent text as null. Arrays
// compare element by element, by index; elements that only one of them has are added or removed. A union whose arm
// changed tells its discriminator, and its arms as removed and added. Values are written as a data set has them,
// without the members that are zero, false, absent or empty.
#pragma once

#include <cstdint>

#include "base/pm_error.h"
#include "perf-store/diff/differences.h"
#include "perf-store/diff/ignored_members.h"
#include "platform/parcel.h"

namespace perf_store {

struct comparison_options {
    ignored_members ignored;
    bool counters = false;            // say how counters grew
    std::uint64_t interval_msec = 0;  // between the two states, where the records do not tell; 0: not known
    bool interval_given = false;      // by the user, who knows better than the records
};

// Tells the differences of what begin_object named last. The error is a text that JSON cannot hold.
[[nodiscard]] pm_error compare_records(const void *from, const void *to, const parcel_descriptor *type,
                                       const comparison_options &options, differences *out);

}  // namespace perf_store
