// SPDX-License-Identifier: Apache-2.0
// One consistent state of the store's table, and what LMDB's results mean. Every use of it is inside
// fault_guard::guarded: the file is not trusted.
#pragma once

#include <cstddef>
#include <lmdb.h>
#include <string_view>

#include "platform/errcode.h"
#include "platform/local/lmdb_store/links.h"
#include "platform/local/lmdb_store/page_check.h"

namespace lmdb_store {

inline constexpr char FORMAT[] = "perf-show opstore 2";      // the value under key_space::format
inline constexpr char OLD_FORMAT[] = "perf-show opstore 1";  // of stores whose records have no links
inline constexpr unsigned MAX_READERS = 510;                 // at one time

// Whose store it is. One without a format record is nobody's, unless nothing was ever committed to it.
enum class ownership { ours, of_old_format, never_written, foreign };

// The code of a result of LMDB, its own or the system's. A result that is not known is damage, never success.
[[nodiscard]] errcode code_of(int result);

// Whether a result means that there is no address space for a map: a limit of the system (ENOMEM), or a machine that is
// emulated and has fewer addresses (EINVAL, as of valgrind). A smaller map may do.
[[nodiscard]] bool is_refused_map(int result);

// Makes an LMDB environment whose failed assertions end the guarded body instead of the process, and whose
// files never get the descriptors of standard input, output or error. Returns LMDB's result.
[[nodiscard]] int create_environment(MDB_env **env);

[[nodiscard]] inline MDB_val to_value(std::string_view text) { return {text.size(), const_cast<char *>(text.data())}; }
[[nodiscard]] inline std::string_view to_view(const MDB_val &value) {
    return {static_cast<const char *>(value.mv_data), value.mv_size};
}

// Views that it gives are into the store's map, valid while the transaction is open. Links are checked wherever
// records are read, and are no part of the values.
class table_state {
public:
    // Looks at pages as far as `pages` is given, which a transaction that writes has none of.
    explicit table_state(MDB_txn *txn, MDB_dbi table, page_check *pages = nullptr)
        : txn_(txn), table_(table), pages_(pages) {}

    // ERRCODE_NOT_FOUND when there is no such key, which the record after its place confirms; OPSTORE_DAMAGED when
    // that knows of another one.
    [[nodiscard]] errcode get(std::string_view key, std::string_view *value) const;
    // The parcel of a record; OPSTORE_DAMAGED when another key's value is there.
    [[nodiscard]] errcode get_parcel(std::string_view key, std::string_view *parcel) const;

    // Tells the pages where their map is, by the format's record.
    void begin_pages() const;

    [[nodiscard]] errcode check_format(ownership *whose) const;
    // Whether the state was made by that transaction, which is the one that the file's head names.
    [[nodiscard]] errcode check_end(std::uint64_t made_by) const;

    // How many keys there are, of whatever kind; and which transaction made this state, or is to make the next one.
    [[nodiscard]] std::size_t entries() const;
    [[nodiscard]] std::size_t transaction() const { return mdb_txn_id(txn_); }

    // Calls visit(key, value) for the keys that begin with `prefix`, in order, from the first one that is not before
    // `from`, until visit returns false; the key is a store::summed_key. OPSTORE_DAMAGED when a record is missing
    // there, or when the keys do not ascend: a damaged tree could go round in circles. Neither text may be empty. Calls
    // meanwhile() after each step to another record, whose bytes are on their way from memory then.
    template <class Visit, class Meanwhile>
    [[nodiscard]] errcode scan(std::string_view prefix, std::string_view from, Visit visit, Meanwhile meanwhile) const;
    template <class Visit>
    [[nodiscard]] errcode scan(std::string_view prefix, std::string_view from, Visit visit) const {
        return scan(prefix, from, visit, [] {});
    }
    template <class Visit>
    [[nodiscard]] errcode scan(std::string_view prefix, Visit visit) const {
        return scan(prefix, prefix, visit);
    }

private:
    // A place between two neighbours of the table, and a cursor at the later one.
    struct gap {
        MDB_cursor *cursor = nullptr;
        std::string_view before;  // empty before the first record
        MDB_val key{};
        MDB_val kept{};
    };
    [[nodiscard]] errcode open_gap(std::string_view from, gap *out) const;
    // Whether a record is in sound pages: one at a cursor, or one of which the value was found.
    [[nodiscard]] bool is_sound(const MDB_val &key, const MDB_val &kept) const {
        return pages_ == nullptr || pages_->is_sound(key, kept);
    }
    [[nodiscard]] bool is_sound_answer(std::string_view key, const MDB_val &kept) const;

    MDB_txn *txn_;
    MDB_dbi table_;
    page_check *pages_;
};

// Implementation of the template -----------------------------------------------------------------

// Asks for the first bytes of a record before they are used. A page that is missing does no harm here.
inline void prefetch(const MDB_val &kept) {
    constexpr std::size_t LINE = 64;
    constexpr std::size_t MOST = 4096;
    const auto *bytes = static_cast<const char *>(kept.mv_data);
    for (std::size_t at = 0; at < kept.mv_size && at < MOST; at += LINE) {
        __builtin_prefetch(bytes + at);
    }
}

template <class Visit, class Meanwhile>
errcode table_state::scan(std::string_view prefix, std::string_view from, Visit visit, Meanwhile meanwhile) const {
    gap at;
    errcode code = open_gap(from, &at);
    store::summed_key key(code == ERRCODE_SUCCESS ? to_view(at.key) : std::string_view());
    while (code == ERRCODE_SUCCESS && key.text.starts_with(prefix)) {
        if (!visit(key, without_link(to_view(at.kept))) || key.text == END_KEY) {
            break;
        }
        const int result = mdb_cursor_get(at.cursor, &at.key, &at.kept, MDB_NEXT);
        if (result != 0) {
            code = result == MDB_NOTFOUND ? OPSTORE_DAMAGED : code_of(result);  // the end is missing
            break;
        }
        prefetch(at.kept);
        meanwhile();
        if (!is_sound(at.key, at.kept)) {
            code = OPSTORE_DAMAGED;
            break;
        }
        const store::summed_key next(to_view(at.key));
        if (key.text >= next.text || !is_linked(to_view(at.kept), key, next)) {
            code = OPSTORE_DAMAGED;
        }
        key = next;
    }
    mdb_cursor_close(at.cursor);
    return code;
}

}  // namespace lmdb_store
