// SPDX-License-Identifier: Apache-2.0
// Nodes by name.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace perf_measure {

struct named_node {
    std::uint32_t id;
    std::string name;
    bool is_up = true;  // its software
};

// The nodes of the inventory, in its order. Empty when it cannot be read.
[[nodiscard]] std::vector<named_node> inventory_nodes();

// A node's name for messages and objects; 0x and its id without one.
[[nodiscard]] std::string name_of_node(std::uint32_t id);

// The id of a node. The result is empty, or says that there is none of that name and which there are.
[[nodiscard]] std::string find_node(const std::string &name, std::uint32_t *id);

}  // namespace perf_measure
