// SPDX-License-Identifier: Apache-2.0
// Opens the store for writing, and reads and writes in one transaction.
#include "platform/local/lmdb_store/transaction.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include "platform/local/lmdb_store/data_file.h"
#include "platform/local/store/record_key.h"

namespace lmdb_store {

namespace {

constexpr std::size_t LARGEST_MAP = 64UL << 30;  // address space, not memory; the file grows as it is filled
constexpr std::size_t SMALLEST_MAP = 1UL << 30;
constexpr mode_t FILE_MODE = 0640;

constexpr fsblkcnt_t FEW_BLOCKS = 16;

constexpr char NOT_OURS[] = "not a perf-show store";

// A file of the store that may be of any size is mapped for writing whole: what a transaction writes then
// takes no memory of the process, however much it is.
bool may_be_any_size() {
    rlimit limit{};
    return ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
}

// Whether the file system of a folder is full, as far as anything of our size can tell.
bool is_full(const std::string &folder) {
    struct statvfs status {};
    return ::statvfs(folder.c_str(), &status) == 0 && status.f_bavail < FEW_BLOCKS;
}

pm_error not_ours(const std::string &folder) { return pm_error(OPSTORE_DAMAGED, folder + ": " + NOT_OURS); }

// The bytes of the data file in a folder by its own account; 0 when it has no sound head.
off_t accounted_size(const std::string &folder) {
    extent found;
    const pm_error ignored = read_extent(folder, &found);
    return static_cast<off_t>(found.accounted);
}

}  // namespace

// The result that guarded() takes for a code.
int transaction::result_of(errcode code) { return code == ERRCODE_SUCCESS ? 0 : MDB_CORRUPTED; }

// What a result of LMDB means to the user.
pm_error transaction::describe(int result) const {
    switch (result) {
    case 0: return {};
    case MDB_MAP_FULL: return pm_error(code_of(result), folder_ + ": the store is full");
    case MDB_INVALID: return not_ours(folder_);
    case MDB_CORRUPTED:
    case MDB_PAGE_NOTFOUND:
    case MDB_BAD_TXN:
    case MDB_PANIC:
    case MDB_CURSOR_FULL: return pm_error(OPSTORE_DAMAGED, folder_ + ": " + errcode_strerror(OPSTORE_DAMAGED));
    default: return pm_error(code_of(result), folder_ + ": " + mdb_strerror(result));
    }
}

// A page of the map that the file system has no room for is a fault like one of a file cut short.
pm_error transaction::describe_fault() const {
    return describe(write_map_ && is_full(folder_) ? ENOSPC : MDB_CORRUPTED);
}

transaction::~transaction() {
    outdated_ = false;
    if (!damaged_ && env_ != nullptr) {
        const pm_error ignored = guarded([&] {
            if (txn_ != nullptr) {
                mdb_txn_abort(txn_);
            }
            return 0;
        });
    }
    if (!committed_) {
        restore_size();
    }
    if (!damaged_ && env_ != nullptr) {
        const pm_error ignored = guarded([&] {
            mdb_env_close(env_);
            return 0;
        });
    }
    if (data_ >= 0) {
        ::close(data_);
    }
}

pm_error transaction::begin(const std::string &folder, old_store old) {
    folder_ = folder;
    reserve_standard_descriptors();
    if (pm_error error = place_.take(folder_, old == old_store::leave_aside)) {
        return error;
    }
    fault_guard::install();
    extent before;
    if (!place_.is_new()) {
        if (read_extent(folder_, &before).code() == OPSTORE_DAMAGED) {
            return not_ours(folder_);
        }
        if (pm_error error = refuse_foreign_store(before.accounted)) {
            return error;
        }
    }
    // A page that is missing has to stay missing until it is found: mapped for writing, it would be made.
    const bool suspect = before.ends_early();
    write_map_ = may_be_any_size() && !suspect;
    if (pm_error error = open()) {
        return error;
    }
    if (suspect) {
        if (pm_error error = read_everything()) {
            return error;
        }
    }
    return check_format();
}

// Leaves a store of another program as it is, its locks and its size included: it is read only.
pm_error transaction::refuse_foreign_store(std::uint64_t accounted) {
    struct stat status {};
    if (::stat(file_in(folder_, DATA_FILE).c_str(), &status) != 0 || status.st_size == 0) {
        return {};
    }
    // What a writer that was killed has left after the data is not worth restoring.
    size_before_ = accounted != 0 ? std::min(status.st_size, static_cast<off_t>(accounted)) : status.st_size;
    ownership whose = ownership::ours;
    pm_error error = guarded([&] {
        MDB_env *env = nullptr;
        MDB_txn *txn = nullptr;
        MDB_dbi table = 0;
        int result = create_environment(&env);
        result = result != 0 ? result : mdb_env_open(env, folder_.c_str(), MDB_RDONLY | MDB_NOLOCK | MDB_NOTLS, 0);
        result = result != 0 ? result : mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn);
        if (result == 0 && (result = mdb_dbi_open(txn, nullptr, 0, &table)) == 0) {
            result = result_of(table_state(txn, table).check_format(&whose));
        }
        mdb_txn_abort(txn);
        mdb_env_close(env);
        return is_refused_map(result) ? 0 : result;  // too little address space for its map; check_format() comes later
    });
    return !error && whose == ownership::foreign ? not_ours(folder_) : error;
}

