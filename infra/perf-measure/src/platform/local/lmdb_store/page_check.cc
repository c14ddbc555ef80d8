// SPDX-License-Identifier: Apache-2.0
// Compares a page's header with what is in the page and with the page's place.
#include "platform/local/lmdb_store/page_check.h"

#include <unistd.h>

#include "platform/local/lmdb_store/page_layout.h"

namespace lmdb_store {

bool is_filled_leaf(const char *page, std::size_t page_size) {
    const auto header = load<page_header>(page, 0);
    if ((header.flags & PAGE_KINDS) != LEAF || !header.fits(page_size)) {
        return false;
    }
    std::size_t filled = 0;
    for (std::size_t i = 0; i < header.nodes(); ++i) {
        node_header node{};
        std::size_t key_at = 0;
        if (!load_node(page, page_size, i, &node, &key_at)) {
            return false;
        }
        const std::size_t size = sizeof node + node.key_size + node.size_in_page();
        filled += size + size % 2;  // nodes begin at even places
    }
    return filled == page_size - header.upper;
}

// A map is aligned to the pages of the system. Where those of the file are larger, they cannot be told from an address.
void page_check::begin(const void *in_page, std::size_t page_size) {
    *this = {};
    page_size_ = page_size;
    if (page_size <= static_cast<std::size_t>(::sysconf(_SC_PAGESIZE))) {
        mask_ = ~(std::uintptr_t{page_size} - 1);
        const std::uintptr_t page = reinterpret_cast<std::uintptr_t>(in_page) & mask_;
        map_ = page - load<page_header>(reinterpret_cast<const char *>(page), 0).number * page_size;
    }
}

bool page_check::is_in_place(std::uintptr_t page) const {
    return load<page_header>(reinterpret_cast<const char *>(page), 0).number * page_size_ == page - map_;
}

bool page_check::look_at(const MDB_val &key, const MDB_val &kept) {
    if (mask_ == 0) {
        return true;
    }
    const std::uintptr_t page = reinterpret_cast<std::uintptr_t>(key.mv_data) & mask_;
    if (page != known_) {
        if (!is_in_place(page) || !is_filled_leaf(reinterpret_cast<const char *>(page), page_size_)) {
            return false;
        }
        known_ = page;
    }
    const std::uintptr_t value = reinterpret_cast<std::uintptr_t>(kept.mv_data);
    return value - page < page_size_ || (is_large(kept) && is_in_place(value & mask_));
}

bool page_check::is_large(const MDB_val &kept) const {
    return (reinterpret_cast<std::uintptr_t>(kept.mv_data) & ~mask_) == sizeof(page_header);
}

}  // namespace lmdb_store
