// SPDX-License-Identifier: Apache-2.0
// Queries of pages as commands, and their answers.
#include "platform/local/redis_store/branch_pages.h"

#include <utility>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"
#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"

namespace redis_store {

namespace {

constexpr int MAX_TRIES = 10;  // of a page of a branch that comes and goes meanwhile

// The path of the companion that an item at `path` has.
std::string companion_of(const page_query &asked, std::string_view path) {
    return asked.companions + std::string(path.substr(asked.items.size()));
}

member_range companion_range(const page_query &asked) {
    const std::string prefix = companion_of(asked, asked.prefix);
    return asked.one_path ? range_of_path(prefix)
                          : range_of_prefix(prefix, asked.after.empty() ? "" : companion_of(asked, asked.after));
}

void add_range(const std::string &key, const member_range &range, std::uint32_t limit, pipeline *to) {
    to->add({"ZRANGE", key, range.first, range.last, "BYLEX", "LIMIT", "0", std::to_string(limit + 1)});
}

}  // namespace

std::vector<answer *> branch_pages::answers::all() {
    std::vector<answer *> result = {&publisher, &lease, &exists, &items};
    if (!asked.companions.empty()) {
        result.push_back(&companions);
    }
    return result;
}

pipeline branch_pages::commands(const page_query &asked) const {
    pipeline result;
    const std::string items = names_.of(asked.from, branch_part::items);
    result.add({"GET", names_.of(asked.from, branch_part::publisher)});
    result.add({"EXISTS", names_.of(asked.from, branch_part::lease)});
    result.add({"EXISTS", items});
    add_range(items, asked.one_path ? range_of_path(asked.prefix) : range_of_prefix(asked.prefix, asked.after),
              asked.limit, &result);
    if (!asked.companions.empty()) {
        add_range(items, companion_range(asked), asked.limit, &result);
    }
    return result;
}

void branch_pages::expect(const page_query &asked, answers *into) {
    into->asked = asked;
    into->items.expect(asked.from, asked.prefix, asked.after, asked.limit);
    if (!asked.companions.empty()) {
        into->companions.expect(asked.from, companion_of(asked, asked.prefix),
                                asked.after.empty() ? "" : companion_of(asked, asked.after), asked.limit);
    }
}

pm_error branch_pages::read(const page_query &asked) {
    settle();
    const bool is_here = std::exchange(ahead_, ahead::nothing) == ahead::received && next_->asked == asked;
    if (is_here) {
        std::swap(shown_, next_);
    } else if (pm_error error = read_now(asked)) {
        return error;
    }
    for (int tries = 0; shown_->exists.number() == 0 && tries < MAX_TRIES; ++tries) {
        bool changed = false;
        if (pm_error error = check_missing(asked, &changed); error || !changed) {
            return error;
        }
        if (pm_error error = read_now(asked)) {
            return error;
        }
    }
    return {};
}

pm_error branch_pages::read_now(const page_query &asked) {
    expect(asked, shown_);
    return client_.exchange(commands(asked), shown_->all(), repetition::allowed);
}

// A set that has become empty is gone. The directory tells whether it should be, if it says the same before and after
// the set was found missing: a writer may be at work. A replica of a cluster may only be behind, or its set on the way
// to another server.
pm_error branch_pages::check_missing(const page_query &asked, bool *changed) {
    noted_items before;
    if (pm_error error = ask_noted(asked.from, &before)) {
        return error;
    }
    if (before.items == 0) {  // or unsettled
        return {};
    }
    *changed = client_.leave_replicas();
    if (*changed) {
        return {};
    }
    bool exists = false;
    if (pm_error error = ask_exists(asked.from, &exists)) {
        return error;
    }
    noted_items after;
    if (pm_error error = ask_noted(asked.from, &after)) {
        return error;
    }
    *changed = exists || before != after;
    if (*changed) {
        return {};
    }
    return {OPSTORE_DAMAGED, client_.describe("the items of branch " + branch_name(asked.from) + " are gone")};
}

pm_error branch_pages::ask_noted(const store::branch &of, noted_items *noted) {
    pipeline questions;
    questions.add({"HGET", names_.of(state_part::marks), "V"});
    questions.add({"HGET", names_.of(state_part::branches), branch_name(of)});
    plain_answer change(1);
    plain_answer items(1);
    answer *const all[] = {&change, &items};
    pm_error error = client_.exchange(questions, all, repetition::allowed);
    *noted = {change.number(), items.number()};
    return error;
}

pm_error branch_pages::ask_exists(const store::branch &of, bool *exists) {
    pipeline question;
    question.add({"EXISTS", names_.of(of, branch_part::items)});
    plain_answer found(1);
    answer *const all[] = {&found};
    pm_error error = client_.exchange(question, all, repetition::allowed);
    *exists = found.number() != 0;
    return error;
}

void branch_pages::ask_ahead(const page_query &next) {
    settle();
    expect(next, next_);
    ahead_ = client_.send(commands(next)) ? ahead::nothing : ahead::sent;
}

void branch_pages::settle() {
    if (ahead_ == ahead::sent) {
        ahead_ = client_.receive(next_->all()) ? ahead::nothing : ahead::received;
    }
}

pm_error branch_pages::publisher(store::known_state *state) const {
    state->reset();
    if (shown_->publisher.is_nil()) {
        return {};
    }
    const std::string key = branch_key(store::key_space::publisher, shown_->asked.from);
    const std::string_view parcel = store::unseal(key, shown_->publisher.text());
    local_publisher record{};
    const errcode code = parcel.empty() ? OPSTORE_DAMAGED
                                        : parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()),
                                                        &record, local_publisher_descriptor());
    if (code != ERRCODE_SUCCESS) {
        return pm_error(code);
    }
    *state = store::seen_state(record, shown_->lease.number() != 0);
    parcel_free_indirections(&record, local_publisher_descriptor());
    return {};
}

}  // namespace redis_store
