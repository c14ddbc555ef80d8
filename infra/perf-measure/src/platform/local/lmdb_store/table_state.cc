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
    case ENOMEM: return ERRCODE_NO_MEMORY;
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
        *value = to_view(found);
    }
    return code_of(result);
}

errcode table_state::get_parcel(std::string_view key, std::string_view *parcel) const {
    std::string_view value;
    if (const errcode code = get(key, &value); code != ERRCODE_SUCCESS) {
        return code;
    }
    *parcel = store::unseal(key, value);
    return parcel->empty() ? OPSTORE_DAMAGED : ERRCODE_SUCCESS;
}

errcode table_state::check_format(bool *is_ours) const {
    const char format_key = static_cast<char>(store::key_space::format);  // no string: a fault may end this
    std::string_view format;
    const errcode code = get({&format_key, 1}, &format);
    if (code == ERRCODE_NOT_FOUND) {
        *is_ours = entries() == 0;
        return ERRCODE_SUCCESS;
    }
    *is_ours = format == FORMAT;
    return code;
}

std::size_t table_state::entries() const {
    MDB_stat stat{};
    return mdb_stat(txn_, table_, &stat) == 0 ? stat.ms_entries : 0;
}

}  // namespace lmdb_store
