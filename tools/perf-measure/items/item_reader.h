// SPDX-License-Identifier: Apache-2.0
// The items of a command as records, for whoever does not want the text of a show: the same nodes, filters and
// names, read as a show reads them.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "paths/item_paths.h"
#include "perf-measure/items/outcome.h"
#include "platform/parcel.h"

namespace perf_measure {

struct item {
    std::uint32_t node;
    std::string_view root;  // "main"
    std::string_view path;  // as in a data set
    const parcel_descriptor *type;
    void *record;  // decoded; valid during the visit, and as it was afterwards
};

// False ends the reading.
using item_visit = std::function<bool(const item &)>;

// Reads the items that pm_show_options ask for, in the order of a show. What could not be read is added to
// `*failures`.
void read_items(const item_visit &visit, std::vector<node_failure> *failures);

// Reads the items of another place that have the names of those that pm_show_options ask for and are filtered as they
// are: the counters of policies beside their details, say.
struct companion_items {
    path_grammar::place asked;
    path_grammar::place read;
    const parcel_descriptor *type;
    std::uint32_t size;  // bytes of a decoded record
};
void read_companions(const companion_items &which, const item_visit &visit, std::vector<node_failure> *failures);

}  // namespace perf_measure
