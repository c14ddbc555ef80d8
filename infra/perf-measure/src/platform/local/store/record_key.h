// SPDX-License-Identifier: Apache-2.0
// The key of a record: one letter for what it names (key_space) and the name itself, numbers in big-endian order, so
// that the items of a branch are together in the byte order of their paths.
//
// docs/store-format.md is the full account.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/local/store/branch.h"

namespace store {

enum class key_space : char {
    format = 'F',
    interface = 'H',  // 32-bit handle: local_interface
    item = 'I',       // root, 32-bit node id, path: a parcel
    node = 'N',       // 32-bit position in the inventory: local_node
    platform = 'P',   // local_platform
    publisher = 'U',  // root, 32-bit node id: local_publisher
    schema = 'S',     // 64-bit fingerprint: schema text
};

[[nodiscard]] std::string key(key_space space);
[[nodiscard]] std::string key(key_space space, std::uint32_t number);
[[nodiscard]] std::string root_key(key_space space, root data_root);  // what all keys of a root begin with
[[nodiscard]] std::string schema_key(std::uint64_t fingerprint);
// The key of a publisher, or what the keys of a branch's items begin with.
[[nodiscard]] std::string branch_key(key_space space, const branch &named);
[[nodiscard]] std::string item_key(const branch &of, std::string_view path);

// The number of a key that key(space, number) made. False for another key.
[[nodiscard]] bool parse_number_key(std::string_view key, std::uint32_t *number);
// The branch of an item's or a publisher's key, and the item's path, which is a part of `key`. False for another key.
[[nodiscard]] bool parse_branch_key(std::string_view key, branch *named, std::string_view *path);

// What the paths begin with that continue `path` by one or more components; "" is the whole branch.
[[nodiscard]] std::string prefix_below(std::string_view path);

}  // namespace store
