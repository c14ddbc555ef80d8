// SPDX-License-Identifier: Apache-2.0
// The names of nodes.
#pragma once

#include <cstdint>

#include "platform/node.h"

// The name of a node, cut to 63 bytes; empty when the platform fails to give one.
struct pm_node_name {
    char text[64] = "";
};

[[nodiscard]] inline pm_node_name pm_name_of_node(std::uint32_t node) {
    pm_node_name name;
    static_cast<void>(nodeid_to_str_external(node, name.text, sizeof name.text));
    return name;
}
