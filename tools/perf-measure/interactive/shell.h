// SPDX-License-Identifier: Apache-2.0
// Reads commands from the terminal, line by line.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "perf-measure/completion/candidates.h"

namespace perf_measure {

// Runs one command in words; its exit status.
using command_runner = std::function<int(const std::vector<std::string> &words)>;

// Reads lines with editing, history, Tab and ? until "exit", "quit" or the end of the input. The result is the exit
// status of the last command.
[[nodiscard]] int run_shell(const command_runner &run, const name_lister &names);

}  // namespace perf_measure
