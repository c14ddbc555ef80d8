// SPDX-License-Identifier: Apache-2.0
// Listings and single items of branches, all of them or those that a predicate wants.
#pragma once

#include <string>
#include <string_view>

#include "platform/local/redis_store/branch_pages.h"
#include "platform/local/redis_store/client.h"
#include "platform/local/redis_store/redis_key.h"
#include "platform/local/store/reader.h"

namespace redis_store {

class branch_reader {
public:
    branch_reader(client *server, const key_names *names) : pages_(server, names) {}

    // As in store/reader.h.
    [[nodiscard]] pm_error list(const store::branch &from, const store::list_query &asked, store::known_state *state,
                                store::batch *out);
    [[nodiscard]] pm_error get(const store::branch &from, std::string_view path, const store::selection &which,
                               store::known_state *state, std::string *parcel);

    // Before the client is used for anything else.
    void settle() { pages_.settle(); }

private:
    [[nodiscard]] pm_error list_all(page_query query, const store::list_query &asked, store::known_state *state,
                                    store::batch *out);
    [[nodiscard]] pm_error list_matching(page_query query, const store::list_query &asked, store::known_state *state,
                                         store::batch *out);
    [[nodiscard]] pm_error match_page(const page_query &query, const store::selection &which, store::batch *out,
                                      std::string_view bound);
    [[nodiscard]] pm_error read_page(const page_query &query, const store::selection &which, store::known_state *state,
                                     bool *wants_items);
    [[nodiscard]] std::string decided_until(const page_query &query);

    branch_pages pages_;
    std::uint32_t page_items_ = PAGE_ITEMS;
};

}  // namespace redis_store
