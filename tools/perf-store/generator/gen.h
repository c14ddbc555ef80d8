// Synthetic data sets: a router's state of any size, for tests and measurements.
#pragma once

#include "perf-store/generator/gen_options.h"

namespace perf_store {

// Writes a data set to standard output, the same bytes for the same options. Memory does not grow with
// the size of the set. Returns the exit status; reports what went wrong, and EXIT_USAGE for options
// beyond their limits.
[[nodiscard]] int run_gen(const gen_options &options);

}  // namespace perf_store