// Opens the environment with the largest map that there is address space for. What is after the data of a file
// that is mapped for writing is empty: reading ahead would fill memory with it.
int transaction::open_environment(bool write_map) {
    int result = ENOMEM;
    for (std::size_t map = LARGEST_MAP; map >= SMALLEST_MAP && is_refused_map(result); map /= 2) {
        mdb_env_close(env_);
        env_ = nullptr;
        result = create_environment(&env_);
        if (result == 0) {
            mdb_env_set_mapsize(env_, map);
            result =
                mdb_env_open(env_, place_.place().c_str(), write_map ? MDB_WRITEMAP | MDB_NORDAHEAD : 0, FILE_MODE);
        }
    }
    return result;
}

// A process that is killed while it makes the lock file anew can leave one that names no transaction to those who wait
// for it. LMDB would change a state of long ago. The file is made again once nobody uses it.
pm_error transaction::open() {
    constexpr int MAX_TRIES = 300;
    constexpr useconds_t PAUSE = 10'000;
    for (int tries = 0; tries < MAX_TRIES; ++tries) {
        if (pm_error error = open_files()) {
            return error;
        }
        if (pm_error error = begin_transaction()) {
            return error;
        }
        if (!begins_before_the_head()) {
            return {};
        }
        if (pm_error error = close_files()) {
            return error;
        }
        ::usleep(PAUSE);
    }
    return pm_error(OPSTORE_BUSY,
                    folder_ + ": a process that was killed has left the lock file half made, and others use it");
}

bool transaction::begins_before_the_head() const {
    MDB_envinfo info{};
    return mdb_env_info(env_, &info) == 0 && mdb_txn_id(txn_) != info.me_last_txnid + 1;
}

pm_error transaction::close_files() {
    if (pm_error error = guarded([&] {
            mdb_txn_abort(txn_);
            txn_ = nullptr;
            return 0;
        })) {
        return error;
    }
    restore_size();
    ::close(data_);
    data_ = -1;
    return guarded([&] {
        mdb_env_close(env_);
        env_ = nullptr;
        return 0;
    });
}

pm_error transaction::open_files() {
    const mode_t old_mask = ::umask(0007);
    pm_error error = guarded([&] {
        int result = open_environment(write_map_);
        if (result > 0 && write_map_) {  // the file system has no such files or no such maps
            static_cast<void>(!::truncate(file_in(place_.place(), DATA_FILE).c_str(), size_before_));
            write_map_ = false;
            result = open_environment(write_map_);
        }
        int file = -1;
        if (result == 0 && mdb_env_get_fd(env_, &file) == 0) {
            data_ = ::fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
        }
        return result;
    });
    ::umask(old_mask);
    if (error) {
        return error;
    }
    place_.give_to_group();
    return {};
}

