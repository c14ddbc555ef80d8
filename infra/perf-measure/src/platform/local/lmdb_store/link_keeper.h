// SPDX-License-Identifier: Apache-2.0
// Changes of the table that keep the links between neighbours right.
#pragma once

#include <cstdint>
#include <lmdb.h>
#include <string>
#include <string_view>
#include <vector>

#include "platform/local/lmdb_store/links.h"
#include "platform/local/lmdb_store/reserve.h"

namespace lmdb_store {

// Records mostly come in the order of their keys, a few such sequences side by side. Each is a run: the record after
// it is linked again once, when the run is closed, and not after each record. All routines return LMDB's results and
// run inside fault_guard::guarded; MDB_CORRUPTED when neighbours are not linked.
class link_keeper {
public:
    // Works on a transaction's table; each change is made when there is room for it in `reserve`.
    void attach(MDB_txn *txn, MDB_dbi table, page_reserve *reserve);

    // Makes an emptied table a store without records.
    [[nodiscard]] int begin_table(std::string_view format);
    // Puts a value, in the place of the one that the key has.
    [[nodiscard]] int put(std::string_view key, std::string_view value);
    // Both add the number of keys that went to `*removed`.
    [[nodiscard]] int remove(std::string_view key, std::uint64_t *removed);
    [[nodiscard]] int remove_all(std::string_view prefix, std::uint64_t *removed);

    // Makes all links right, as a reader expects them.
    [[nodiscard]] int close_runs();
    // Names the transaction that made the state; then it may be committed.
    [[nodiscard]] int finish();

private:
    // Records that were put one after the other. Between its last one and the next key there is none; the next key's
    // link is not right until the run is closed.
    struct run {
        std::string last;
        std::string next;
        std::uint64_t used = 0;  // when, to close the one that has waited longest
    };
    static constexpr std::size_t MAX_RUNS = 64;

    [[nodiscard]] run *find_run(std::string_view key);
    [[nodiscard]] int put_in_place(std::string_view key, std::string_view value);
    [[nodiscard]] int begin_run(std::string_view key, std::string_view next);
    [[nodiscard]] int close_run(const run &which);
    [[nodiscard]] int remove_at(MDB_cursor *cursor);
    [[nodiscard]] int write(std::string_view key, link before, std::string_view value);
    [[nodiscard]] int relink(std::string_view key, std::string_view before);
    template <class Body>
    [[nodiscard]] int with_cursor(Body body);

    MDB_txn *txn_ = nullptr;
    MDB_dbi table_ = 0;
    page_reserve *reserve_ = nullptr;
    std::vector<run> runs_;  // by their last keys; their gaps do not overlap
    std::uint64_t uses_ = 0;
    std::string scratch_;
};

}  // namespace lmdb_store
