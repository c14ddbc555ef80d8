// SPDX-License-Identifier: Apache-2.0
// The interactive mode: each line is a command, in a process of its own.
#pragma once

namespace perf_measure {

// Reads commands from the terminal until the user leaves; the exit status of the last one.
[[nodiscard]] int run_session();

}  // namespace perf_measure
