// SPDX-License-Identifier: Apache-2.0
// Metrics as text: OpenMetrics 1.0, or the text form 0.0.4 of Prometheus.
#pragma once

#include <cstdint>

#include "base/pm_error.h"
#include "perf-measure/metrics/metric_store.h"
#include "perf-store/datasets/output_file.h"

namespace perf_measure {

enum class exposition_form : std::uint8_t { openmetrics, prometheus };

// Writes all metrics that have a sample. The error is why the file cannot be written or the samples not be read back.
pm_error write_exposition(const metric_store &metrics, exposition_form form, perf_store::output_file *out);

}  // namespace perf_measure
