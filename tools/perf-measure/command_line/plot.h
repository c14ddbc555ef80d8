// SPDX-License-Identifier: Apache-2.0
// The plot of a history, in the terminal and as a picture.
#pragma once

#include "perf-measure/command_line/invocation.h"
#include "perf-measure/phrases/parser.h"

namespace perf_measure {

// Draws what the words ask for. The result is an exit status; everything has been reported.
[[nodiscard]] int plot(const words_command &command, const invocation &given);

}  // namespace perf_measure
