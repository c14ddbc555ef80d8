// The embedded store of the local platform: an LMDB environment with one table.
//
// A key is one letter for what it names (key_space) and the name itself, numbers in big-endian
// order, so that items of one branch stand together in the byte order of their paths.
// docs/store-format.md is the full account.
#pragma once

#include <cstdint>
#include <lmdb.h>
#include <string>
#include <string_view>
#include <vector>

#include "paths/roots.h"
#include "platform/errcode.h"
#include "platform/local/lmdb_store/fault_guard.h"
#include "platform/parcel.h"

namespace store {

inline constexpr char DEFAULT_URL[] = "lmdb:/var/lib/perf-show/opstore";
inline constexpr char FORMAT[] = "perf-show opstore 1";  // the value under key_space::format
inline constexpr unsigned MAX_READERS = 510;             // at one time
inline constexpr int MAX_TRIES = 100;                    // of reading a state that writers overtake
inline constexpr std::size_t MAX_PATH_LENGTH = 400;      // bytes of an item's path below its branch

enum class key_space : char {
    format = 'F',
    interface = 'H',  // 32-bit handle: local_interface
    item = 'I',       // root, 32-bit node id, path: a parcel
    node = 'N',       // 32-bit position in the inventory: local_node
    platform = 'P',   // local_platform
    publisher = 'U',  // root, 32-bit node id: local_publisher
    schema = 'S',     // 64-bit fingerprint: schema text
};

using path_grammar::root;
using path_grammar::root_name;
using path_grammar::ROOTS;

enum class publisher_state : std::uint32_t { running, stopped, unreachable, starting };

[[nodiscard]] std::string key(key_space space);
[[nodiscard]] std::string key(key_space space, std::uint32_t number);
[[nodiscard]] std::string schema_key(std::uint64_t fingerprint);
[[nodiscard]] std::string branch_key(key_space space, root root, std::uint32_t node);

// The folder that a store URL names; null for a URL of another form.
[[nodiscard]] const char *folder_of(const char *url);
// OPSTORE_URL, or the default.
[[nodiscard]] const char *configured_url();

// The errcode of an LMDB or system failure.
[[nodiscard]] errcode code_of(int failure);

// A record is kept as the checksum of its key and its parcel, so that a record that has come to stand
// under another key is noticed. `seal` makes such a value; `unseal` gives the parcel, empty when the
// value is not that key's.
void seal(std::string_view key, std::string_view parcel, std::vector<std::uint8_t> *value);
[[nodiscard]] std::string_view unseal(std::string_view key, std::string_view value);

// One consistent state of the store, inside environment::read. Views point into the store's map.
class view {
public:
    view(MDB_txn *txn, MDB_dbi table) : txn_(txn), table_(table) {}

    // ERRCODE_NOT_FOUND when there is no such key.
    [[nodiscard]] errcode get(std::string_view key, std::string_view *value) const;
    // The parcel of a record; OPSTORE_DAMAGED when another key's value stands there.
    [[nodiscard]] errcode get_parcel(std::string_view key, std::string_view *parcel) const;

    // Whether the store is ours, or one in which nothing was ever committed; else it is another program's.
    [[nodiscard]] errcode check_format(bool *is_ours) const;

    // How many keys there are, of whatever kind; and which transaction made this state.
    [[nodiscard]] std::size_t entries() const;
    [[nodiscard]] std::size_t transaction() const { return mdb_txn_id(txn_); }

    // Calls visit(key, value) for the keys that begin with `prefix`, in order, from the first one
    // after `after` (from the first of all when it is empty), until visit returns false.
    template <class Visit>
    [[nodiscard]] errcode scan(std::string_view prefix, std::string_view after, Visit visit) const;

private:
    MDB_txn *txn_;
    MDB_dbi table_;
};

// The store opened for reading. One per process: LMDB allows a file to be opened once only.
class environment {
public:
    // The process's environment, opened from configured_url() at the first call that succeeds.
    [[nodiscard]] static errcode shared(environment **out);

    // Runs body(view) on one consistent state and holds nothing of the store afterwards. The body
    // must not own anything when it touches the view (see fault_guard.h), and begins afresh each time it
    // is called: a state that a writer overtook is read again.
    template <class Body>
    [[nodiscard]] errcode read(Body body);

    // The same on the state that is being read, when a body asks for more; else on one of its own.
    template <class Body>
    [[nodiscard]] errcode read_further(Body body) {
        return current_ != nullptr ? body(*current_) : read(body);
    }

