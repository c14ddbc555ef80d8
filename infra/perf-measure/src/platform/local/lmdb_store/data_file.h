// SPDX-License-Identifier: Apache-2.0
// The store's data file, as far as it can be known without LMDB.
#pragma once

#include <cstdint>
#include <string>

#include "base/pm_error.h"

namespace lmdb_store {

inline constexpr char DATA_FILE[] = "data.mdb";
inline constexpr char LOCK_FILE[] = "lock.mdb";

[[nodiscard]] inline std::string file_in(const std::string &folder, const char *name) { return folder + "/" + name; }

// How far a data file reaches, in bytes: by its own account, and by its length. One whose account is longer was cut
// short, or its last pages were taken and given back by a transaction and never written.
struct extent {
    std::uint64_t accounted = 0;
    std::uint64_t length = 0;

    [[nodiscard]] bool ends_early() const { return accounted > length; }
};

// Reads the head of the data file in a folder. OPSTORE_DAMAGED when it has no sound head, which leaves `*out` zero;
// another code when it cannot be read.
[[nodiscard]] pm_error read_extent(const std::string &folder, extent *out);

// Takes the descriptors of standard input, output and error that the caller has closed, with something that can be
// used for nothing. Else the next file opened would get one of them, the store's, and be written to as standard output.
void reserve_standard_descriptors();

}  // namespace lmdb_store
