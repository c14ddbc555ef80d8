// The store read in batches: whatever waits for output, nothing of the store is held.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/local/store/reader.h"

namespace perf_store {

// Opens the store that OPSTORE_URL names. An empty text, or what is wrong with it, as the user should read it.
[[nodiscard]] std::string open_store(store::reader **out);

// An item's place.
struct item_key {
    store::root_name root;
    std::uint32_t node;
    std::string_view path;
};
// "main 0x100 intf/detail/eth0/1/0/4", for messages.
[[nodiscard]] std::string describe_item(const item_key &item);

// The root's row of store::ROOTS.
[[nodiscard]] const store::root_name &root_name_of(store::root id);

using visit_item = std::function<std::string(const item_key &item, std::string_view parcel)>;

// Calls visit(item, parcel) for every item of a branch whose path begins with `prefix`, in order. Each batch is one
// consistent state. A value that is not its key's is visited as an empty parcel. Stops when visit returns a text, which
// is the result; a failure of the store gives its description.
[[nodiscard]] std::string for_each_item(store::reader *from, const store::branch &branch, std::string_view prefix,
                                        const visit_item &visit);

}  // namespace perf_store
