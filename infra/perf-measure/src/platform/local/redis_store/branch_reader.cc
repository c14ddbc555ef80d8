// SPDX-License-Identifier: Apache-2.0
// Puts pages together.
#include "platform/local/redis_store/branch_reader.h"

#include <algorithm>
#include <utility>

namespace redis_store {

namespace {

// The records beside the items of a page, by ascending names.
class companion_finder {
public:
    companion_finder(const page_query &query, page *companions) : at_(query.companions.size()) {
        if (!query.companions.empty()) {
            items_ = &companions->items().items();
        }
    }

    // The companion of an item; empty when it has none. The names that are asked for must ascend.
    [[nodiscard]] pm_error find(std::string_view name, std::string_view *parcel) {
        *parcel = {};
        while (items_ != nullptr && next_ < items_->size() && name_of(next_) < name) {
            ++next_;
        }
        if (items_ == nullptr || next_ == items_->size() || name_of(next_) != name) {
            return {};
        }
        *parcel = (*items_)[next_].parcel;
        return pm_error(parcel->empty() ? OPSTORE_DAMAGED : ERRCODE_SUCCESS);  // another item's value
    }

private:
    [[nodiscard]] std::string_view name_of(std::size_t i) const { return (*items_)[i].path.substr(at_); }

    const std::vector<store::item> *items_ = nullptr;
    std::size_t at_;  // where names begin in paths
    std::size_t next_ = 0;
};

}  // namespace

pm_error branch_reader::read_page(const page_query &query, const store::selection &which, store::known_state *state,
                                  bool *wants_items) {
    if (pm_error error = pages_.read(query)) {
        return error;
    }
    if (pages_.items().was_large()) {  // the next ones are of fewer items
        page_items_ = std::max(page_items_ / 2, 1U);
    }
    if (state != nullptr) {
        if (pm_error error = pages_.publisher(state)) {
            return error;
        }
    }
    *wants_items = !which.only_running || *state == store::publisher_state::running;
    return {};
}

pm_error branch_reader::list(const store::branch &from, const store::list_query &asked, store::known_state *state,
                             store::batch *out) {
    page_query query;
    query.from = from;
    query.prefix = asked.prefix;
    query.after = asked.after;
    query.limit = page_items_;
    out->clear(asked.max_items, PAGE_BYTES);
    return asked.which.predicate == nullptr ? list_all(std::move(query), asked, state, out)
                                            : list_matching(std::move(query), asked, state, out);
}

// The server is at work on the next page while this one's items are unsealed and used.
pm_error branch_reader::list_all(page_query query, const store::list_query &asked, store::known_state *state,
                                 store::batch *out) {
    query.limit = std::min(query.limit, asked.max_items);
    bool wants_items = false;
    if (pm_error error = read_page(query, asked.which, state, &wants_items); error || !wants_items) {
        return error;
    }
    page &found = pages_.items();
    if (found.has_more() && asked.max_items > 1) {
        query.after = found.last_path();
        query.limit = std::min(page_items_, asked.max_items);
        pages_.ask_ahead(query);
    }
    out->swap(&found.items());
    return {};
}

// Which page comes next is known before it is known which items match. It is asked for ahead while it is likely that
// the items of this one leave room in the batch.
pm_error branch_reader::list_matching(page_query query, const store::list_query &asked, store::known_state *state,
                                      store::batch *out) {
    if (!query.prefix.starts_with(asked.which.companion.items)) {
        return pm_error(ERRCODE_INVALID_ARGUMENT);
    }
    query.items = asked.which.companion.items;
    query.companions = asked.which.companion.companions;
    for (;;) {
        bool wants_items = false;
        if (pm_error error = read_page(query, asked.which, state, &wants_items); error || !wants_items) {
            return error;
        }
        const std::string resume = decided_until(query);
        page_query next = query;
        next.after = resume;
        next.limit = page_items_;
        if (!resume.empty() && out->items().size() < asked.max_items / 2) {
            pages_.ask_ahead(next);
        }
        if (pm_error error = match_page(query, asked.which, out, resume)) {
            return error;
        }
        if (out->more() || resume.empty()) {
            return {};
        }
        query = std::move(next);
    }
}

// The path after which a page decides nothing; empty when it decides all. Items and companions both ascend by name, and
// both may end early.
std::string branch_reader::decided_until(const page_query &query) {
    std::string bound;
    if (pages_.items().has_more()) {
        bound = pages_.items().last_path();
    }
    if (!query.companions.empty() && pages_.companions().has_more()) {
        const std::string_view last = pages_.companions().last_path();
        const std::string path = query.items + std::string(last.substr(query.companions.size()));
        bound = bound.empty() ? path : std::min(bound, path);
    }
    return bound;
}

// Adds the items of the page up to `bound` that match.
pm_error branch_reader::match_page(const page_query &query, const store::selection &which, store::batch *out,
                                   std::string_view bound) {
    companion_finder companions(query, &pages_.companions());
    for (const store::item &item : pages_.items().items().items()) {
        if (!bound.empty() && item.path > bound) {
            break;
        }
        std::string_view companion;
        if (pm_error error = companions.find(item.path.substr(query.items.size()), &companion)) {
            return error;
        }
        bool matches = false;
        if (const errcode code = which.predicate->match(item.path, item.parcel, companion, &matches);
            code != ERRCODE_SUCCESS) {
            return pm_error(code);
        }
        if (matches && !out->add(item.path, item.parcel)) {
            return {};
        }
    }
    return {};
}

pm_error branch_reader::get(const store::branch &from, std::string_view path, const store::selection &which,
                            store::known_state *state, std::string *parcel) {
    page_query query;
    query.from = from;
    query.prefix = path;
    query.limit = 1;
    query.one_path = true;
    if (which.predicate != nullptr && path.starts_with(which.companion.items)) {
        query.items = which.companion.items;
        query.companions = which.companion.companions;
    }
    parcel->clear();
    bool wants_items = false;
    if (pm_error error = read_page(query, which, state, &wants_items); error || !wants_items) {
        return error;
    }
    const store::batch &found = pages_.items().items();
    if (found.items().empty()) {
        return pm_error(ERRCODE_NOT_FOUND);
    }
    const store::item &item = found.items().front();
    if (found.more() || item.parcel.empty()) {  // two members of one path, or another item's value
        return pm_error(OPSTORE_DAMAGED);
    }
    bool matches = true;
    if (which.predicate != nullptr) {
        companion_finder companions(query, &pages_.companions());
        std::string_view companion;
        if (pm_error error = companions.find(path.substr(query.items.size()), &companion)) {
            return error;
        }
        if (const errcode code = which.predicate->match(path, item.parcel, companion, &matches);
            code != ERRCODE_SUCCESS) {
            return pm_error(code);
        }
    }
    if (!matches) {
        return pm_error(ERRCODE_NOT_FOUND);
    }
    *parcel = item.parcel;
    return {};
}

}  // namespace redis_store
