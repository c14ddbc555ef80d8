// SPDX-License-Identifier: Apache-2.0
#include "perf-measure/metrics/metric_store.h"

namespace perf_measure {

void metric_store::add(metric_group group, std::string_view labels, std::span<const metric_value> values) {
    key_ = static_cast<char>(group);
    key_ += labels;
    if (!series_of_item_.insert(key_).second || error_) {
        return;
    }
    error_ = spools_[static_cast<std::size_t>(group)].add(labels, values);
}

}  // namespace perf_measure
