// SPDX-License-Identifier: Apache-2.0
// What reading came to, node by node: the failures that a user is told, and the exit status.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/errcode.h"

namespace perf_measure {

struct node_failure {
    std::uint32_t node;  // NODEID_NONE: it is not known which nodes there are
    errcode code;
    std::string text = {};  // what to say in place of the code's text
};

// "lc0: Publisher stopped"
[[nodiscard]] std::string describe(const node_failure &failure);

// The failures that count, of all that were met. A node on which nobody publishes such items is one only when it
// was asked for by itself; an item that was named or numbered is missing only when no node has it.
[[nodiscard]] std::vector<node_failure> failures_that_count(const std::vector<node_failure> &met);

}  // namespace perf_measure
