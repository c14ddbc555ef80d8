// SPDX-License-Identifier: Apache-2.0
// Room on the file system for pages that are written through the map: there a full disk would be a fault.
#pragma once

#include <cstddef>
#include <cstdint>
#include <lmdb.h>

namespace lmdb_store {

// Reserves the blocks of a data file ahead of the pages that a transaction takes. What was reserved and not used goes
// when the file is cut to its size after the transaction.
class page_reserve {
public:
    // Reserves for the transaction that begins on a file. Does nothing before, and where the file system cannot
    // reserve. The file belongs to the caller.
    void begin(int file, MDB_env *env, MDB_txn *txn, MDB_dbi table);
    // Counts from an empty table on: its old pages stay until the commit.
    void table_was_emptied() { pages_before_ = 0; }

    // Makes sure of room for one more change, with a value of some bytes, and for the commit after it. Returns ENOSPC,
    // EDQUOT or another result of the system, 0 when there is room.
    [[nodiscard]] int grow(std::size_t value_bytes);

private:
    [[nodiscard]] int reserve_to(std::uint64_t page);

    int file_ = -1;
    MDB_txn *txn_ = nullptr;
    MDB_dbi table_ = 0;
    std::uint64_t page_size_ = 0;
    std::uint64_t first_new_page_ = 0;  // no state before this transaction has it or a later one
    std::uint64_t pages_before_ = 0;    // of the table
    std::uint64_t commit_pages_ = 0;    // that the commit may take for its list of free pages
    std::uint64_t changes_ = 0;
    std::uint64_t reserved_to_ = 0;  // the page after the last reserved one
};

}  // namespace lmdb_store
