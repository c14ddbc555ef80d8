// SPDX-License-Identifier: Apache-2.0
// Texts of the input as messages repeat them: short, and on one line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace perf_store {

// All of a short text, the beginning of a longer one and "..." after it. A UTF-8 character is kept whole.
inline constexpr std::size_t LONGEST_QUOTE = 100;  // bytes
[[nodiscard]] std::string excerpt(std::string_view text, std::size_t longest = LONGEST_QUOTE);

// The text on one line: control characters as \xNN.
[[nodiscard]] std::string on_one_line(std::string_view text);

}  // namespace perf_store
