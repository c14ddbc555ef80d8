// SPDX-License-Identifier: Apache-2.0
// A write transaction on the store's table, and the data file while it is at work. The lowest layer of writing:
// what it takes and gives are keys and values.
#pragma once

#include <cstdint>
#include <lmdb.h>
#include <string>
#include <string_view>
#include <sys/types.h>

#include "base/pm_error.h"
#include "platform/local/lmdb_store/data_file.h"
#include "platform/local/lmdb_store/fault_guard.h"
#include "platform/local/lmdb_store/link_keeper.h"
#include "platform/local/lmdb_store/reserve.h"
#include "platform/local/lmdb_store/table_state.h"
#include "platform/local/lmdb_store/writers_folder.h"
#include "platform/local/store/writer.h"

namespace lmdb_store {

// What becomes of the store that is in the folder: it is changed, or another one is made that takes its place at the
// commit.
enum class old_store { keep, leave_aside };

// A failure names the folder and is ready to be shown; after it nothing of the transaction is committed. Views into
// the store are valid until the next change.
class transaction {
public:
    transaction() = default;
    // Without commit(), leaves the store and the size of its file as they were.
    ~transaction();
    transaction(const transaction &) = delete;
    transaction &operator=(const transaction &) = delete;

    // Opens the store in a folder and begins, after another writer's transaction if one is at work. Folder and files
    // are made when they are missing, readable for the folder's group; they are gone again when nothing is committed.
    [[nodiscard]] pm_error begin(const std::string &folder, old_store old);

    // Removes every record.
    [[nodiscard]] pm_error clear();
    // An absent key gives an empty value.
    [[nodiscard]] pm_error get(std::string_view key, std::string_view *value);
    [[nodiscard]] pm_error put(std::string_view key, std::string_view value);
    // Both add the number of keys that went to `*removed`.
    [[nodiscard]] pm_error remove(std::string_view key, std::uint64_t *removed);
    [[nodiscard]] pm_error remove_all(std::string_view prefix, std::uint64_t *removed);
    // Calls visit(key, value) as table_state::scan does.
    template <class Visit>
    [[nodiscard]] pm_error scan(std::string_view prefix, Visit visit);

    // Makes everything since `begin` durable, and brings a new store into its place.
    [[nodiscard]] pm_error commit();

private:
    template <class Body>
    [[nodiscard]] pm_error guarded(Body body);
    [[nodiscard]] static int result_of(errcode code);
    [[nodiscard]] pm_error describe(int result) const;
    [[nodiscard]] pm_error describe_fault() const;
    [[nodiscard]] pm_error refuse_foreign_store(std::uint64_t accounted);
    [[nodiscard]] pm_error open();
    [[nodiscard]] pm_error open_files();
    [[nodiscard]] pm_error begin_transaction();
    [[nodiscard]] bool begins_before_the_head() const;
    [[nodiscard]] pm_error close_files();
    [[nodiscard]] int open_environment(bool write_map);
    void cut_to(off_t size) const;
    void restore_size() const;
    [[nodiscard]] pm_error read_everything();
    [[nodiscard]] pm_error check_format();

    std::string folder_;
    writers_folder place_;
    int data_ = -1;           // the data file, whatever its path names meanwhile
    off_t size_before_ = 0;   // of the data file, as far as a state refers to it
    bool write_map_ = false;  // its pages are written where they are, in the map
    bool committed_ = false;
    MDB_env *env_ = nullptr;
    MDB_txn *txn_ = nullptr;
    MDB_dbi table_ = 0;
    link_keeper links_;
    page_reserve reserve_;
    bool outdated_ = false;  // a store of the old format, which can be emptied and nothing else
    bool damaged_ = false;   // LMDB must not be called any more
};

// Implementation of the templates ----------------------------------------------------------------

// Runs body(), which returns an LMDB result, so that a fault in it becomes an error. After one LMDB is
// not called again: its locks are released when the process ends.
template <class Body>
pm_error transaction::guarded(Body body) {
    if (damaged_) {
        return describe(MDB_CORRUPTED);
    }
    if (outdated_) {
        return pm_error(OPSTORE_DAMAGED, old_format_text(folder_));
    }
    int result = 0;
    const errcode fault = fault_guard::guarded([&] {
        result = body();
        return ERRCODE_SUCCESS;
    });
    if (fault != ERRCODE_SUCCESS) {
        damaged_ = true;
        return describe_fault();
    }
    return describe(result);
}

template <class Visit>
pm_error transaction::scan(std::string_view prefix, Visit visit) {
    return guarded([&] {
        const int result = links_.close_runs();
        return result != 0 ? result : result_of(table_state(txn_, table_).scan(prefix, visit));
    });
}

}  // namespace lmdb_store
