// SPDX-License-Identifier: Apache-2.0
// Interface names.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/errcode.h"

inline constexpr std::uint32_t IFNX_KIND_GLOBAL = 1;     // an interface of no particular card
inline constexpr std::uint32_t IFNX_KIND_NODE_CARD = 2;  // an interface located on a node card

// A parsed interface name.
struct ifnx_parsed_name {
    std::uint32_t kind;
    std::uint32_t location[3];  // what nodeid_create takes
    std::uint8_t reserved[168];
};
static_assert(sizeof(ifnx_parsed_name) == 184);

// Takes an interface name apart; `flags` is 0 and `*parsed` zeroed by the caller. A name of
// another form gives ERRCODE_INVALID_ARGUMENT and leaves `*parsed` as it was.
[[nodiscard]] errcode ifnx_ifname_parse(const char *name, std::uint32_t flags, ifnx_parsed_name *parsed);

// Display text of an interface handle, "Unknown" when no interface has it, into `buffer`.
void ifnx_display_namestring(std::uint32_t handle, char *buffer, std::size_t size, std::uint32_t flags);

// Name of an interface handle, "Unknown" when no interface has it. Borrowed; valid until the
// next call but seven.
[[nodiscard]] const char *interface_name(std::uint32_t handle, std::uint32_t flags);
