// SPDX-License-Identifier: Apache-2.0
#include "perf-measure/metrics/series_labels.h"

#include "perf-measure/metrics/metric_value.h"

namespace perf_measure {

std::string kind_word(pm_measurement_type_e kind) {
    switch (kind) {
    case PM_MEASUREMENT_DELAY: return std::string(DELAY);
    case PM_MEASUREMENT_LOSS: return std::string(LOSS);
    case PM_MEASUREMENT_LIVENESS: return std::string(LIVENESS);
    case PM_MEASUREMENT_PROBE: return std::string(PROBE);
    }
    return std::to_string(static_cast<std::int32_t>(kind));
}

std::string node_labels(std::string_view node) {
    std::string labels;
    append_label("node", node, &labels);
    return labels;
}

std::string item_labels(std::string_view node, std::string_view family, std::string_view name) {
    std::string labels = node_labels(node);
    append_label("family", family, &labels);
    append_label("name", name, &labels);
    return labels;
}

std::string series_labels(const std::string &item, std::string_view path, std::uint32_t session,
                          std::string_view kind) {
    std::string labels;
    labels.reserve(item.size() + path.size() + 64);
    labels = item;
    append_label("path", path, &labels);
    if (session != 0) {
        append_label("session", metric_value::of_number(session).text(), &labels);
    }
    append_label("kind", kind, &labels);
    return labels;
}

}  // namespace perf_measure
