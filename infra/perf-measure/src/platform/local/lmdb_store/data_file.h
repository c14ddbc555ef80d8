// SPDX-License-Identifier: Apache-2.0
// The store's data file, as far as it can be known without LMDB.
#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>

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

// Reads the head of the data file in a folder. OPSTORE_DAMAGED when it has no sound head or one that differs from its
// writer's note, which leaves `*out` zero;
// another code when it cannot be read.
[[nodiscard]] pm_error read_extent(const std::string &folder, extent *out);

// Where the table of the current state is.
struct table_root {
    std::uint64_t root = 0;  // the number of its first page; UINT64_MAX for an empty one
    std::uint64_t entries = 0;
    std::uint64_t page_size = 0;
    std::uint64_t pages = 0;  // of the file, by the head's account and its length
    std::uint64_t transaction = 0;
    bool sound = false;  // as its writer noted it
};
// Reads the head of an open data file, of which one copy may be damaged. False when it has none.
[[nodiscard]] bool read_root(int file, table_root *out);

// What to say of a store of the old format.
[[nodiscard]] std::string old_format_text(const std::string &folder);

// The head is kept twice, in the first two pages; a transaction writes the one whose turn it is. LMDB guards neither,
// so a writer notes in the unused rest of the page that its commit has written what is in it. Readers compare. A writer
// that was killed before it had made its note leaves an older one, which says nothing about the new head.
// Failure leaves no note.
void note_head(int file);
// Whether a writer of ours has ever left its note there, whatever has become of the rest.
[[nodiscard]] bool has_note(const std::string &folder);

// Takes the descriptors of standard input, output and error that the caller has closed, with something that can be
// used for nothing. Else the next file opened would get one of them, the store's, and be written to as standard output.
void reserve_standard_descriptors();

}  // namespace lmdb_store
