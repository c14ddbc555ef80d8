// SPDX-License-Identifier: Apache-2.0
// What a filter key compares in the detail records.
#pragma once

#include <vector>

#include "platform/local/filters/view_records.h"
#include "platform/local/filters/wanted_component.h"

namespace item_filter {

// Whether a record has all that is asked for, each component by itself. `key` has one entry for each component
// of the family's key (paths/filter_keys.h), in its order.
[[nodiscard]] bool has_all(const std::vector<wanted_component> &key, const filter_srpolicy &record);
[[nodiscard]] bool has_all(const std::vector<wanted_component> &key, const filter_endpoint &record);
[[nodiscard]] bool has_all(const std::vector<wanted_component> &key, const filter_rsvpte &record);

}  // namespace item_filter
