// SPDX-License-Identifier: Apache-2.0
// The node inventory and the redundancy service.
#pragma once

#include <cstdint>

#include "platform/errcode.h"

struct invd_inventory;  // a snapshot of the inventory; lives until the process ends

inline constexpr std::uint32_t INVD_ALL_NODES = 7;    // inventory kind that lists every node
inline constexpr std::uint32_t INVD_SW_STATE_UP = 6;  // the node's software is up
inline constexpr std::uint32_t NODEID_NONE = 0xFFFFFFFF;

// Takes a snapshot of the inventory. Any kind but INVD_ALL_NODES is ERRCODE_INVALID_ARGUMENT.
[[nodiscard]] errcode invd_get_inventory(std::uint32_t kind, const invd_inventory **inventory);

[[nodiscard]] errcode invd_inventory_get_node_count(const invd_inventory *inventory, std::int32_t *count);

// Node id and software state by 0-based index; ERRCODE_INVALID_ARGUMENT outside the inventory.
[[nodiscard]] errcode invd_inventory_get_nodeid(const invd_inventory *inventory, std::int32_t index,
                                                std::uint32_t *node);
[[nodiscard]] errcode invd_inventory_get_sw_state(const invd_inventory *inventory, std::int32_t index,
                                                  std::uint32_t *state);

// The node that runs the standby instance of a process group; NODEID_NONE when there is none.
[[nodiscard]] errcode redund_get_proc_group_partner_node(const char *process_group, std::uint32_t *node);
