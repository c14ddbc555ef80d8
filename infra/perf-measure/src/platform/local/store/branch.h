// SPDX-License-Identifier: Apache-2.0
// Where items are kept: data roots, their branches on the nodes, and the processes that serve them.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>

#include "paths/roots.h"

namespace store {

using path_grammar::root;
using path_grammar::root_name;
using path_grammar::ROOTS;

// The items of a data root on a node. An item's path is the one below its branch.
struct branch {
    root data_root;
    std::uint32_t node;

    auto operator<=>(const branch &) const = default;
};

inline constexpr std::size_t MAX_PATH_LENGTH = 400;  // bytes of an item's path

// State of the process that serves a branch.
enum class publisher_state : std::uint32_t { running, stopped, unreachable, starting };

}  // namespace store
