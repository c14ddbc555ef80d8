// SPDX-License-Identifier: Apache-2.0
// The vertical axis of a plot.
#pragma once

#include <cstdint>
#include <vector>

namespace perf_measure {

inline constexpr std::uint32_t MOST_TICKS = 7;  // of a plot

// Round numbers from the axis' lower end to its upper one, which enclose both values. At most `most` of them, at
// least two.
[[nodiscard]] std::vector<std::uint64_t> ticks_between(std::uint32_t lowest, std::uint32_t highest, std::uint32_t most);

// Where `value` is between two ends, from 0 to `length`; the middle when the ends are one.
[[nodiscard]] double position(std::uint64_t value, std::uint64_t from, std::uint64_t to, double length);

}  // namespace perf_measure
