// SPDX-License-Identifier: Apache-2.0
// Runs of records, and the links at their ends.
#include "platform/local/lmdb_store/link_keeper.h"

#include <algorithm>
#include <cstring>

#include "platform/local/lmdb_store/table_state.h"

namespace lmdb_store {

void link_keeper::attach(MDB_txn *txn, MDB_dbi table, page_reserve *reserve) {
    reserve_ = reserve;
    txn_ = txn;
    table_ = table;
    runs_.clear();
    runs_.reserve(MAX_RUNS + 1);
}

// Runs body(cursor). A fault leaves the cursor to the transaction, which is not used again.
template <class Body>
int link_keeper::with_cursor(Body body) {
    MDB_cursor *cursor = nullptr;
    int result = mdb_cursor_open(txn_, table_, &cursor);
    if (result == 0) {
        result = body(cursor);
        mdb_cursor_close(cursor);
    }
    return result;
}

int link_keeper::begin_table(std::string_view format) {
    runs_.clear();
    MDB_val key = to_value(FORMAT_KEY);
    MDB_val value = to_value(format);
    const int result = mdb_put(txn_, table_, &key, &value, 0);
    return result != 0 ? result : write(END_KEY, link_between(FORMAT_KEY, END_KEY), {});
}

int link_keeper::write(std::string_view key, link before, std::string_view value) {
    if (const int result = reserve_->grow(sizeof before + value.size()); result != 0) {
        return result;
    }
    MDB_val to = to_value(key);
    MDB_val room{sizeof before + value.size(), nullptr};
    const int result = mdb_put(txn_, table_, &to, &room, MDB_RESERVE);
    if (result == 0) {
        char *const bytes = static_cast<char *>(room.mv_data);
        std::memcpy(bytes, &before, sizeof before);
        if (!value.empty()) {
            std::memcpy(bytes + sizeof before, value.data(), value.size());
        }
    }
    return result;
}

int link_keeper::remove_at(MDB_cursor *cursor) {
    const int result = reserve_->grow(0);
    return result != 0 ? result : mdb_cursor_del(cursor, 0);
}

int link_keeper::relink(std::string_view key, std::string_view before) {
    MDB_val to = to_value(key);
    MDB_val kept{};
    if (const int result = mdb_get(txn_, table_, &to, &kept); result != 0) {
        return result == MDB_NOTFOUND ? MDB_CORRUPTED : result;
    }
    scratch_ = without_link(to_view(kept));  // a copy: the page may move when it is written
    return write(key, link_between(before, key), scratch_);
}

// The run that a key continues; null when it continues none.
link_keeper::run *link_keeper::find_run(std::string_view key) {
    const auto after = std::upper_bound(runs_.begin(), runs_.end(), key,
                                        [](std::string_view wanted, const run &each) { return wanted < each.last; });
    if (after == runs_.begin()) {
        return nullptr;
    }
    run &candidate = *(after - 1);
    return candidate.last < key && key < candidate.next ? &candidate : nullptr;
}

int link_keeper::put(std::string_view key, std::string_view value) {
    run *continued = find_run(key);
    if (continued == nullptr) {
        return put_in_place(key, value);
    }
    const int result = write(key, link_between(continued->last, key), value);
    continued->last = key;  // still before every run that comes after it
    continued->used = ++uses_;
    return result;
}

// Puts a record that continues no run: one that is there keeps its link, another one begins a run.
int link_keeper::put_in_place(std::string_view key, std::string_view value) {
    MDB_val at = to_value(key);
    MDB_val kept{};
    MDB_val before{};
    MDB_val ignored{};
    bool exists = false;
    std::string next;
    link linked = 0;
    int result = with_cursor([&](MDB_cursor *cursor) {
        int found = mdb_cursor_get(cursor, &at, &kept, MDB_SET_RANGE);
        exists = found == 0 && to_view(at) == key && kept.mv_size >= sizeof linked;
        if (exists) {
            std::memcpy(&linked, kept.mv_data, sizeof linked);
            return 0;
        }
        found = found == 0 ? mdb_cursor_get(cursor, &before, &ignored, MDB_PREV) : found;
        return found == 0 && is_linked(to_view(kept), to_view(before), to_view(at)) ? 0 : MDB_CORRUPTED;
    });
    if (result == 0 && !exists) {
        next = to_view(at);
        linked = link_between(to_view(before), key);
    }
    result = result != 0 ? result : write(key, linked, value);
    return result != 0 || exists ? result : begin_run(key, next);
}

int link_keeper::begin_run(std::string_view key, std::string_view next) {
    if (runs_.size() == MAX_RUNS) {
        const auto oldest = std::ranges::min_element(runs_, {}, &run::used);
        if (const int result = close_run(*oldest); result != 0) {
            return result;
        }
        runs_.erase(oldest);
    }
    const auto place =
        std::ranges::upper_bound(runs_, key, {}, [](const run &each) -> std::string_view { return each.last; });
    runs_.insert(place, {std::string(key), std::string(next), ++uses_});
    return 0;
}

int link_keeper::close_run(const run &which) { return relink(which.next, which.last); }

int link_keeper::close_runs() {
    int result = 0;
    for (const run &each : runs_) {
        result = result != 0 ? result : close_run(each);
    }
    runs_.clear();
    return result;
}

int link_keeper::remove(std::string_view key, std::uint64_t *removed) {
    if (const int result = close_runs(); result != 0) {
        return result;
    }
    std::string before;
    std::string next;
    const int result = with_cursor([&](MDB_cursor *cursor) {
        MDB_val at = to_value(key);
        MDB_val other{};
        MDB_val ignored{};
        int found = mdb_cursor_get(cursor, &at, &ignored, MDB_SET);
        if (found != 0) {
            return found;
        }
        found = mdb_cursor_get(cursor, &other, &ignored, MDB_NEXT);
        if (found == 0) {
            next = to_view(other);
            found = mdb_cursor_get(cursor, &other, &ignored, MDB_PREV);
        }
        found = found == 0 ? mdb_cursor_get(cursor, &other, &ignored, MDB_PREV) : found;
        if (found == 0) {
            before = to_view(other);
            at = to_value(key);
            found = mdb_cursor_get(cursor, &at, &ignored, MDB_SET);
        }
        return found == 0 ? remove_at(cursor) : MDB_CORRUPTED;
    });
    if (result != 0) {
        return result == MDB_NOTFOUND ? 0 : result;
    }
    ++*removed;
    return relink(next, before);
}

int link_keeper::remove_all(std::string_view prefix, std::uint64_t *removed) {
    if (const int result = close_runs(); result != 0) {
        return result;
    }
    std::string before;
    std::string next;
    const int result = with_cursor([&](MDB_cursor *cursor) {
        MDB_val key = to_value(prefix);
        MDB_val value{};
        int found = mdb_cursor_get(cursor, &key, &value, MDB_SET_RANGE);
        if (found == 0 && (found = mdb_cursor_get(cursor, &key, &value, MDB_PREV)) == 0) {
            before = to_view(key);
            found = mdb_cursor_get(cursor, &key, &value, MDB_NEXT);
        }
        while (found == 0 && to_view(key).starts_with(prefix)) {
            found = remove_at(cursor);
            *removed += found == 0 ? 1 : 0;
            if (found == 0) {  // the cursor is where the item was, on the next one
                found = mdb_cursor_get(cursor, &key, &value, MDB_GET_CURRENT);
            }
        }
        if (found == 0) {
            next = to_view(key);
        }
        return found == MDB_NOTFOUND || found == EINVAL ? MDB_CORRUPTED : found;  // there is always an end
    });
    return result != 0 ? result : relink(next, before);
}

int link_keeper::finish() {
    if (const int result = close_runs(); result != 0) {
        return result;
    }
    MDB_val key = to_value(END_KEY);
    MDB_val kept{};
    if (const int result = mdb_get(txn_, table_, &key, &kept); result != 0 || kept.mv_size < sizeof(link)) {
        return result != 0 ? result : MDB_CORRUPTED;
    }
    link before = 0;
    std::memcpy(&before, kept.mv_data, sizeof before);
    const std::uint64_t made_by = mdb_txn_id(txn_);
    return write(END_KEY, before, {reinterpret_cast<const char *>(&made_by), sizeof made_by});
}

}  // namespace lmdb_store
