// SPDX-License-Identifier: Apache-2.0
// The store as a data set.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/pm_error.h"
#include "perf-store/datasets/output_file.h"
#include "perf-store/datasets/record_json.h"
#include "perf-store/datasets/store_contents.h"

namespace perf_store {

// The type of an item's parcel. The error begins with `what`, which names the item.
[[nodiscard]] pm_error find_stored_type(const std::string &what, std::string_view parcel,
                                        const parcel_descriptor **type);

// Each appends an object of the store as one of a data set, on a line. The error names the object; then nothing is
// appended.
[[nodiscard]] pm_error append_stored_platform(std::string_view parcel, std::string *out);
[[nodiscard]] pm_error append_stored_node(std::string_view parcel, std::string *out);
[[nodiscard]] pm_error append_stored_interface(std::uint32_t handle, std::string_view parcel, std::string *out);
[[nodiscard]] pm_error append_stored_publisher(const item_place &branch, std::string_view parcel,
                                               store::kept_lease lease, std::string *out);

// Appends an item as an object of a data set, on a line. The error names the item; then nothing is
// appended.
[[nodiscard]] pm_error append_stored_item(const item_place &item, std::string_view parcel, json_fields fields,
                                          std::string *out);

// Writes what it visits, a line for each object, without the line of the data set's version. Nothing is written of an
// object that gives an error.
[[nodiscard]] std::unique_ptr<store_visitor> make_dumper(output_file *out);

// Writes the store, or the items and publishers of a selection, as a data set of one object a line. Loading
// it into an empty store and dumping again gives the same bytes. What was read before an error is written.
[[nodiscard]] pm_error dump_store(const item_selection &selection, output_file *out);

}  // namespace perf_store
