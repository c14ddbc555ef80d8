// SPDX-License-Identifier: Apache-2.0
// Bounds the pages of a transaction by the size of its table, and reserves ahead of them.
#include "platform/local/lmdb_store/reserve.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace lmdb_store {

namespace {

constexpr std::uint64_t SMALLEST_STEP = 64;  // pages that are reserved at once
constexpr std::uint64_t LARGEST_STEP = 16384;
constexpr std::uint64_t LEVELS = 8;  // of a tree: a change writes one page of each and may split it
constexpr std::uint64_t SPARE = 32;  // for the tree of free pages
constexpr std::uint64_t FREE_PAGES_IN_A_PAGE = 256;

std::uint64_t pages_of(const MDB_stat &stat) {
    return stat.ms_branch_pages + stat.ms_leaf_pages + stat.ms_overflow_pages;
}

// Whether parts of a file have no blocks, as in one that was copied without its zeroes.
bool has_holes(int file, std::uint64_t size) {
    constexpr std::uint64_t BLOCK = 512;
    struct stat status {};
    return ::fstat(file, &status) == 0 && static_cast<std::uint64_t>(status.st_blocks) * BLOCK < size;
}

}  // namespace

void page_reserve::begin(int file, MDB_env *env, MDB_txn *txn, MDB_dbi table) {
    MDB_stat stat{};
    MDB_envinfo info{};
    if (mdb_stat(txn, table, &stat) != 0 || mdb_env_info(env, &info) != 0) {
        return;
    }
    file_ = file;
    txn_ = txn;
    table_ = table;
    page_size_ = stat.ms_psize;
    first_new_page_ = info.me_last_pgno + 1;
    pages_before_ = pages_of(stat);
    commit_pages_ = SPARE + first_new_page_ / FREE_PAGES_IN_A_PAGE;
    reserved_to_ = has_holes(file, first_new_page_ * page_size_) ? 0 : first_new_page_;
}

int page_reserve::grow(std::size_t value_bytes) {
    MDB_stat stat{};
    if (file_ < 0 || mdb_stat(txn_, table_, &stat) != 0) {
        return 0;
    }
    ++changes_;
    // New pages are those that the table has grown by, and copies of old ones, of which a change makes a few.
    const std::uint64_t pages = pages_of(stat);
    const std::uint64_t grown = pages > pages_before_ ? pages - pages_before_ : 0;
    const std::uint64_t taken = std::min(pages, grown + LEVELS * changes_);
    const std::uint64_t next = 2 * LEVELS + value_bytes / page_size_ + 2;
    const std::uint64_t wanted = first_new_page_ + taken + next + commit_pages_;
    return wanted <= reserved_to_ ? 0 : reserve_to(wanted);
}

// Reserves some pages more than are wanted, unless only those can be had.
int page_reserve::reserve_to(std::uint64_t page) {
    const std::uint64_t step = std::clamp(page / 8, SMALLEST_STEP, LARGEST_STEP);
    int result = 0;
    for (const std::uint64_t to : {page + step, page}) {
        do {
            const auto from = static_cast<off_t>(reserved_to_ * page_size_);
            result = ::fallocate(file_, 0, from, static_cast<off_t>(to * page_size_) - from) == 0 ? 0 : errno;
        } while (result == EINTR);
        if (result == 0) {
            reserved_to_ = to;
            break;
        }
    }
    if (result == EOPNOTSUPP || result == ENOSYS) {
        file_ = -1;
        result = 0;
    }
    return result;
}

}  // namespace lmdb_store