    // Decodes the value under `key` into a zeroed record that the caller frees with
    // parcel_free_indirections.
    [[nodiscard]] errcode get_record(std::string_view key, void *record, const parcel_descriptor *descriptor);

private:
    [[nodiscard]] errcode open(const char *folder);
    [[nodiscard]] int open_file();
    [[nodiscard]] int open_unlocked();
    [[nodiscard]] int follow_map();
    [[nodiscard]] int begin(MDB_txn **txn);
    [[nodiscard]] bool overtaken(MDB_txn *txn) const;
    template <class Body>
    [[nodiscard]] errcode read_whole_state(MDB_txn *txn, Body &body);

    std::string folder_;
    MDB_env *env_ = nullptr;
    // Reading without a slot in the lock file, which another process of this process's number holds (each
    // in a PID namespace of its own). A state is then checked after it was read.
    bool unlocked_ = false;
    MDB_dbi table_ = 0;
    errcode broken_ = ERRCODE_SUCCESS;  // why LMDB must not be called any more
    const view *current_ = nullptr;     // of the body that runs; the map must stay where it is
};

// The head of the store's data file, as far as it can be checked without LMDB.
[[nodiscard]] errcode check_file(const char *folder);
// Whether the data file ends before the last page of its tree: it was cut short, or its last pages were
// taken and given back by a transaction and never written.
[[nodiscard]] bool ends_early(const char *folder);
// Bytes of the data file by its own account; 0 when it has no sound head.
[[nodiscard]] std::uint64_t accounted_size(const char *folder);

// Puts something that can be used for nothing where the caller closed a standard file. Else the next file
// opened would stand there, the store's, and be written to as standard output.
void occupy_standard_files();

// Makes an LMDB environment whose failed assertions end the guarded body instead of the process, and whose
// files are never standard ones.
[[nodiscard]] int create_environment(MDB_env **env);

// Implementation of the templates ----------------------------------------------------------------

namespace detail {

inline MDB_val to_value(std::string_view text) { return {text.size(), const_cast<char *>(text.data())}; }
inline std::string_view to_view(const MDB_val &value) {
    return {static_cast<const char *>(value.mv_data), value.mv_size};
}

}  // namespace detail

template <class Visit>
errcode view::scan(std::string_view prefix, std::string_view after, Visit visit) const {
    MDB_cursor *cursor = nullptr;
    if (const int failure = mdb_cursor_open(txn_, table_, &cursor); failure != 0) {
        return code_of(failure);
    }
    MDB_val key = detail::to_value(after.empty() ? prefix : after);
    MDB_val value{};
    int failure = mdb_cursor_get(cursor, &key, &value, MDB_SET_RANGE);
    if (failure == 0 && !after.empty() && detail::to_view(key) == after) {
        failure = mdb_cursor_get(cursor, &key, &value, MDB_NEXT);
    }
    while (failure == 0 && detail::to_view(key).starts_with(prefix) &&
           visit(detail::to_view(key), detail::to_view(value))) {
        failure = mdb_cursor_get(cursor, &key, &value, MDB_NEXT);
    }
    mdb_cursor_close(cursor);
    return failure == MDB_NOTFOUND ? ERRCODE_SUCCESS : code_of(failure);
}

// Runs the body again for each state that a writer overtook meanwhile.
template <class Body>
errcode environment::read_whole_state(MDB_txn *txn, Body &body) {
    const auto read_once = [&] {
        const view state(txn, table_);
        current_ = &state;
        const errcode code = body(state);
        current_ = nullptr;
        return code;
    };
    errcode code = read_once();
    for (int tries = 0; overtaken(txn); ++tries) {
        if (tries == MAX_TRIES) {
            return OPSTORE_BUSY;
        }
        mdb_txn_reset(txn);
        int failure = mdb_txn_renew(txn);
        if (failure == MDB_MAP_RESIZED) {
            failure = follow_map();
            failure = failure != 0 ? failure : mdb_txn_renew(txn);
        }
        if (failure != 0) {
            return code_of(failure);
        }
        code = read_once();
    }
    return code;
}

template <class Body>
errcode environment::read(Body body) {
    if (broken_ != ERRCODE_SUCCESS) {
        return broken_;
    }
    MDB_txn *txn = nullptr;
    bool left = false;
    const errcode result = fault_guard::guarded([&] {
        if (const int failure = begin(&txn); failure != 0) {
            left = true;
            return code_of(failure);
        }
        errcode code = ERRCODE_SUCCESS;
        try {
            code = read_whole_state(txn, body);
        } catch (...) {
            current_ = nullptr;
            mdb_txn_abort(txn);
            throw;
        }
        mdb_txn_abort(txn);
        left = true;
        return code;
    });
    current_ = nullptr;  // also after a fault
    if (!left) {
        broken_ = OPSTORE_DAMAGED;
    }
    return result;
}

}  // namespace store
