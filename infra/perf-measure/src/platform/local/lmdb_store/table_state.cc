// SPDX-License-Identifier: Apache-2.0
// Single records of a state of the table.
#include "platform/local/lmdb_store/table_state.h"

#include <cerrno>

#include "platform/local/lmdb_store/data_file.h"
#include "platform/local/lmdb_store/fault_guard.h"
#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"

namespace lmdb_store {

errcode code_of(int result) {
    switch (result) {
    case 0: return ERRCODE_SUCCESS;
    case MDB_NOTFOUND: return ERRCODE_NOT_FOUND;
    case ENOMEM:
    case ENOSPC:
    case EDQUOT: return ERRCODE_NO_MEMORY;
    case ENOENT:
    case ENOTDIR:
    case EACCES:
    case EPERM:
    case EROFS: return OPSTORE_NO_CLIENT;
    case MDB_READERS_FULL:
    case EAGAIN:
    case EMFILE:
    case ENFILE: return OPSTORE_BUSY;
    default: return OPSTORE_DAMAGED;
    }
}

bool is_refused_map(int result) { return result == ENOMEM || result == EINVAL; }

int create_environment(MDB_env **env) {
    reserve_standard_descriptors();
    if (const int result = mdb_env_create(env); result != 0) {
        return result;
    }
    mdb_env_set_maxreaders(*env, MAX_READERS);
    return mdb_env_set_assert(*env, [](MDB_env *, const char *) { fault_guard::abandon(); });
}

errcode table_state::get(std::string_view key, std::string_view *value) const {
    MDB_val wanted = to_value(key);
    MDB_val found{};
    const int result = mdb_get(txn_, table_, &wanted, &found);
    if (result == 0) {
        *value = without_link(to_view(found));
        return is_sound_answer(key, found) ? ERRCODE_SUCCESS : OPSTORE_DAMAGED;
    }
    if (result != MDB_NOTFOUND) {
        return code_of(result);
    }
    gap at;
    const errcode code = open_gap(key, &at);
    const bool absent = code == ERRCODE_SUCCESS && to_view(at.key) != key;
    mdb_cursor_close(at.cursor);
    return absent ? ERRCODE_NOT_FOUND : code == ERRCODE_SUCCESS ? OPSTORE_DAMAGED : code;
}

// The page that lists a large value is not the one that the value is in.
bool table_state::is_sound_answer(std::string_view key, const MDB_val &kept) const {
    if (pages_ == nullptr || !pages_->is_large(kept)) {
        return is_sound(kept, kept);
    }
    MDB_cursor *cursor = nullptr;
    MDB_val at = to_value(key);
    MDB_val same{};
    const bool sound = mdb_cursor_open(txn_, table_, &cursor) == 0 &&
                       mdb_cursor_get(cursor, &at, &same, MDB_SET_KEY) == 0 && is_sound(at, same);
    mdb_cursor_close(cursor);
    return sound;
}

void table_state::begin_pages() const {
    MDB_val key = to_value(FORMAT_KEY);
    MDB_val found{};
    MDB_stat stat{};
    if (pages_ != nullptr && mdb_get(txn_, table_, &key, &found) == 0 && mdb_stat(txn_, table_, &stat) == 0) {
        pages_->begin(found.mv_data, stat.ms_psize);
    }
}

errcode table_state::get_parcel(std::string_view key, std::string_view *parcel) const {
    std::string_view value;
    if (const errcode code = get(key, &value); code != ERRCODE_SUCCESS) {
        return code;
    }
    *parcel = store::unseal(key, value);
    return parcel->empty() ? OPSTORE_DAMAGED : ERRCODE_SUCCESS;
}

// Goes to the first record that is not before `from`, which is linked to the one before it. The caller closes the
// cursor, whatever the answer is.
errcode table_state::open_gap(std::string_view from, gap *out) const {
    if (const int result = mdb_cursor_open(txn_, table_, &out->cursor); result != 0) {
        return code_of(result);
    }
    out->key = to_value(from);
    int result = mdb_cursor_get(out->cursor, &out->key, &out->kept, MDB_SET_RANGE);
    if (result != 0) {
        return result == MDB_NOTFOUND ? OPSTORE_DAMAGED : code_of(result);  // every place is before the end
    }
    if (to_view(out->key) < from || !is_sound(out->key, out->kept)) {
        return OPSTORE_DAMAGED;
    }
    MDB_val before{};
    MDB_val kept_before{};
    result = mdb_cursor_get(out->cursor, &before, &kept_before, MDB_PREV);
    if (result == MDB_NOTFOUND) {
        return to_view(out->key) == FORMAT_KEY ? ERRCODE_SUCCESS : OPSTORE_DAMAGED;
    }
    result = result == 0 ? mdb_cursor_get(out->cursor, &out->key, &out->kept, MDB_NEXT) : result;
    if (result != 0) {
        return code_of(result);
    }
    out->before = to_view(before);
    const bool linked = is_sound(before, kept_before) && out->before < from && from <= to_view(out->key) &&
                        is_linked(to_view(out->kept), out->before, to_view(out->key));
    return linked ? ERRCODE_SUCCESS : OPSTORE_DAMAGED;
}

errcode table_state::check_format(ownership *whose) const {
    MDB_val key = to_value(FORMAT_KEY);
    MDB_val found{};
    const int result = mdb_get(txn_, table_, &key, &found);
    *whose = ownership::foreign;
    if (result == MDB_NOTFOUND) {
        const bool is_first = transaction() <= 1;  // to be read: 0; the one that is to write it: 1
        *whose = is_first && entries() == 0 ? ownership::never_written : ownership::foreign;
        return ERRCODE_SUCCESS;
    }
    if (result == 0 && to_view(found) == FORMAT) {
        *whose = ownership::ours;
    } else if (result == 0 && to_view(found) == OLD_FORMAT) {
        *whose = ownership::of_old_format;
    }
    return code_of(result);
}

errcode table_state::check_end(std::uint64_t made_by) const {
    std::string_view value;
    const errcode code = get(END_KEY, &value);
    const bool same = value.size() == sizeof made_by && std::memcmp(value.data(), &made_by, sizeof made_by) == 0;
    return code == ERRCODE_SUCCESS && same ? ERRCODE_SUCCESS : OPSTORE_DAMAGED;
}

std::size_t table_state::entries() const {
    MDB_stat stat{};
    return mdb_stat(txn_, table_, &stat) == 0 ? stat.ms_entries : 0;
}

}  // namespace lmdb_store
