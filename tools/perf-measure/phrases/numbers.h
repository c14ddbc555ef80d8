// SPDX-License-Identifier: Apache-2.0
// From the options of perf-show back to words, for documents and for those who have the numbers.
#pragma once

#include <string>
#include <vector>

namespace perf_measure {

// The words for options of perf-show, each letter and each argument a text of its own: "show interfaces brief" for
// -c 1 -b. Empty for options that no phrase has, or that no phrase has together.
[[nodiscard]] std::string words_of(const std::vector<std::string> &letters);

}  // namespace perf_measure
