// SPDX-License-Identifier: Apache-2.0
// A plot as a picture in the form of Scalable Vector Graphics.
#pragma once

#include <string>
#include <vector>

#include "perf-measure/plot/series.h"

namespace perf_measure {

// The whole document: a chart for each series, one below the other. `what` names the values: "probe history".
[[nodiscard]] std::string svg_document(const std::vector<series> &drawn, const std::string &what);

}  // namespace perf_measure
