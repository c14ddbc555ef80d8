// SPDX-License-Identifier: Apache-2.0
// Completion for shells.
#pragma once

#include <string>
#include <vector>

namespace perf_measure {

// Writes the candidates for the last of the words, or of the words of a line after "--line", to standard output, one a
// line: the word, a tab, and its help, which is "..." for the beginning of several names. EXIT_SHOWN.
[[nodiscard]] int print_candidates(const std::vector<std::string> &words);

}  // namespace perf_measure
