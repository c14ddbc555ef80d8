// SPDX-License-Identifier: Apache-2.0
// Texts and numbers in JSON.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace perf_measure {

// Numbers that not every reader keeps are written as text, as in data sets.
void append_json_number(std::uint64_t value, std::string *out);

// Appends a JSON string. What is not UTF-8, which JSON cannot hold, becomes the replacement character U+FFFD.
void append_json_any_text(std::string_view text, std::string *out);

// The same JSON on several lines, indented, with a newline at its end.
[[nodiscard]] std::string indented_json(std::string_view compact);

}  // namespace perf_measure
