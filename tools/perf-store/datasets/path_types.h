// SPDX-License-Identifier: Apache-2.0
// Which record type an item of a path has.
#pragma once

#include <string_view>

#include "platform/local/store/branch.h"

namespace perf_store {

// The type of the items at a path of a root; empty for a path that no show command reads.
[[nodiscard]] std::string_view type_at(store::root root, std::string_view path);

}  // namespace perf_store
