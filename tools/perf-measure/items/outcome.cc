// SPDX-License-Identifier: Apache-2.0
// Which failures count.
#include "perf-measure/items/outcome.h"

#include <algorithm>
#include <cstddef>

#include "front/walker.h"
#include "perf-measure/items/nodes.h"
#include "platform/inventory.h"
#include "pm_show_client/pm_show_options.h"

namespace perf_measure {

namespace {

bool is_absence(const node_failure &failure) {
    return failure.code == ERRCODE_NOT_FOUND || failure.code == OPSTORE_NOT_PUBLISHED;
}

std::size_t count_nodes() {
    std::size_t count = 0;
    static_cast<void>(pm_show_visit_nodes([&count](std::uint32_t) { ++count; }));
    return count;
}

}  // namespace

std::string describe(const node_failure &failure) {
    const std::string where = failure.node == NODEID_NONE ? "the inventory of nodes" : name_of_node(failure.node);
    return where + ": " + (failure.text.empty() ? errcode_strerror(failure.code) : failure.text);
}

std::vector<node_failure> failures_that_count(const std::vector<node_failure> &met) {
    if (met.empty()) {
        return {};
    }
    const bool one_node = pm_show_options.node_id != PM_SHOW_ALL_NODES || pm_show_options.local_node_only;
    const bool one_item =
        pm_show_options.name != nullptr || pm_show_options.session_id != 0 || pm_show_options.profile_name != nullptr;
    const bool is_nowhere = std::ranges::all_of(met, is_absence) && met.size() >= count_nodes();
    std::vector<node_failure> counting;
    for (const node_failure &each : met) {
        const bool excused = (each.code == OPSTORE_NOT_PUBLISHED && !one_node) ||
                             (each.code == ERRCODE_NOT_FOUND && one_item && !is_nowhere);
        if (!excused) {
            counting.push_back(each);
        }
    }
    if (counting.empty() && is_nowhere) {  // nobody publishes it anywhere
        return met;
    }
    return counting;
}

}  // namespace perf_measure
