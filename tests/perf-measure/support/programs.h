// SPDX-License-Identifier: Apache-2.0
// The programs that tests of perf-measure run.
#pragma once

#include <string>

#include "tests/support/command.h"

// When the example chassis was captured, so that its ages are those of then.
inline constexpr char CAPTURED[] = "export PERF_SHOW_NOW=1709647390000; ";

// Runs perf-measure with these words on a store, away from any terminal.
inline command_result measure(const std::string &words, const std::string &store) {
    return run_command(CAPTURED + std::string("perf-measure ") + words + " </dev/null", store);
}
