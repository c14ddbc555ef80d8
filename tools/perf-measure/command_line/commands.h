// SPDX-License-Identifier: Apache-2.0
// What the words of a command line do.
#pragma once

#include "perf-measure/command_line/invocation.h"

namespace perf_measure {

// Runs one command. The result is the exit status; everything has been reported.
[[nodiscard]] int run_command(const invocation &given);

}  // namespace perf_measure
