// SPDX-License-Identifier: Apache-2.0
// The router that the store describes: its nodes, its own identity and its interface names.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/errcode.h"

namespace router {

struct node {
    std::uint32_t id = 0;
    std::string name;
    std::uint32_t sw_state = 0;
    std::optional<std::array<std::uint32_t, 3>> location;  // not every node is in a place of its own
    std::uint32_t processor = 0;
};

// The inventory, in its order, read from the store once per process.
[[nodiscard]] errcode nodes(const std::vector<node> **out);

// The node of that id; null when the inventory has none or cannot be read.
[[nodiscard]] const node *find_node(std::uint32_t id);

}  // namespace router
