// SPDX-License-Identifier: Apache-2.0
// Opens the environment and begins its read transactions.
#include "platform/local/lmdb_store/environment.h"

#include <cerrno>
#include <unistd.h>

#include "platform/local/lmdb_store/data_file.h"

namespace lmdb_store {

namespace {

// Sizes of the map that LMDB takes for another one.
constexpr std::size_t RECORDED_MAP = 0;
constexpr std::size_t SMALLEST_MAP = 1;  // what the file holds

}  // namespace

environment::~environment() {
    if (broken_ == ERRCODE_SUCCESS) {
        mdb_env_close(env_);
    }
}

pm_error environment::open(const std::string &folder) {
    folder_ = folder;
    extent ignored;
    if (pm_error error = read_extent(folder, &ignored)) {
        return error;
    }
    fault_guard::install();
    bool completed = false;
    const errcode opened = fault_guard::guarded([&] {
        const int result = open_file();
        completed = true;
        return code_of(result);
    });
    if (!completed) {
        broken_ = OPSTORE_DAMAGED;
    }
    if (opened != ERRCODE_SUCCESS) {
        return pm_error(opened);
    }
    // The one table is open in every transaction; its first read tells whether the store is ours.
    ownership whose = ownership::foreign;
    pm_error error = read([&](const table_state &state) {
        const errcode code = state.check_format(&whose);
        return code == ERRCODE_SUCCESS && whose == ownership::ours ? state.check_end(state.transaction())
                                                                   : OPSTORE_DAMAGED;
    });
    is_ours_ = !error;
    return whose == ownership::of_old_format ? pm_error(OPSTORE_DAMAGED, old_format_text(folder_)) : error;
}

// Opens the data file. The map that it records is address space which a limited process may not have; then
// the map is as large as what is in the file.
int environment::open_file() {
    // A lock file that LMDB makes for a reader shuts everybody else out; a store copied without one is read
    // without a slot.
    unlocked_ = unlocked_ || ::access(file_in(folder_, LOCK_FILE).c_str(), F_OK) != 0;
    int result = ENOMEM;
    pages_ = {};
    for (const std::size_t map : {RECORDED_MAP, SMALLEST_MAP}) {
        mdb_env_close(env_);
        env_ = nullptr;
        result = create_environment(&env_);
        if (result == 0 && map != RECORDED_MAP) {
            result = mdb_env_set_mapsize(env_, map);
        }
        if (result == 0) {
            result = mdb_env_open(env_, folder_.c_str(), MDB_RDONLY | MDB_NOTLS | (unlocked_ ? MDB_NOLOCK : 0U), 0);
        }
        if (!is_refused_map(result)) {
            break;
        }
    }
    return result;
}

// Opens the store again, without its lock file.
int environment::open_unlocked() {
    unlocked_ = true;
    return open_file();
}

// Maps what writers have added. After a failure there is no map.
int environment::follow_map() {
    pages_ = {};
    const int result = mdb_env_set_mapsize(env_, SMALLEST_MAP);
    if (result != 0) {
        broken_ = code_of(result);
    }
    return result;
}

// Whether a writer may have used pages of the state that was read without a slot: those that it frees
// are used again by the second transaction after the one that freed them.
bool environment::overtaken(MDB_txn *txn) const {
    MDB_envinfo info{};
    return unlocked_ && mdb_env_info(env_, &info) == 0 && info.me_last_txnid > mdb_txn_id(txn) + 1;
}

// Goes on to the newest state.
int environment::renew(MDB_txn *txn) {
    pages_.forget_pages();
    mdb_txn_reset(txn);
    int result = mdb_txn_renew(txn);
    if (result == MDB_MAP_RESIZED) {
        result = follow_map();
        result = result != 0 ? result : mdb_txn_renew(txn);
    }
    return result;
}

// Whether the lock file names no transaction, although there was one: a process was killed while it made the file anew.
// LMDB then reads a state of long ago.
bool environment::begins_before_the_head(MDB_txn *txn) const {
    MDB_envinfo info{};
    return !unlocked_ && mdb_txn_id(txn) == 0 && mdb_env_info(env_, &info) == 0 && info.me_last_txnid != 0;
}

// EAGAIN when the lock file is of no use.
int environment::begin_at_head(MDB_txn **txn) {
    const int result = mdb_txn_begin(env_, nullptr, MDB_RDONLY, txn);
    if (result != 0 || !begins_before_the_head(*txn)) {
        return result;
    }
    mdb_txn_abort(*txn);
    return EAGAIN;
}

int environment::begin(MDB_txn **txn) {
    int result = begin_at_head(txn);
    if ((result == EAGAIN || result == EACCES) && !unlocked_) {  // or a process of our PID has the slot
        result = open_unlocked();
        result = result != 0 ? result : mdb_txn_begin(env_, nullptr, MDB_RDONLY, txn);
    }
    for (int tries = 0; result == MDB_MAP_RESIZED && tries < MAX_TRIES; ++tries) {
        result = follow_map();
        result = result != 0 ? result : mdb_txn_begin(env_, nullptr, MDB_RDONLY, txn);
    }
    if (result == MDB_READERS_FULL) {  // slots of readers that were killed
        int cleared = 0;
        mdb_reader_check(env_, &cleared);
        result = mdb_txn_begin(env_, nullptr, MDB_RDONLY, txn);
    }
    if (result == 0) {
        result = mdb_dbi_open(*txn, nullptr, 0, &table_);
        if (result != 0) {
            mdb_txn_abort(*txn);
        }
    }
    return result;
}

}  // namespace lmdb_store
