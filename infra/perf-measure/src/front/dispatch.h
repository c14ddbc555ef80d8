// SPDX-License-Identifier: Apache-2.0
// From pm_show_options to a show: which command, what to read, and the exit status.
#pragma once

#include <cstdint>

#include "front/compose.h"
#include "front/walker.h"

// What building a request came to.
enum class pm_show_build : std::uint8_t {
    ready,
    refused,  // an invalid command type or subtype, reported
    nothing,  // a valid command with nothing to read, reported
};

// Fills `*request` for the command in pm_show_options, composing its item path into `item_path`,
// which must live as long as the request. Also settles which nodes are read: sets
// pm_show_options.local_node_only, or looks up the node of the interface.
[[nodiscard]] pm_show_build pm_show_build_request(pm_show_request *request, pm_show_path &item_path);

// Performs the show that pm_show_options asks for. Returns the exit status: -1 for an invalid
// command type or subtype; else 0, also when the show failed and printed why.
[[nodiscard]] int pm_show_dispatch();
