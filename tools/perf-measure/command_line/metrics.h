// SPDX-License-Identifier: Apache-2.0
// Metrics: written once, into a file, or served.
#pragma once

#include "perf-measure/command_line/invocation.h"
#include "perf-measure/phrases/parser.h"

namespace perf_measure {

// Writes the metrics that the words ask for where the options say. The result is an exit status; everything has been
// reported. Nothing is written of a store that cannot be read.
[[nodiscard]] int metrics(const words_command &command, const invocation &given);

}  // namespace perf_measure
