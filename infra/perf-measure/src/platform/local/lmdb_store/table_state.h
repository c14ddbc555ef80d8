// SPDX-License-Identifier: Apache-2.0
// One consistent state of the store's table, and what LMDB's results mean. Every use of it is inside
// fault_guard::guarded: the file is not trusted.
#pragma once

#include <cstddef>
#include <lmdb.h>
#include <string_view>

#include "platform/errcode.h"

namespace lmdb_store {

inline constexpr char FORMAT[] = "perf-show opstore 1";  // the value under key_space::format
inline constexpr unsigned MAX_READERS = 510;             // at one time

// The code of a result of LMDB, its own or the system's. A result that is not known is damage, never success.
[[nodiscard]] errcode code_of(int result);

// Makes an LMDB environment whose failed assertions end the guarded body instead of the process, and whose
// files never get the descriptors of standard input, output or error. Returns LMDB's result.
[[nodiscard]] int create_environment(MDB_env **env);

[[nodiscard]] inline MDB_val to_value(std::string_view text) { return {text.size(), const_cast<char *>(text.data())}; }
[[nodiscard]] inline std::string_view to_view(const MDB_val &value) {
    return {static_cast<const char *>(value.mv_data), value.mv_size};
}

// Views that it gives are into the store's map, valid while the transaction is open.
class table_state {
public:
    table_state(MDB_txn *txn, MDB_dbi table) : txn_(txn), table_(table) {}

    // ERRCODE_NOT_FOUND when there is no such key.
    [[nodiscard]] errcode get(std::string_view key, std::string_view *value) const;
    // The parcel of a record; OPSTORE_DAMAGED when another key's value is there.
    [[nodiscard]] errcode get_parcel(std::string_view key, std::string_view *parcel) const;

    // Whether the store is ours, or one in which nothing was ever committed; else it is another program's.
    [[nodiscard]] errcode check_format(bool *is_ours) const;

    // How many keys there are, of whatever kind; and which transaction made this state.
    [[nodiscard]] std::size_t entries() const;
    [[nodiscard]] std::size_t transaction() const { return mdb_txn_id(txn_); }

    // Calls visit(key, value) for the keys that begin with `prefix`, in order, from the first one that is not before
    // `from`, until visit returns false. OPSTORE_DAMAGED when the keys do not ascend: a damaged tree could go round in
    // circles. Neither text may be empty.
    template <class Visit>
    [[nodiscard]] errcode scan(std::string_view prefix, std::string_view from, Visit visit) const;
    template <class Visit>
    [[nodiscard]] errcode scan(std::string_view prefix, Visit visit) const {
        return scan(prefix, prefix, visit);
    }

private:
    MDB_txn *txn_;
    MDB_dbi table_;
};

// Implementation of the template -----------------------------------------------------------------

template <class Visit>
errcode table_state::scan(std::string_view prefix, std::string_view from, Visit visit) const {
    MDB_cursor *cursor = nullptr;
    if (const int result = mdb_cursor_open(txn_, table_, &cursor); result != 0) {
        return code_of(result);
    }
    MDB_val key = to_value(from);
    MDB_val value{};
    std::string_view before;
    bool ascends = true;
    int result = mdb_cursor_get(cursor, &key, &value, MDB_SET_RANGE);
    while (result == 0 && to_view(key).starts_with(prefix)) {
        ascends = before.empty() ? from <= to_view(key) : before < to_view(key);
        before = to_view(key);
        if (!ascends || !visit(before, to_view(value))) {
            break;
        }
        result = mdb_cursor_get(cursor, &key, &value, MDB_NEXT);
    }
    mdb_cursor_close(cursor);
    if (result == MDB_NOTFOUND) {
        return ERRCODE_SUCCESS;
    }
    return ascends ? code_of(result) : OPSTORE_DAMAGED;
}

}  // namespace lmdb_store
