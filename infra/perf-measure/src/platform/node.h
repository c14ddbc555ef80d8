// SPDX-License-Identifier: Apache-2.0
// Node identity: which node this is, what kind of router, and how node ids relate.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/errcode.h"

// A router type on which a line card measures on its own interfaces' behalf.
inline constexpr std::uint32_t ROUTER_TYPE_DISTRIBUTED = 10;

[[nodiscard]] errcode platform_get_my_nodeid(std::uint32_t *node);
[[nodiscard]] std::uint32_t platform_get_router_type();
// Non-zero when the route processor also forwards traffic.
[[nodiscard]] int platform_am_i_rp_plus_datapath();
// The active route processor; `rack` is 0.
[[nodiscard]] errcode platform_get_active_standby_rps_in_rack(std::uint32_t *active, std::uint32_t rack);
// The node at three location numbers of an interface name; ERRCODE_NOT_FOUND when there is none.
[[nodiscard]] errcode nodeid_create(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t *node);
// The node whose processor serves `node`.
[[nodiscard]] errcode nodeid_processor_nodeid_for_nodeid(std::uint32_t node, std::uint32_t *processor);
// Writes the node's display name, cut to `size` bytes with its terminator.
[[nodiscard]] errcode nodeid_to_str_external(std::uint32_t node, char *buffer, std::size_t size);
