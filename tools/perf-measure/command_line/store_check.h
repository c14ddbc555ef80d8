// SPDX-License-Identifier: Apache-2.0
// Whether there is a store to read.
#pragma once

#include <string>

namespace perf_measure {

// Empty when the store can be opened; else one line that names it, the variable that names it, and what to do.
[[nodiscard]] std::string check_store();

}  // namespace perf_measure
