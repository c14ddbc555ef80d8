// SPDX-License-Identifier: Apache-2.0
// Repeats a command: full-screen with what has changed on a terminal, as plain blocks elsewhere.
#pragma once

#include <functional>
#include <string>

namespace perf_measure {

inline constexpr double SHORTEST_INTERVAL_SEC = 0.1;
inline constexpr double LONGEST_INTERVAL_SEC = 86400;
inline constexpr double DEFAULT_INTERVAL_SEC = 2;

// Runs `body` in a child every `interval_sec` seconds. On a terminal the last output is kept on the screen, and
// the arrow keys move over it; q ends with the command's last exit status, Ctrl-C and other signals with 128 and
// the signal's number, and the terminal is as it was before. Elsewhere each output follows a line with the time,
// until a signal comes or the reader goes away (then 0).
[[nodiscard]] int watch(const std::function<int()> &body, double interval_sec, const std::string &title);

}  // namespace perf_measure
