// SPDX-License-Identifier: Apache-2.0
// Round numbers for an axis.
#include "perf-measure/plot/scale.h"

namespace perf_measure {

std::vector<std::uint64_t> ticks_between(std::uint32_t lowest, std::uint32_t highest, std::uint32_t most) {
    const std::uint64_t span = highest > lowest ? std::uint64_t{highest} - lowest : 1;
    // Steps of 1, 2 and 5, each ten times as large in turn, until there are few enough.
    constexpr std::uint64_t LEADING[] = {1, 2, 5};
    std::uint64_t step = 1;
    for (std::uint64_t power = 1; power <= 10'000'000'000; power *= 10) {
        for (const std::uint64_t digit : LEADING) {
            step = digit * power;
            const std::uint64_t first = lowest / step;
            const std::uint64_t last = (lowest + span + step - 1) / step;
            if (last - first + 1 <= most) {
                std::vector<std::uint64_t> ticks;
                for (std::uint64_t i = first; i <= last; ++i) {
                    ticks.push_back(i * step);
                }
                return ticks;
            }
        }
    }
    return {lowest, lowest + span};
}

double position(std::uint64_t value, std::uint64_t from, std::uint64_t to, double length) {
    if (to <= from) {
        return length / 2;
    }
    return length * static_cast<double>(value - from) / static_cast<double>(to - from);
}

}  // namespace perf_measure
