// SPDX-License-Identifier: Apache-2.0
// Reads the pages of a branch one after another, with its publisher's state, and asks for one ahead.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/local/redis_store/client.h"
#include "platform/local/redis_store/page.h"
#include "platform/local/redis_store/redis_key.h"
#include "platform/local/store/reader.h"

namespace redis_store {

// Which items, and which records beside them.
struct page_query {
    store::branch from{};
    std::string prefix;
    std::string after;  // empty: from the first one
    std::uint32_t limit = PAGE_ITEMS;
    bool one_path = false;  // the item at `prefix` only
    // Companions, as in store/reader.h. None when `companions` is empty; else `prefix` begins with `items`.
    std::string items;
    std::string companions;

    bool operator==(const page_query &) const = default;
};

class branch_pages {
public:
    branch_pages(client *server, const key_names *names) : client_(*server), names_(*names) {}

    // The items of a query, in one round trip, or none if they were asked for ahead. OPSTORE_DAMAGED for a branch that
    // should have items and has none.
    [[nodiscard]] pm_error read(const page_query &asked);
    // Sends a query whose items will probably be read next. An error shows when they are.
    void ask_ahead(const page_query &next);
    // Reads the answer to what was asked ahead, so that the connection is free for something else.
    void settle();

    // Of the query read last; each valid until the next read().
    [[nodiscard]] page &items() { return shown_->items; }
    [[nodiscard]] page &companions() { return shown_->companions; }
    [[nodiscard]] pm_error publisher(store::known_state *state) const;

private:
    // The answers to a query.
    struct answers {
        page_query asked;
        plain_answer publisher{1};
        plain_answer lease{1};
        plain_answer exists{1};
        page items;
        page companions;

        [[nodiscard]] std::vector<answer *> all();
    };
    enum class ahead { nothing, sent, received };

    [[nodiscard]] pipeline commands(const page_query &asked) const;
    static void expect(const page_query &asked, answers *into);
    // What the directory says of a branch, and of which change of the store that is.
    struct noted_items {
        std::uint64_t change = 0;
        std::uint64_t items = 0;
        bool operator==(const noted_items &) const = default;
    };

    [[nodiscard]] pm_error read_now(const page_query &asked);
    [[nodiscard]] pm_error check_missing(const page_query &asked, bool *changed);
    [[nodiscard]] pm_error ask_noted(const store::branch &of, noted_items *noted);
    [[nodiscard]] pm_error ask_exists(const store::branch &of, bool *exists);

    client &client_;
    const key_names &names_;
    answers one_, other_;
    answers *shown_ = &one_;
    answers *next_ = &other_;
    ahead ahead_ = ahead::nothing;
};

}  // namespace redis_store
