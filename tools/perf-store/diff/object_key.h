// SPDX-License-Identifier: Apache-2.0
// The objects of a data set by keys, whose byte order is the order of a dump: the platform, the nodes by their ids,
// the interfaces by their handles, then publishers and items by root, node and path.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/local/store/branch.h"

namespace perf_store {

enum class object_kind : char { platform, node, interface, publisher, item };

// The key of the platform, which is one.
[[nodiscard]] std::string object_key(object_kind kind);
// That of a node's id or an interface's handle.
[[nodiscard]] std::string object_key(object_kind kind, std::uint32_t number);
// That of a publisher; with a path, of an item.
[[nodiscard]] std::string object_key(object_kind kind, const store::branch &of, std::string_view path = {});

[[nodiscard]] object_kind kind_of(std::string_view key);
// The node that an item or a publisher belongs to.
[[nodiscard]] std::optional<std::uint32_t> node_of(std::string_view key);
// "platform", "node 0x100", "interface 0x4d", "publisher main 0x100" or "main 0x100 intf/detail/eth0/1/0/4".
[[nodiscard]] std::string describe_object(std::string_view key);

}  // namespace perf_store
