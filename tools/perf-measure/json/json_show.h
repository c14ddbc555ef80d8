// SPDX-License-Identifier: Apache-2.0
// A show as JSON: one object for each item, each on a line.
#pragma once

#include <vector>

#include "base/pm_error.h"
#include "perf-measure/items/outcome.h"

namespace perf_measure {

// Writes the items that pm_show_options ask for to standard output:
//
//     {"node":256,"node_name":"rp0","root":"main","path":"summary","type":"pm_summary_parcel","record":{...}}
//
// and, after them, an object for each node that could not be read:
//
//     {"node":16,"node_name":"lc0","error":"Publisher stopped","code":"0x40819000"}
//
// `record` is as in a data set: a member that is zero, false, absent or empty is left out. A checkpoint item also
// has `message`, its decoded blob. With `pretty` each object is on several lines.
//
// The failures are those that count. The error is why standard output takes no more; a reader that goes away ends
// the program quietly.
[[nodiscard]] pm_error write_json(bool pretty, std::vector<node_failure> *failures);

}  // namespace perf_measure
