// The store as a data set.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "perf-store/command_line/output_file.h"
#include "perf-store/datasets/record_writer.h"
#include "perf-store/datasets/store_reader.h"

namespace perf_store {

// What to dump; everything when nothing is set.
struct dump_filter {
    std::optional<store::root> root;
    std::optional<std::uint32_t> node;
    std::string path_prefix;

    [[nodiscard]] bool everything() const { return !root && !node && path_prefix.empty(); }
};

// Appends an item as an object of a data set, on a line. An empty text, or what is wrong with it; then
// nothing is appended.
[[nodiscard]] std::string append_item(const item_key &item, std::string_view parcel, json_fields fields,
                                      std::string *out);

// Writes the store, or the items and publishers that the filter selects, as a data set of one object a
// line. Loading it into an empty store and dumping again gives the same bytes. An empty text, or what
// went wrong.
[[nodiscard]] std::string dump_store(const dump_filter &filter, output_file *out);

}  // namespace perf_store
