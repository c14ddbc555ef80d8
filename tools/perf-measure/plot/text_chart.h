// SPDX-License-Identifier: Apache-2.0
// A plot as text, for a terminal.
#pragma once

#include <cstddef>
#include <string>

#include "perf-measure/plot/series.h"

namespace perf_measure {

struct text_chart_style {
    std::size_t columns = 80;  // of the terminal
    bool ascii = false;        // no characters beyond ASCII
    bool colours = false;      // lost packets in red
};

inline constexpr std::size_t SMALLEST_CHART = 40;  // columns; on a narrower terminal lines are wrapped

// Appends title, chart, time axis and a line of numbers. `what` names the values: "probe history".
void append_text_chart(const series &drawn, const std::string &what, const text_chart_style &style, std::string *out);

}  // namespace perf_measure
