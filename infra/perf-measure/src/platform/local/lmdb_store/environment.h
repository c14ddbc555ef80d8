// SPDX-License-Identifier: Apache-2.0
// The store's LMDB environment opened for reading.
#pragma once

#include <lmdb.h>
#include <string>

#include "base/pm_error.h"
#include "platform/errcode.h"
#include "platform/local/lmdb_store/fault_guard.h"
#include "platform/local/lmdb_store/table_state.h"

namespace lmdb_store {

// One per process and folder: LMDB allows a file to be opened once only. After a fault LMDB is not called again.
class environment {
public:
    environment() = default;
    ~environment();
    environment(const environment &) = delete;
    environment &operator=(const environment &) = delete;

    // OPSTORE_NO_CLIENT when there is no store in the folder or it may not be read; OPSTORE_DAMAGED, also for a store
    // of another program.
    [[nodiscard]] pm_error open(const std::string &folder);

    // Runs body(table_state), which returns an errcode, on one consistent state and holds nothing of the store
    // afterwards. The body must not own anything when it touches the state (see fault_guard.h), and begins again each
    // time it is called: a state that a writer overtook is read again. A read within a body is of the same state.
    template <class Body>
    [[nodiscard]] pm_error read(Body body);

private:
    static constexpr int MAX_TRIES = 100;  // of reading a state that writers overtake

    [[nodiscard]] int open_file();
    [[nodiscard]] int open_unlocked();
    [[nodiscard]] int follow_map();
    [[nodiscard]] int begin(MDB_txn **txn);
    [[nodiscard]] int renew(MDB_txn *txn);
    [[nodiscard]] bool overtaken(MDB_txn *txn) const;
    [[nodiscard]] bool begins_before_the_head(MDB_txn *txn) const;
    [[nodiscard]] int begin_at_head(MDB_txn **txn);
    template <class Body>
    [[nodiscard]] errcode answer(const table_state &state, Body &body);
    template <class Body>
    [[nodiscard]] errcode read_whole_state(MDB_txn *txn, Body &body);

    std::string folder_;
    MDB_env *env_ = nullptr;
    // Reading without a slot in the lock file, which another process of the same PID holds (each in a PID namespace of
    // its own). A state is then checked after it was read.
    bool unlocked_ = false;
    MDB_dbi table_ = 0;
    page_check pages_;
    const table_state *current_ = nullptr;  // while a body runs
    bool is_ours_ = false;                  // a store of our format
    std::size_t checked_ = 0;               // the last state that is known to be the one that the head names
    errcode broken_ = ERRCODE_SUCCESS;      // why LMDB must not be called any more
};

// Implementation of the templates ----------------------------------------------------------------

// Runs the body on a state, the first time after a look whether the state is the one that the head names.
template <class Body>
errcode environment::answer(const table_state &state, Body &body) {
    if (!pages_.has_begun()) {
        state.begin_pages();
    }
    if (is_ours_ && state.transaction() != checked_) {
        if (const errcode code = state.check_end(state.transaction()); code != ERRCODE_SUCCESS) {
            return code;
        }
        checked_ = state.transaction();
    }
    return body(state);
}

// Runs the body again for each state that a writer overtook meanwhile.
template <class Body>
errcode environment::read_whole_state(MDB_txn *txn, Body &body) {
    pages_.forget_pages();
    const table_state state(txn, table_, &pages_);
    current_ = &state;
    errcode code = answer(state, body);
    for (int tries = 0; overtaken(txn); ++tries) {
        if (tries == MAX_TRIES) {
            return OPSTORE_BUSY;
        }
        if (const int result = renew(txn); result != 0) {
            return code_of(result);
        }
        code = answer(state, body);
    }
    return code;
}

template <class Body>
pm_error environment::read(Body body) {
    if (broken_ != ERRCODE_SUCCESS) {
        return pm_error(broken_);
    }
    if (current_ != nullptr) {
        return pm_error(body(*current_));
    }
    MDB_txn *txn = nullptr;
    bool completed = false;
    const errcode code = fault_guard::guarded([&] {
        if (const int result = begin(&txn); result != 0) {
            completed = true;
            return code_of(result);
        }
        errcode answer = ERRCODE_SUCCESS;
        try {
            answer = read_whole_state(txn, body);
        } catch (...) {
            mdb_txn_abort(txn);
            current_ = nullptr;
            throw;
        }
        mdb_txn_abort(txn);
        completed = true;
        return answer;
    });
    current_ = nullptr;
    if (!completed) {
        broken_ = OPSTORE_DAMAGED;
    }
    return pm_error(code);
}

}  // namespace lmdb_store
