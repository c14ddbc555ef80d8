// SPDX-License-Identifier: Apache-2.0
// Answers out of pages, hashes and lists.
#include "platform/local/redis_store/redis_reader.h"

#include <algorithm>
#include <charconv>

#include "platform/local/redis_store/branch_pages.h"
#include "platform/local/redis_store/directory.h"
#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"

namespace redis_store {

namespace {

using store::branch;
using store::key_space;

constexpr std::size_t INTERFACES_AT_ONCE = 1000;
constexpr int MAX_TRIES = 10;  // of reading records beside which a writer is at work

class redis_reader final : public store::reader {
public:
    explicit redis_reader(redis_url url)
        : names_(url.prefix),
          client_(std::move(url), purpose::reading),
          directory_(&client_, &names_),
          pages_(&client_, &names_) {}

    [[nodiscard]] pm_error open();

    [[nodiscard]] pm_error list(const branch &from, const store::list_query &asked, store::known_state *state,
                                store::batch *out) override;
    [[nodiscard]] pm_error get(const branch &from, std::string_view path, const store::selection &which,
                               store::known_state *state, std::string *parcel) override;
    [[nodiscard]] pm_error platform(std::string *parcel) override;
    [[nodiscard]] pm_error nodes(std::vector<std::string> *parcels) override;
    [[nodiscard]] pm_error interface(std::uint32_t handle, std::string *parcel) override;
    [[nodiscard]] pm_error schema(std::uint64_t fingerprint, std::string *text) override;
    [[nodiscard]] pm_error branches(std::vector<branch> *out) override;
    [[nodiscard]] pm_error publishers(std::vector<store::publisher_entry> *out) override;
    [[nodiscard]] pm_error interfaces(std::uint64_t from, std::vector<store::interface_entry> *out) override;
    [[nodiscard]] pm_error count(store::census *out) override;

private:
    [[nodiscard]] pm_error list_all(page_query query, const store::list_query &asked, store::known_state *state,
                                    store::batch *out);
    [[nodiscard]] pm_error list_matching(page_query query, const store::list_query &asked, store::known_state *state,
                                         store::batch *out);
    [[nodiscard]] pm_error match_page(const page_query &query, const store::selection &which, store::batch *out,
                                      std::string *resume);
    [[nodiscard]] pm_error read_state(const store::selection &which, store::known_state *state, bool *wants_items);
    [[nodiscard]] pm_error hash_value(state_part part, const std::string &field, std::string *value);
    [[nodiscard]] pm_error exchange(const pipeline &commands, std::span<answer *const> answers) {
        pages_.settle();
        return client_.exchange(commands, answers, repetition::allowed);
    }
    void follow_page_size();

