// SPDX-License-Identifier: Apache-2.0
// From the store to metrics, node by node.
#pragma once

#include "base/pm_error.h"
#include "perf-measure/metrics/metric_store.h"

namespace perf_measure {

// Reads what pm_show_options ask for: the items of the show that they name, with its filters, or everything when they
// name none. Each node is read, also by what a show reads on the local node only. The store has been found readable.
//
// A node or publisher that does not run is a metric, no error. An error is a store that cannot be read, an item that is
// damaged, or a named item that no node has; then the metrics are not whole and should not be written.
pm_error collect_metrics(metric_store *metrics);

}  // namespace perf_measure