pm_error transaction::begin_transaction() {
    return guarded([&] {
        int cleared = 0;
        mdb_reader_check(env_, &cleared);  // slots of readers that were killed would keep pages in use
        const int result = mdb_txn_begin(env_, nullptr, 0, &txn_);
        return result != 0 ? result : mdb_dbi_open(txn_, nullptr, 0, &table_);
    });
}

void transaction::cut_to(off_t size) const {
    struct stat status {};
    if (data_ >= 0 && ::fstat(data_, &status) == 0 && size < status.st_size) {
        static_cast<void>(!::ftruncate(data_, size));
    }
}

// A file that is mapped for writing is made as large as its map, another one grows. Takes that back, but nothing
// that the head refers to.
void transaction::restore_size() const { cut_to(std::max(size_before_, accounted_size(place_.place()))); }

// Touches every key and value, so that a page that is missing is found before anything is written.
pm_error transaction::read_everything() {
    return guarded([&] {
        volatile char sink = 0;
        constexpr std::string_view FIRST_OF_ALL("\0", 1);  // LMDB takes no empty key
        const auto touch = [&](std::string_view key, std::string_view value) {
            sink = static_cast<char>(sink + key.back() + (value.empty() ? 0 : value.back()));
            return true;
        };
        return result_of(table_state(txn_, table_).scan("", FIRST_OF_ALL, touch));
    });
}

// Tells whose store it is; begins one where nothing was ever written.
pm_error transaction::check_format() {
    ownership whose = ownership::foreign;
    if (pm_error error = guarded([&] {
            const table_state state(txn_, table_);
            const errcode code = state.check_format(&whose);
            return result_of(
                code == ERRCODE_SUCCESS && whose == ownership::ours ? state.check_end(state.transaction() - 1) : code);
        })) {
        return error;
    }
    links_.attach(txn_, table_, &reserve_);
    if (write_map_) {
        reserve_.begin(data_, env_, txn_, table_);
    }
    outdated_ = whose == ownership::of_old_format;
    if (whose == ownership::foreign) {
        return not_ours(folder_);
    }
    return whose == ownership::never_written ? guarded([&] { return links_.begin_table(FORMAT); }) : pm_error();
}

pm_error transaction::clear() {
    outdated_ = false;
    reserve_.table_was_emptied();
    return guarded([&] {
        const int result = mdb_drop(txn_, table_, 0);
        return result != 0 ? result : links_.begin_table(FORMAT);
    });
}

pm_error transaction::get(std::string_view key, std::string_view *value) {
    return guarded([&] {
        MDB_val wanted = to_value(key);
        MDB_val found{};
        const int result = mdb_get(txn_, table_, &wanted, &found);
        *value = result == 0 ? without_link(to_view(found)) : std::string_view{};
        return result == MDB_NOTFOUND ? 0 : result;
    });
}

pm_error transaction::put(std::string_view key, std::string_view value) {
    return guarded([&] { return links_.put(key, value); });
}

pm_error transaction::remove(std::string_view key, std::uint64_t *removed) {
    return guarded([&] { return links_.remove(key, removed); });
}

pm_error transaction::remove_all(std::string_view prefix, std::uint64_t *removed) {
    return guarded([&] { return links_.remove_all(prefix, removed); });
}

pm_error transaction::commit() {
    off_t size = 0;
    if (pm_error error = guarded([&] { return links_.finish(); })) {
        return error;
    }
    pm_error error = guarded([&] {
        MDB_txn *txn = txn_;
        txn_ = nullptr;
        const int result = mdb_txn_commit(txn);
        MDB_envinfo info{};
        MDB_stat stat{};
        if (result == 0 && mdb_env_info(env_, &info) == 0 && mdb_env_stat(env_, &stat) == 0) {
            size = static_cast<off_t>((info.me_last_pgno + 1) * stat.ms_psize);
        }
        return result;
    });
    committed_ = !error;
    if (committed_) {
        note_head(data_);
    }
    if (size > 0) {  // as far as its head says, so that one cut short is told from a whole one
        cut_to(size);
    }
    return committed_ ? place_.settle() : error;
}

}  // namespace lmdb_store
