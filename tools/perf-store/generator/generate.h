// SPDX-License-Identifier: Apache-2.0
// Synthetic data sets: a router's state of any size, for tests and measurements.
#pragma once

#include "base/pm_error.h"
#include "perf-store/datasets/output_file.h"
#include "perf-store/generator/gen_options.h"

namespace perf_store {

// Whether every number is within its limit (gen_options.h).
[[nodiscard]] bool within_limits(const gen_options &options);

// Writes a data set, the same bytes for the same options, which must be within their limits. Memory does
// not grow with the size of the set. The error is why the file cannot be written.
[[nodiscard]] pm_error generate(const gen_options &options, output_file *out);

}  // namespace perf_store
