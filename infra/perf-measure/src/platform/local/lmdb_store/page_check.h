// SPDX-License-Identifier: Apache-2.0
// Looks at the pages that records are read from, as far as LMDB does not.
//
// What is after the nodes that a page lists, and on pages that are free, is what was there before: records as they
// were, with links and checksums that are right among themselves. A page that lists more or less than its own nodes,
// and one that has come to be in the place of another, would show a part of an earlier state.
#pragma once

#include <cstddef>
#include <cstdint>
#include <lmdb.h>

namespace lmdb_store {

// Whether the nodes that a leaf lists are within the page and fill it from where it says to its end, as LMDB leaves
// them.
[[nodiscard]] bool is_filled_leaf(const char *page, std::size_t page_size);

// For one map of the data file. Takes the addresses that LMDB gives; must not be used for a transaction that writes,
// whose pages may be outside the map.
class page_check {
public:
    // Until then nothing is checked. `in_page` is anything in any page of the map, `page_size` that of the file.
    void begin(const void *in_page, std::size_t page_size);
    [[nodiscard]] bool has_begun() const { return page_size_ != 0; }
    // Pages have to be looked at again: another state is read.
    void forget_pages() { known_ = NONE; }

    // Whether the pages that a record is in are sound.
    [[nodiscard]] bool is_sound(const MDB_val &key, const MDB_val &kept) {
        const auto page = reinterpret_cast<std::uintptr_t>(key.mv_data) & mask_;
        const auto distance = reinterpret_cast<std::uintptr_t>(kept.mv_data) - page;
        return (page == known_ && distance < page_size_) || look_at(key, kept);
    }
    // Whether a value is in pages of its own: it begins after the header of the first one.
    [[nodiscard]] bool is_large(const MDB_val &kept) const;

private:
    static constexpr std::uintptr_t NONE = 1;  // which no page has

    [[nodiscard]] bool look_at(const MDB_val &key, const MDB_val &kept);
    [[nodiscard]] bool is_in_place(std::uintptr_t page) const;

    std::uintptr_t mask_ = 0;  // of the address of a page
    std::uintptr_t page_size_ = 0;
    std::uintptr_t map_ = 0;       // where the file begins
    std::uintptr_t known_ = NONE;  // the last page that was found sound
};

}  // namespace lmdb_store
