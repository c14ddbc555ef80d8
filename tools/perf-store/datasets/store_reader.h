// The store read in batches: whatever waits for output, no transaction is open.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/local/lmdb_store/store.h"

namespace perf_store {

// Says what is wrong with the store that OPSTORE_URL names, as the user should read it.
[[nodiscard]] std::string describe_store(errcode code);

// Calls visit(key, parcel) for every record whose key begins with `prefix`, in order. Each batch is one
// consistent state. A value that is not its key's is visited as an empty parcel. Stops when visit returns a text, which
// is the result; a failure of the store gives its description.
[[nodiscard]] std::string for_each_key(
    std::string_view prefix, const std::function<std::string(std::string_view key, std::string_view parcel)> &visit);

// What visit may return when it has seen enough.
inline constexpr char STOP[] = "stop";

// An item's key taken apart. A publisher's has the same form, without a path.
struct item_key {
    store::root_name root;
    std::uint32_t node;
    std::string_view path;
};
// Throws std::runtime_error for a key that is none, which only a damaged store holds.
[[nodiscard]] item_key parse_item_key(std::string_view key);
// "main 0x100 intf/detail/eth0/1/0/4", for messages.
[[nodiscard]] std::string describe_item(const item_key &item);

// The big-endian number at the front of `text`.
[[nodiscard]] std::uint32_t parse_number(std::string_view text);

}  // namespace perf_store
