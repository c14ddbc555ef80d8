// SPDX-License-Identifier: Apache-2.0
// A command's output on a terminal: with colours, and through a pager.
#pragma once

#include <functional>

namespace perf_measure {

// Whether standard output is a terminal on which terminal_show() does more than the command alone.
[[nodiscard]] bool wants_terminal_show(bool with_pager);

// Runs `body` in a child, colours what it prints, and passes it through the pager if that is wanted and there is
// one. The result is the child's exit status; 0 when the user left the pager before the end.
[[nodiscard]] int terminal_show(const std::function<int()> &body, bool with_pager);

}  // namespace perf_measure
