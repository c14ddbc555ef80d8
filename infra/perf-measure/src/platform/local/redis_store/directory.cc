// SPDX-License-Identifier: Apache-2.0
// Reads the router's keys.
#include "platform/local/redis_store/directory.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <iterator>

namespace redis_store {

namespace {

constexpr int MAX_TRIES = 10;  // of counting beside a writer

std::ptrdiff_t place_of(store::root data_root) {
    return std::find_if(std::begin(store::ROOTS), std::end(store::ROOTS),
                        [&](const store::root_name &each) { return each.id == data_root; }) -
           std::begin(store::ROOTS);
}

bool comes_before(const known_branch &one, const known_branch &other) {
    const std::ptrdiff_t places[] = {place_of(one.named.data_root), place_of(other.named.data_root)};
    return places[0] != places[1] ? places[0] < places[1] : one.named.node < other.named.node;
}

}  // namespace

pm_error directory::read() {
    pipeline questions;
    questions.add({"HMGET", names_.of(state_part::marks), "F", "P", "V"});
    questions.add({"LRANGE", names_.of(state_part::nodes), "0", "-1"});
    questions.add({"HGETALL", names_.of(state_part::branches)});
    plain_answer marks(3);
    plain_answer nodes;
    plain_answer branches;
    answer *const all[] = {&marks, &nodes, &branches};
    if (pm_error error = client_.exchange(questions, all, repetition::allowed)) {
        return error;
    }
    if (marks.elements().size() != 3) {
        return damaged("an answer that the command cannot have");
    }
    const plain_answer::element &format = marks.elements()[0];
    is_store_ = !format.is_nil;
    if (is_store_ && format.text != STORE_FORMAT) {
        return damaged("a store of another format");
    }
    platform_.reset();
    if (!marks.elements()[1].is_nil) {
        platform_ = marks.elements()[1].text;
    }
    version_ = std::strtoull(marks.elements()[2].text.c_str(), nullptr, 10);
    nodes_.clear();
    for (const plain_answer::element &each : nodes.elements()) {
        nodes_.push_back(each.text);
    }
    return read_branches(branches);
}

pm_error directory::read_branches(const plain_answer &names) {
    branches_.clear();
    for (std::size_t i = 0; i + 1 < names.elements().size(); i += 2) {
        known_branch &next = branches_.emplace_back();
        if (!parse_branch_name(names.elements()[i].text, &next.named)) {
            return damaged("a branch of no known name");
        }
        next.has_items = names.elements()[i + 1].text == ITEMS;
    }
    std::sort(branches_.begin(), branches_.end(), comes_before);
    return {};
}

pm_error directory::read_handles(std::vector<std::uint32_t> *handles) {
    pipeline question;
    question.add({"HKEYS", names_.of(state_part::interfaces)});
    plain_answer fields;
    answer *const all[] = {&fields};
    if (pm_error error = client_.exchange(question, all, repetition::allowed)) {
        return error;
    }
    handles->clear();
    for (const plain_answer::element &each : fields.elements()) {
        std::uint32_t &handle = handles->emplace_back();
        const char *const end = each.text.data() + each.text.size();
        if (std::from_chars(each.text.data(), end, handle, 16).ptr != end || each.text.size() != 8) {
            return damaged("an interface of no known handle");
        }
    }
    std::sort(handles->begin(), handles->end());
    return {};
}

// The directory is read before and after the sets are counted, until no writer was at work meanwhile.
pm_error directory::count(store::census *out) {
    for (int tries = 0; tries < MAX_TRIES; ++tries) {
        if (pm_error error = read()) {
            return error;
        }
        pipeline questions;
        questions.add({"HGET", names_.of(state_part::marks), "V"});
        questions.add({"HLEN", names_.of(state_part::interfaces)});
        for (const known_branch &each : branches_) {
            questions.add({"ZCARD", names_.of(each.named, branch_part::items)});
        }
        std::vector<plain_answer> numbers(branches_.size() + 2, plain_answer(1));
        std::vector<answer *> all;
        for (plain_answer &each : numbers) {
            all.push_back(&each);
        }
        if (pm_error error = client_.exchange(questions, all, repetition::allowed)) {
            return error;
        }
        if (numbers[0].number() == version_) {
            out->state = numbers[0].number();
            out->records = nodes_.size() + branches_.size() + (platform_ ? 1 : 0);
            for (std::size_t i = 1; i < numbers.size(); ++i) {
                out->records += numbers[i].number();
            }
            return {};
        }
    }
    return {OPSTORE_BUSY, client_.describe("writers changed the store whenever it was counted")};
}

}  // namespace redis_store
