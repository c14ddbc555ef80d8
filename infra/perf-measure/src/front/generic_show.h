// SPDX-License-Identifier: Apache-2.0
// One node's read: from a request to the calls of its display. The walk over nodes is walker.h.
#pragma once

#include <cstdint>

#include "platform/opstore.h"
#include "platform/parcel.h"
#include "pm_show_client/pm_show_display.h"

// Whether a blank line goes before each item of a listing.
enum class pm_show_spacing : std::uint8_t {
    spaced,  // yes, unless the display of the item before printed nothing
    dense,   // no
};

// Prints what comes before all nodes; null for nothing.
using pm_show_legend = void (*)();

// What to read and who prints it. The texts are the caller's.
struct pm_show_request {
    const char *base_path;  // data root, ending in '/'
    const char *item_path;  // below the node's branch
    const char *start_key;  // a listing starts after it; "" for the beginning
    pm_show_display display;
    const parcel_descriptor *parcel_desc;  // the record type of the items
    std::uint32_t decoded_size;            // bytes of one decoded record
    std::uint32_t batch_size;              // most items of one listing request; 0 for a single item
    std::uint32_t single_item;             // 1: the item at item_path; 0: the items under it
    pm_show_spacing spacing = pm_show_spacing::spaced;
    pm_show_legend legend = nullptr;
};

// The bind handle, one at a time.
extern opstore_handle pm_show_opstore_handle;

// 1 once the store's client has been found usable; it is not tested again.
extern std::uint8_t pm_show_opstore_present;

// Told, after it has been printed, what kept a node from being shown in full: the code of a node that cannot be
// bound, of a publisher that does not run, of an item that is missing or cannot be decoded. The node is
// NODEID_NONE when it is not known which nodes there are. Null: nobody is told.
using pm_show_failure_observer = void (*)(std::uint32_t node_id, errcode code);
extern pm_show_failure_observer pm_show_on_failure;

// Reads one node. A listing gives 0 once its record is allocated, ERRCODE_INVALID_ARGUMENT without
// memory. A single item gives the display's result, the store's code when the store has no such
// item, or the code of a failed decode; 0 without memory or for an item that is no parcel.
// ERRCODE_INVALID_ARGUMENT for an incomplete request; else the code that kept the store from being
// bound.
//
// The display gets the decoded record, which is reused for the next item. A listing without any
// item calls it once with null.
[[nodiscard]] errcode generic_show(const pm_show_request *request, std::uint32_t node_id);
