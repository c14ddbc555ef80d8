// SPDX-License-Identifier: Apache-2.0
// What of a text is new since the time before.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace perf_measure {

[[nodiscard]] std::vector<std::string_view> lines_of(std::string_view text);

// For each line of `now` the line of `before` that it is compared with: an index, or NO_LINE when the line is
// new. Lines that are the same at the beginning and at the end are set against each other first, so that a line
// more in the middle does not mark all that follow.
inline constexpr std::size_t NO_LINE = static_cast<std::size_t>(-1);
[[nodiscard]] std::vector<std::size_t> counterparts(const std::vector<std::string_view> &before,
                                                    const std::vector<std::string_view> &now);

// Appends `columns` characters of a line from column `first`. What differs from `counterpart` is in reverse,
// all of it when that is null. With colours, alarms are red.
void append_marked(std::string_view line, const std::string_view *counterpart, std::size_t first, std::size_t columns,
                   bool colours, std::string *out);

}  // namespace perf_measure
