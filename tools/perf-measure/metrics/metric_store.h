// SPDX-License-Identifier: Apache-2.0
// What was read, ready to be written as metrics.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>

#include "base/pm_error.h"
#include "perf-measure/metrics/metric_table.h"
#include "perf-measure/metrics/sample_spool.h"

namespace perf_measure {

class metric_store {
public:
    // Adds the values of one thing to a group, one for each metric of it; absent ones are left out. The first error is
    // kept for error().
    void add(metric_group group, std::string_view labels, std::span<const metric_value> values);
    void add(metric_group group, std::string_view labels, const metric_value &value) {
        add(group, labels, std::span(&value, 1));
    }

    // Begins another item. Within an item what would be a second series of the same labels is left out: a record may
    // say the same twice, while the items themselves differ by name.
    void begin_item() { series_of_item_.clear(); }

    [[nodiscard]] const pm_error &error() const { return error_; }
    [[nodiscard]] const sample_spool &of(metric_group group) const { return spools_[static_cast<std::size_t>(group)]; }

private:
    std::array<sample_spool, METRIC_GROUPS> spools_;
    std::unordered_set<std::string> series_of_item_;  // group and labels
    std::string key_;
    pm_error error_;
};

}  // namespace perf_measure
