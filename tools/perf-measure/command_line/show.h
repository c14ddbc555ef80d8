// SPDX-License-Identifier: Apache-2.0
// One show, from parsed words to its output.
#pragma once

#include <string>
#include <vector>

#include "perf-measure/items/outcome.h"
#include "perf-measure/phrases/parser.h"

namespace perf_measure {

// Takes the moment from which all ages count.
void take_time();

// Gives the words to the back end as its own options: afterwards pm_show_options holds them. Where a node is
// named, reads the inventory. The result is empty, or says what is wrong with the store or the node.
[[nodiscard]] std::string hand_over(const words_command &command);

// Shows on standard output, as text or as JSON. The result is an exit status; failures have been reported by node.
[[nodiscard]] int show_as_text(const words_command &command);
[[nodiscard]] int show_as_json(const words_command &command, bool pretty);

// Reports each failure on standard error; the exit status.
[[nodiscard]] int report_failures(const std::vector<node_failure> &failures);

}  // namespace perf_measure
