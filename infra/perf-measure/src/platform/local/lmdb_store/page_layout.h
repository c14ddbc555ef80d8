// SPDX-License-Identifier: Apache-2.0
// How LMDB lays out the pages of its file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace lmdb_store {

inline constexpr std::uint16_t BRANCH = 0x01;
inline constexpr std::uint16_t LEAF = 0x02;
inline constexpr std::uint16_t LARGE = 0x04;  // the pages of one value
inline constexpr std::uint16_t PAGE_KINDS = BRANCH | LEAF | LARGE;
inline constexpr std::uint16_t VALUE_IS_ELSEWHERE =
    0x01;  // a node's flag: the number of its value's first page follows

struct page_header {
    std::uint64_t number;
    std::uint16_t pad;
    std::uint16_t flags;
    std::uint16_t lower;  // end of the list of nodes; the pages of a large value have their count here and in upper
    std::uint16_t upper;  // where the nodes themselves begin; they fill the page from here to its end

    [[nodiscard]] std::size_t nodes() const { return (lower - sizeof(page_header)) / sizeof(std::uint16_t); }
    // Whether list and nodes are within a page of that size.
    [[nodiscard]] bool fits(std::size_t page_size) const {
        return lower >= sizeof(page_header) && lower <= upper && upper <= page_size;
    }
};
static_assert(sizeof(page_header) == 16);

// What a node begins with; its key and its value follow.
struct node_header {
    std::uint16_t low;
    std::uint16_t high;
    std::uint16_t flags;
    std::uint16_t key_size;

    [[nodiscard]] std::size_t value_size() const { return low | std::size_t{high} << 16; }
    [[nodiscard]] bool is_elsewhere() const { return (flags & VALUE_IS_ELSEWHERE) != 0; }
    // Of what follows the key in the page.
    [[nodiscard]] std::size_t size_in_page() const { return is_elsewhere() ? sizeof(std::uint64_t) : value_size(); }
};
static_assert(sizeof(node_header) == 8);

// Reads a value of a page, which may be at any place.
template <class Value>
[[nodiscard]] Value load(const char *page, std::size_t at) {
    Value value;
    std::memcpy(&value, page + at, sizeof value);
    return value;
}

// A node of a page that fits: its header, and where its key and what follows it are. False when it is not within the
// page.
[[nodiscard]] inline bool load_node(const char *page, std::size_t page_size, std::size_t index, node_header *node,
                                    std::size_t *key_at) {
    const std::size_t at = load<std::uint16_t>(page, sizeof(page_header) + index * sizeof(std::uint16_t));
    if (at < sizeof(page_header) || at + sizeof *node > page_size) {
        return false;
    }
    *node = load<node_header>(page, at);
    *key_at = at + sizeof *node;
    return *key_at + node->key_size <= page_size;
}

}  // namespace lmdb_store
