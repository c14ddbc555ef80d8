// SPDX-License-Identifier: Apache-2.0
// What the store that OPSTORE_URL names holds, read in batches: while output waits, no transaction is open.
//
// Every error is ready to be shown: it names the store or the item. Parcels are views that live during the
// call that passes them; a value that is not its key's is passed as an empty parcel, which no codec takes.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/pm_error.h"
#include "platform/local/store/reader.h"

namespace perf_store {

// Which items and publishers; all when nothing is set.
struct item_selection {
    std::optional<store::root> root;
    std::optional<std::uint32_t> node;
    std::string path_prefix;  // publishers have no path and are selected by root and node

    [[nodiscard]] bool everything() const { return !root && !node && path_prefix.empty(); }
};

// Where an item is. A publisher has a place without a path.
struct item_place {
    store::root_name root;
    std::uint32_t node;
    std::string_view path;
};
// "main 0x100 intf/detail/eth0/1/0/4", for messages.
[[nodiscard]] std::string describe_item(const item_place &item);

// The row of a root in the table of roots.
[[nodiscard]] const store::root_name &root_name_of(store::root id);

// Opens the store, which the routines below do by themselves: for those who write something before.
[[nodiscard]] pm_error open_store();

// Takes the store's objects one by one. An error ends the visit.
class store_visitor {
public:
    virtual ~store_visitor() = default;
    [[nodiscard]] virtual pm_error platform(std::string_view parcel) = 0;
    [[nodiscard]] virtual pm_error node(std::string_view parcel) = 0;
    [[nodiscard]] virtual pm_error interface(std::uint32_t handle, std::string_view parcel) = 0;
    [[nodiscard]] virtual pm_error publisher(const item_place &branch, std::string_view parcel,
                                             store::kept_lease lease) = 0;
    [[nodiscard]] virtual pm_error item(const item_place &item, std::string_view parcel) = 0;
};

// Visits the publishers and items of a selection, by root, node and path; if the selection is everything,
// the platform, the nodes in inventory order and the interfaces before them. A whole store that turns out to
// have lost objects is damaged.
[[nodiscard]] pm_error visit_store(const item_selection &selection, store_visitor *visitor);
// Visits everything in the store of that URL.
[[nodiscard]] pm_error visit_store_at(const std::string &url, store_visitor *visitor);

// Visits the items of a selection only.
using item_visit = std::function<pm_error(const item_place &item, std::string_view parcel)>;
[[nodiscard]] pm_error each_item(const item_selection &selection, const item_visit &visit);

// Copies the parcel of one item. An item that is not there is an error.
[[nodiscard]] pm_error read_item(const item_place &item, std::string *parcel);

}  // namespace perf_store
