// SPDX-License-Identifier: Apache-2.0
// Colours where they carry a meaning: what is down, does not run or is an error is red.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace perf_measure {

inline constexpr char RED[] = "\033[31m";
inline constexpr char PLAIN[] = "\033[0m";

struct text_range {
    std::size_t begin;
    std::size_t end;
};

// What is to be red in a line of a show, in order.
[[nodiscard]] std::vector<text_range> alarms_in(std::string_view line);

// Appends the line with its alarms in red.
void append_coloured(std::string_view line, std::string *out);

// Whether output to this terminal may be coloured: it is one, has colours, and NO_COLOR is not set.
[[nodiscard]] bool wants_colours(int descriptor);

}  // namespace perf_measure
