// SPDX-License-Identifier: Apache-2.0
// One of the two states that are compared: a data set or a store, read whole and sorted.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "base/pm_error.h"
#include "perf-store/diff/sorted_spool.h"

namespace perf_store {

struct diff_side {
    // Keys of object_key.h. An item's value is its parcel, that of any other object its line in a dump.
    sorted_spool objects;
    std::vector<std::uint32_t> inventory;  // ids of the nodes in their order
    // The newest time stamp in the records of each node, in milliseconds since 1970, where it was asked for.
    std::map<std::uint32_t, std::uint64_t> newest;
};

struct diff_source {
    std::string name;         // a file, "-" for standard input, or a store's URL
    bool configured = false;  // the store of OPSTORE_URL, and no name
};

// Reads a state. The error is the whole message: for a data set as a load tells it, "FILE:LINE: MEMBER: what", else
// "perf-store: what".
[[nodiscard]] pm_error read_side(const diff_source &source, bool with_time_stamps, diff_side *side);

}  // namespace perf_store