    key_names names_;
    client client_;
    directory directory_;
    branch_pages pages_;
    std::uint32_t page_items_ = PAGE_ITEMS;
    std::vector<std::uint32_t> handles_;  // of interfaces, ascending, while they are read
};

pm_error redis_reader::open() {
    if (pm_error error = directory_.read()) {
        return error;
    }
    return directory_.is_store() ? pm_error() : pm_error(OPSTORE_NO_CLIENT);
}

pm_error redis_reader::read_state(const store::selection &which, store::known_state *state, bool *wants_items) {
    if (state != nullptr) {
        if (pm_error error = pages_.publisher(state)) {
            return error;
        }
    }
    *wants_items = !which.only_running || *state == store::publisher_state::running;
    return {};
}

// Large items make pages of fewer ones.
void redis_reader::follow_page_size() {
    if (pages_.items().was_large()) {
        page_items_ = std::max(page_items_ / 2, 1U);
    }
}

pm_error redis_reader::list(const branch &from, const store::list_query &asked, store::known_state *state,
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

pm_error redis_reader::list_all(page_query query, const store::list_query &asked, store::known_state *state,
                                store::batch *out) {
    query.limit = std::min(query.limit, asked.max_items);
    bool wants_items = false;
    if (pm_error error = pages_.read(query)) {
        return error;
    }
    if (pm_error error = read_state(asked.which, state, &wants_items); error || !wants_items) {
        return error;
    }
    follow_page_size();
    out->swap(&pages_.items().items());
    if (out->more() && asked.max_items > 1) {
        query.after = out->items().back().path;
        query.limit = std::min(page_items_, asked.max_items);
        pages_.ask_ahead(query);
    }
    return {};
}

pm_error redis_reader::list_matching(page_query query, const store::list_query &asked, store::known_state *state,
                                     store::batch *out) {
    if (!query.prefix.starts_with(asked.which.companion.items)) {
        return pm_error(ERRCODE_INVALID_ARGUMENT);
    }
    query.items = asked.which.companion.items;
    query.companions = asked.which.companion.companions;
    for (;;) {
        bool wants_items = false;
        if (pm_error error = pages_.read(query)) {
            return error;
        }
        if (pm_error error = read_state(asked.which, state, &wants_items); error || !wants_items) {
            return error;
        }
        follow_page_size();
        std::string resume;
        if (pm_error error = match_page(query, asked.which, out, &resume)) {
            return error;
        }
        if (out->more() || resume.empty()) {
            return {};
        }
        query.after = std::move(resume);
        query.limit = page_items_;
    }
}

// Adds the items of the page that match. `*resume` is the path after which nothing was decided; empty at the end. Items
// and companions both ascend by name, and both may end early.
pm_error redis_reader::match_page(const page_query &query, const store::selection &which, store::batch *out,
                                  std::string *resume) {
    const store::batch &items = pages_.items().items();
    const store::batch &companions = pages_.companions().items();
    const bool has_companions = !query.companions.empty();
    std::string bound;  // the last path that is decided
    if (items.more()) {
        bound = items.items().back().path;
    }
    if (has_companions && companions.more()) {
        const std::string_view last = companions.items().back().path;
        const std::string path = query.items + std::string(last.substr(query.companions.size()));
        bound = bound.empty() ? path : std::min(bound, path);
    }
    std::size_t next = 0;
    for (const store::item &item : items.items()) {
        if (!bound.empty() && item.path > bound) {
            break;
        }
        std::string_view companion;
        if (has_companions) {
            const auto name_of = [&](std::size_t i) {
                return companions.items()[i].path.substr(query.companions.size());
            };
            const std::string_view name = item.path.substr(query.items.size());
            while (next < companions.items().size() && name_of(next) < name) {
                ++next;
            }
            if (next < companions.items().size() && name_of(next) == name) {
                companion = companions.items()[next].parcel;
                if (companion.empty()) {  // another item's value
                    return pm_error(OPSTORE_DAMAGED);
                }
            }
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
    *resume = std::move(bound);
    return {};
}

pm_error redis_reader::get(const branch &from, std::string_view path, const store::selection &which,
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
    if (pm_error error = pages_.read(query)) {
        return error;
    }
    bool wants_items = false;
    if (pm_error error = read_state(which, state, &wants_items); error || !wants_items) {
        return error;
    }
    const store::batch &found = pages_.items().items();
    const store::batch &companion = pages_.companions().items();
    if (found.items().empty()) {
        return pm_error(ERRCODE_NOT_FOUND);
    }
    const store::item &item = found.items().front();
    if (found.more() || item.parcel.empty()) {  // two members of one path, or another item's value
        return pm_error(OPSTORE_DAMAGED);
    }
    bool matches = true;
    if (which.predicate != nullptr) {
        const bool has_companion = !query.companions.empty() && !companion.items().empty();
        if (has_companion && companion.items().front().parcel.empty()) {
            return pm_error(OPSTORE_DAMAGED);
        }
        const errcode code = which.predicate->match(
            path, item.parcel, has_companion ? companion.items().front().parcel : std::string_view(), &matches);
        if (code != ERRCODE_SUCCESS) {
            return pm_error(code);
        }
    }
    if (!matches) {
        return pm_error(ERRCODE_NOT_FOUND);
    }
    *parcel = item.parcel;
    return {};
}

pm_error redis_reader::platform(std::string *parcel) {
    if (!directory_.platform()) {
        return pm_error(ERRCODE_NOT_FOUND);
    }
    *parcel = store::unseal(store::key(key_space::platform), *directory_.platform());
    return pm_error(parcel->empty() ? OPSTORE_DAMAGED : ERRCODE_SUCCESS);
}

pm_error redis_reader::nodes(std::vector<std::string> *parcels) {
    parcels->clear();
    for (const std::string &each : directory_.nodes()) {
        const auto position = static_cast<std::uint32_t>(parcels->size());
        parcels->emplace_back(store::unseal(store::key(key_space::node, position), each));
    }
    return {};
}

pm_error redis_reader::hash_value(state_part part, const std::string &field, std::string *value) {
    pipeline question;
    question.add({"HGET", names_.of(part), field});
    plain_answer found(1);
    answer *const all[] = {&found};
    if (pm_error error = exchange(question, all)) {
        return error;
    }
    *value = found.text();
    return pm_error(found.is_nil() ? ERRCODE_NOT_FOUND : ERRCODE_SUCCESS);
}

pm_error redis_reader::interface(std::uint32_t handle, std::string *parcel) {
    std::string value;
    if (pm_error error = hash_value(state_part::interfaces, hexadecimal(handle, 8), &value)) {
        return error;
    }
    *parcel = store::unseal(store::key(key_space::interface, handle), value);
    return pm_error(parcel->empty() ? OPSTORE_DAMAGED : ERRCODE_SUCCESS);
}

pm_error redis_reader::schema(std::uint64_t fingerprint, std::string *text) {
    return hash_value(state_part::schemas, hexadecimal(fingerprint, 16), text);
}

pm_error redis_reader::branches(std::vector<branch> *out) {
    out->clear();
    pages_.settle();
    if (pm_error error = directory_.read()) {
        return error;
    }
    if (pm_error error = directory_.settle()) {
        return error;
    }
    for (const known_branch &each : directory_.branches()) {
        if (*each.items > 0) {
            out->push_back(each.named);
        }
    }
    return {};
}

pm_error redis_reader::publishers(std::vector<store::publisher_entry> *out) {
    for (int tries = 0; tries < MAX_TRIES; ++tries) {
        out->clear();
        pages_.settle();
        if (pm_error error = directory_.read()) {
            return error;
        }
        pipeline questions;
        const std::size_t count = directory_.branches().size();
        std::vector<plain_answer> found(2 * count, plain_answer(1));  // each record, and whether its lease is there
        std::vector<answer *> all;
        for (const known_branch &each : directory_.branches()) {
            questions.add({"GET", names_.of(each.named, branch_part::publisher)});
            all.push_back(&found[all.size()]);
            questions.add({"EXISTS", names_.of(each.named, branch_part::lease)});
            all.push_back(&found[all.size()]);
        }
        if (pm_error error = exchange(questions, all)) {
            return error;
        }
        bool complete = true;
        for (std::size_t i = 0; i < count; ++i) {
            const branch &served = directory_.branches()[i].named;
            const plain_answer &record = found[2 * i];
            if (!record.is_nil()) {
                const auto parcel = store::unseal(branch_key(key_space::publisher, served), record.text());
                out->push_back({served, std::string(parcel), found[2 * i + 1].number() != 0});
            }
            // A writer that was killed between two servers of a cluster may have left no publisher.
            complete = complete && (!record.is_nil() || !directory_.branches()[i].items);
        }
        if (complete) {
            return {};
        }
    }
    return {OPSTORE_DAMAGED, client_.describe("a publisher's record is gone")};
}

pm_error redis_reader::interfaces(std::uint64_t from, std::vector<store::interface_entry> *out) {
    out->clear();
    if (from == 0) {
        pages_.settle();
        if (pm_error error = directory_.read_handles(&handles_)) {
            return error;
        }
    }
    auto next = std::lower_bound(handles_.begin(), handles_.end(), from);
    const auto end = next + std::min<std::ptrdiff_t>(handles_.end() - next, INTERFACES_AT_ONCE);
    std::vector<std::string> fields;
    std::vector<std::string_view> words = {"HMGET"};
    const std::string key = names_.of(state_part::interfaces);
    words.push_back(key);
    fields.reserve(INTERFACES_AT_ONCE);
    for (auto each = next; each != end; ++each) {
        words.push_back(fields.emplace_back(hexadecimal(*each, 8)));
    }
    if (fields.empty()) {
        return {};
    }
    pipeline question;
    question.add(words);
    plain_answer found(INTERFACES_AT_ONCE);
    answer *const all[] = {&found};
    if (pm_error error = exchange(question, all)) {
        return error;
    }
    for (const plain_answer::element &each : found.elements()) {
        if (next == end) {
            return pm_error(OPSTORE_DAMAGED);
        }
        const std::uint32_t handle = *next++;
        if (!each.is_nil) {
            out->push_back({handle, std::string(store::unseal(store::key(key_space::interface, handle), each.text))});
        }
    }
    return {};
}

pm_error redis_reader::count(store::census *out) {
    pages_.settle();
    return directory_.count(out);
}

}  // namespace

pm_error open_reader(const std::string &url, std::unique_ptr<store::reader> *out) {
    redis_url parsed;
    if (pm_error error = parse_url(url, &parsed)) {
        return {OPSTORE_NO_CLIENT, "the store's URL: " + error.text()};
    }
    auto opened = std::make_unique<redis_reader>(std::move(parsed));
    if (pm_error error = opened->open()) {
        return error;
    }
    *out = std::move(opened);
    return {};
}

}  // namespace redis_store
