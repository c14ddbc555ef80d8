// SPDX-License-Identifier: Apache-2.0
// Walks an LMDB tree with every number checked before it is used.
#include "platform/local/lmdb_store/page_walk.h"

#include <unistd.h>

#include "platform/local/lmdb_store/page_check.h"
#include "platform/local/lmdb_store/page_layout.h"

namespace lmdb_store {

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
    const auto header = load<page_header>(page->data(), 0);
    const bool fits = (header.flags & LARGE) != 0 || header.fits(page->size());
    if (header.number != number || (header.flags & PAGE_KINDS & ~kinds) != 0 || (header.flags & kinds) == 0 || !fits) {
        return lose(number, "is damaged"), false;
    }
    return true;
}

void page_walk::walk(std::uint64_t number, int depth) {
    std::string page;
    if (depth == MAX_DEPTH) {
        lose(number, "is too deep in the tree");
    } else if (take_page(number, BRANCH | LEAF, &page)) {
        if ((load<page_header>(page.data(), 0).flags & LEAF) != 0) {
            walk_leaf(number, page);
        } else {
            walk_branch(number, page, depth);
        }
    }
}

void page_walk::walk_branch(std::uint64_t number, const std::string &page, int depth) {
    for (std::size_t i = 0; i < load<page_header>(page.data(), 0).nodes(); ++i) {
        node_header node{};
        std::size_t ignored = 0;
        if (load_node(page.data(), page.size(), i, &node, &ignored)) {
            walk(node.low | std::uint64_t{node.high} << 16 | std::uint64_t{node.flags} << 32, depth + 1);
        } else {
            lose(number, "is damaged");
            return;
        }
    }
}

void page_walk::walk_leaf(std::uint64_t number, const std::string &page) {
    if (!is_filled_leaf(page.data(), page.size())) {
        lose(number, "does not list the records that are in it");
    }
    for (std::size_t i = 0; i < load<page_header>(page.data(), 0).nodes(); ++i) {
        node_header node{};
        std::size_t key_at = 0;
        std::string large;
        if (!load_node(page.data(), page.size(), i, &node, &key_at)) {
            lose(number, "is damaged");
            return;
        }
        const std::size_t size = node.value_size();
        const std::size_t value_at = key_at + node.key_size;
        const bool elsewhere = node.is_elsewhere();
        if (node.size_in_page() > page.size() - value_at) {
            lose(number, "is damaged");
            return;
        }
        std::string_view value(page.data() + value_at, elsewhere ? 0 : size);
        if (elsewhere) {
            value =
                read_large_value(load<std::uint64_t>(page.data(), value_at), size, &large) ? large : std::string_view();
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
