// SPDX-License-Identifier: Apache-2.0
// Walks an LMDB tree with every number checked before it is used.
#include "platform/local/lmdb_store/page_walk.h"

#include <cstring>
#include <unistd.h>

namespace lmdb_store {

namespace {

constexpr std::uint16_t BRANCH = 0x01;
constexpr std::uint16_t LEAF = 0x02;
constexpr std::uint16_t LARGE = 0x04;  // the pages of one value
constexpr std::uint16_t KINDS = BRANCH | LEAF | LARGE;
constexpr std::uint16_t VALUE_IS_ELSEWHERE = 0x01;  // a node's flag

struct page_header {
    std::uint64_t number;
    std::uint16_t pad;
    std::uint16_t flags;
    std::uint16_t lower;  // end of the list of nodes; the pages of a large value have their count here and in upper
    std::uint16_t upper;
};
static_assert(sizeof(page_header) == 16);

struct node_header {
    std::uint16_t low;
    std::uint16_t high;
    std::uint16_t flags;
    std::uint16_t key_size;
};

template <class Value>
Value load(const std::string &page, std::size_t at) {
    Value value;
    std::memcpy(&value, page.data() + at, sizeof value);
    return value;
}

// A node of a page: its header, and where its key and what follows it are. False when it is not within the page.
bool load_node(const std::string &page, std::size_t index, node_header *node, std::size_t *key_at) {
    const std::size_t at = load<std::uint16_t>(page, sizeof(page_header) + index * sizeof(std::uint16_t));
    if (at < sizeof(page_header) || at + sizeof *node > page.size()) {
        return false;
    }
    *node = load<node_header>(page, at);
    *key_at = at + sizeof *node;
    return *key_at + node->key_size <= page.size();
}

std::size_t nodes_of(const std::string &page) {
    return (load<page_header>(page, 0).lower - sizeof(page_header)) / sizeof(std::uint16_t);
}

}  // namespace

void page_walk::run(const record_visit &record, const loss_visit &loss) {
    record_ = &record;
    loss_ = &loss;
    if (root_.root != UINT64_MAX) {  // which an empty table has
        walk(root_.root, 0);
    }
}

void page_walk::lose(std::uint64_t number, const char *what) {
    (*loss_)("page " + std::to_string(number) + " " + what);
}

bool page_walk::take_page(std::uint64_t number, std::uint16_t kinds, std::string *page) {
    if (number < 2 || number >= root_.pages || seen_[number]) {
        return lose(number, "is referred to where it cannot be"), false;
    }
    seen_[number] = true;
    page->resize(root_.page_size);
    const ssize_t got = ::pread(file_, page->data(), page->size(), static_cast<off_t>(number * root_.page_size));
    if (got != static_cast<ssize_t>(page->size())) {
        return lose(number, "is missing"), false;
    }
    const auto header = load<page_header>(*page, 0);
    const bool fits = (header.flags & LARGE) != 0 ||
                      (header.lower >= sizeof header && header.lower <= header.upper && header.upper <= page->size());
    if (header.number != number || (header.flags & KINDS & ~kinds) != 0 || (header.flags & kinds) == 0 || !fits) {
        return lose(number, "is damaged"), false;
    }
    return true;
}

void page_walk::walk(std::uint64_t number, int depth) {
    std::string page;
    if (depth == MAX_DEPTH) {
        lose(number, "is too deep in the tree");
    } else if (take_page(number, BRANCH | LEAF, &page)) {
        if ((load<page_header>(page, 0).flags & LEAF) != 0) {
            walk_leaf(number, page);
        } else {
            walk_branch(number, page, depth);
        }
    }
}

void page_walk::walk_branch(std::uint64_t number, const std::string &page, int depth) {
    for (std::size_t i = 0; i < nodes_of(page); ++i) {
        node_header node{};
        std::size_t ignored = 0;
        if (load_node(page, i, &node, &ignored)) {
            walk(node.low | std::uint64_t{node.high} << 16 | std::uint64_t{node.flags} << 32, depth + 1);
        } else {
            lose(number, "is damaged");
            return;
        }
    }
}

void page_walk::walk_leaf(std::uint64_t number, const std::string &page) {
    for (std::size_t i = 0; i < nodes_of(page); ++i) {
        node_header node{};
        std::size_t key_at = 0;
        std::string large;
        if (!load_node(page, i, &node, &key_at)) {
            lose(number, "is damaged");
            return;
        }
        const std::size_t size = node.low | std::size_t{node.high} << 16;
        const std::size_t value_at = key_at + node.key_size;
        const bool elsewhere = (node.flags & VALUE_IS_ELSEWHERE) != 0;
        if ((elsewhere ? sizeof(std::uint64_t) : size) > page.size() - value_at) {
            lose(number, "is damaged");
            return;
        }
        std::string_view value(page.data() + value_at, elsewhere ? 0 : size);
        if (elsewhere) {
            value = read_large_value(load<std::uint64_t>(page, value_at), size, &large) ? large : std::string_view();
        }
        (*record_)({page.data() + key_at, node.key_size}, value);
    }
}

bool page_walk::read_large_value(std::uint64_t number, std::size_t size, std::string *value) {
    std::string first;
    if (!take_page(number, LARGE, &first)) {
        return false;
    }
    const std::uint64_t pages = (size + sizeof(page_header) + root_.page_size - 1) / root_.page_size;
    if (pages > root_.pages - number) {
        return lose(number, "is damaged"), false;
    }
    value->resize(size);
    const auto at = static_cast<off_t>(number * root_.page_size + sizeof(page_header));
    if (::pread(file_, value->data(), size, at) != static_cast<ssize_t>(size)) {
        return lose(number, "is cut short"), false;
    }
    return true;
}

}  // namespace lmdb_store
