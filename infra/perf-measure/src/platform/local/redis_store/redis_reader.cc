// SPDX-License-Identifier: Apache-2.0
// Answers out of pages, hashes and lists.
#include "platform/local/redis_store/redis_reader.h"

#include <algorithm>
#include <charconv>

#include "platform/local/redis_store/branch_reader.h"
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
          items_(&client_, &names_) {}

    [[nodiscard]] pm_error open();

    [[nodiscard]] pm_error list(const branch &from, const store::list_query &asked, store::known_state *state,
                                store::batch *out) override {
        return items_.list(from, asked, state, out);
    }
    [[nodiscard]] pm_error get(const branch &from, std::string_view path, const store::selection &which,
                               store::known_state *state, std::string *parcel) override {
        return items_.get(from, path, which, state, parcel);
    }
    [[nodiscard]] pm_error platform(std::string *parcel) override;
    [[nodiscard]] pm_error nodes(std::vector<std::string> *parcels) override;
    [[nodiscard]] pm_error interface(std::uint32_t handle, std::string *parcel) override;
    [[nodiscard]] pm_error schema(std::uint64_t fingerprint, std::string *text) override;
    [[nodiscard]] pm_error branches(std::vector<branch> *out) override;
    [[nodiscard]] pm_error publishers(std::vector<store::publisher_entry> *out) override;
    [[nodiscard]] pm_error interfaces(std::uint64_t from, std::vector<store::interface_entry> *out) override;
    [[nodiscard]] pm_error count(store::census *out) override;

private:
    [[nodiscard]] pm_error hash_value(state_part part, const std::string &field, std::string *value);
    [[nodiscard]] pm_error exchange(const pipeline &commands, std::span<answer *const> answers) {
        items_.settle();
        return client_.exchange(commands, answers, repetition::allowed);
    }

    key_names names_;
    client client_;
    directory directory_;
    branch_reader items_;
    std::vector<std::uint32_t> handles_;  // of interfaces, ascending, while they are read
};

pm_error redis_reader::open() {
    if (pm_error error = directory_.read()) {
        return error;
    }
    return directory_.is_store() ? pm_error() : pm_error(OPSTORE_NO_CLIENT);
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
    items_.settle();
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
        items_.settle();
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
        items_.settle();
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
    items_.settle();
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
