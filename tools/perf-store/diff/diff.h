// SPDX-License-Identifier: Apache-2.0
// Two states of a router, compared object by object and member by member.
#pragma once

#include "base/pm_error.h"
#include "perf-store/datasets/output_file.h"
#include "perf-store/diff/diff_side.h"
#include "perf-store/diff/record_differences.h"

namespace perf_store {

// Takes the objects of both, and writes a line for each difference: in the order of the objects' keys, of an item in
// the order of its record's members. `*same` tells that there was none. The error, which names the object or the file
// that cannot be written, is no whole message.
[[nodiscard]] pm_error write_differences(diff_side *from, diff_side *to, comparison_options options, output_file *out,
                                         bool *same);

}  // namespace perf_store
