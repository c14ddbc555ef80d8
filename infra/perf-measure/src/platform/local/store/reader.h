// SPDX-License-Identifier: Apache-2.0
// The interface of a store that is read. Each back end implements it in a folder of its own;
// platform/local/back_ends opens the one that the store's URL names.
//
// Every call sees one consistent state of the store and holds nothing of it afterwards; two calls may see different
// states. In an embedded store a call is a read transaction, in a networked one a round trip.
//
// A failure has a code of platform/errcode.h and may have a text, which names the store and is ready to be shown.
// OPSTORE_DAMAGED: the store contradicts itself; after that every call may answer so. OPSTORE_BUSY: no state could
// be had.
//
// Parcels are given as they were written (platform/parcel.h). A value that is not the one of its key, so that a
// record has come to be under another key, is an empty parcel in lists and OPSTORE_DAMAGED in a single answer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/pm_error.h"
#include "platform/errcode.h"
#include "platform/local/store/batch.h"
#include "platform/local/store/branch.h"
#include "platform/local/store/lease.h"

namespace store {

// Chooses among items while they are read.
class item_predicate {
public:
    // Whether the item is wanted. `companion` is the parcel of the item's companion in the same state; empty when there
    // is none, or none was asked for. An error ends the reading, which then gives it. The views are valid within the
    // call, which may read schemas of the store and nothing else. A fault of a damaged store may end the call without
    // running destructors.
    [[nodiscard]] virtual errcode match(std::string_view path, std::string_view parcel, std::string_view companion,
                                        bool *matches) const = 0;

protected:
    ~item_predicate() = default;
};

// The companion of the item ITEMS + name is the item COMPANIONS + name of the same branch, for example the detail
// record of the policy whose counters are read. No companion is looked up while `companions` is empty.
// The prefix of a listing begins with `items`.
struct companion_paths {
    std::string_view items;
    std::string_view companions;
};

// Which items of a branch are wanted. All views and the predicate must outlive the call.
struct selection {
    const item_predicate *predicate = nullptr;  // null: every item
    companion_paths companion;
    // Whether items are wanted only while the branch's publisher is running; else the answer has its state alone.
    // Needs the state.
    bool only_running = false;
};

struct list_query {
    std::string_view prefix;  // what the paths begin with; a listing of items below a path ends it with '/'
    std::string_view after;   // a whole path: items that come after it only; empty: from the first one
    std::uint32_t max_items = 200;
    selection which;
};

// A publisher's state; none when no process ever served the branch.
using known_state = std::optional<publisher_state>;

// Records beside the items, for the inventory and for dumps.
struct interface_entry {
    std::uint32_t handle;
    std::string parcel;  // local_interface
};
struct publisher_entry {
    branch served;
    std::string parcel;  // local_publisher
    kept_lease lease;    // what becomes of its state: seen_state
};

// How much a store holds by its own account, to be compared with what was read of it.
struct census {
    std::uint64_t records = 0;  // items, publishers, nodes, interfaces and the platform's record
    std::uint64_t state = 0;    // changes with every change of the store
};

class reader {
public:
    virtual ~reader() = default;
    reader(const reader &) = delete;
    reader &operator=(const reader &) = delete;

    // Fills `*out` with the next items of a branch, in ascending order of their paths, and tells the publisher's
    // state unless `state` is null. At most max_items, and not many more bytes than BATCH_BYTES; out->more() tells
    // whether others follow. Paths that do not ascend are OPSTORE_DAMAGED, so that every listing ends.
    [[nodiscard]] virtual pm_error list(const branch &from, const list_query &asked, known_state *state,
                                        batch *out) = 0;

    // The one item at exactly `path`, and the publisher's state unless `state` is null. ERRCODE_NOT_FOUND when there is
    // none or the predicate refuses it.
    [[nodiscard]] virtual pm_error get(const branch &from, std::string_view path, const selection &which,
                                       known_state *state, std::string *parcel) = 0;

    // The router itself: a local_platform record. ERRCODE_NOT_FOUND when the store has none.
    [[nodiscard]] virtual pm_error platform(std::string *parcel) = 0;
    // All local_node records, in inventory order.
    [[nodiscard]] virtual pm_error nodes(std::vector<std::string> *parcels) = 0;
    // The local_interface record of a handle. ERRCODE_NOT_FOUND.
    [[nodiscard]] virtual pm_error interface(std::uint32_t handle, std::string *parcel) = 0;
    // The text of a schema that parcels of the store were written with. ERRCODE_NOT_FOUND.
    [[nodiscard]] virtual pm_error schema(std::uint64_t fingerprint, std::string *text) = 0;

    // The branches that hold items, those of one root after another in the order of ROOTS, by node id.
    [[nodiscard]] virtual pm_error branches(std::vector<branch> *out) = 0;
    // All publishers, in the same order.
    [[nodiscard]] virtual pm_error publishers(std::vector<publisher_entry> *out) = 0;
    // The next interface names by ascending handle, beginning with the handle `from` or the first after it. None
    // when there are no more.
    [[nodiscard]] virtual pm_error interfaces(std::uint64_t from, std::vector<interface_entry> *out) = 0;
    // What the store says that it holds.
    [[nodiscard]] virtual pm_error count(census *out) = 0;

protected:
    reader() = default;
};

// Whether a store is there, known before it is opened.
struct access_state {
    bool readable = false;  // it is there and may be read
    pm_error denial;        // what keeps this user out, and who may read; success when it is no matter of permission
};

}  // namespace store
