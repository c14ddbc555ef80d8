// Names of nodes in the distribution displays.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/node.h"

// The name of a node, cut to Size - 1 bytes; empty when the platform fails to give one.
template <std::size_t Size>
struct pm_node_name {
    char text[Size] = "";

    explicit pm_node_name(std::uint32_t node) { static_cast<void>(nodeid_to_str_external(node, text, Size)); }
};
