// SPDX-License-Identifier: Apache-2.0
// Samples in the order in which the store has them, kept until they are written metric by metric.
//
// The text form wants all samples of a metric together, while the store gives all samples of an item together. The
// store is read once, and what was read goes to a temporary file, so that memory does not grow with the store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "base/pm_error.h"
#include "perf-measure/metrics/metric_value.h"

namespace perf_measure {

class sample_spool {
public:
    sample_spool() = default;
    ~sample_spool();
    sample_spool(const sample_spool &) = delete;
    sample_spool &operator=(const sample_spool &) = delete;

    // Adds the values of one thing, one for each slot of its group. `labels` are without braces.
    pm_error add(std::string_view labels, std::span<const metric_value> values);

    // Gets the labels and a value's text, both valid during the visit.
    using sample_visit = std::function<pm_error(std::string_view labels, std::string_view value)>;
    // Visits the values of one slot that are not absent, in the order in which they were added.
    pm_error visit(std::size_t slot, const sample_visit &visit) const;

private:
    pm_error move_to_file();

    std::string kept_;  // entries that are not in the file
    int file_ = -1;     // of temporary_file.h; -1 while all entries are kept
    std::uint64_t file_size_ = 0;
};

}  // namespace perf_measure
