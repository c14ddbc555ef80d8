// The store as a data set.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "output_file.h"
#include "platform/local/store.h"

namespace perf_store {

// What to dump; everything when nothing is set.
struct dump_filter {
    std::optional<store::root> root;
    std::optional<std::uint32_t> node;
    std::string path_prefix;

    [[nodiscard]] bool everything() const { return !root && !node && path_prefix.empty(); }
};

// Writes the store, or the items and publishers that the filter selects, as a data set of one object a
// line. Loading it into an empty store and dumping again gives the same bytes. An empty text, or what
// went wrong.
[[nodiscard]] std::string dump_store(const dump_filter &filter, output_file *out);

}  // namespace perf_store
