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

std::uint64_t number_in(const std::string &text) { return std::strtoull(text.c_str(), nullptr, 10); }

}  // namespace

pm_error directory::read() {
    pipeline questions;
    questions.add({"HMGET", names_.of(state_part::marks), "F", "P", "V", "N", "H"});
    questions.add({"LRANGE", names_.of(state_part::nodes), "0", "-1"});
    questions.add({"HGETALL", names_.of(state_part::branches)});
    plain_answer marks(5);
    plain_answer nodes;
    plain_answer branches;
    answer *const all[] = {&marks, &nodes, &branches};
    if (pm_error error = client_.exchange(questions, all, repetition::allowed)) {
        return error;
    }
    if (marks.elements().size() != 5) {
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
    version_ = number_in(marks.elements()[2].text);
    noted_nodes_ = number_in(marks.elements()[3].text);
    noted_interfaces_ = number_in(marks.elements()[4].text);
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
        const std::string &items = names.elements()[i + 1].text;
        if (items != UNSETTLED) {
            next.items = number_in(items);
        }
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

pm_error directory::settle() {
    pipeline questions;
    std::vector<known_branch *> unsettled;
    for (known_branch &each : branches_) {
        if (!each.items) {
            questions.add({"ZCARD", names_.of(each.named, branch_part::items)});
            unsettled.push_back(&each);
        }
    }
    std::vector<plain_answer> numbers(unsettled.size(), plain_answer(1));
    std::vector<answer *> all;
    for (plain_answer &each : numbers) {
        all.push_back(&each);
    }
    if (pm_error error = client_.exchange(questions, all, repetition::allowed)) {
        return error;
    }
    for (std::size_t i = 0; i < unsettled.size(); ++i) {
        unsettled[i]->items = numbers[i].number();
    }
    return {};
}

std::string directory::missing() const {
    return client_.describe("there is no store of the prefix " + client_.url().prefix + " in database " +
                            std::to_string(client_.url().database));
}

bool directory::is_current() {
    pipeline question;
    question.add({"HGET", names_.of(state_part::marks), "V"});
    plain_answer version(1);
    answer *const all[] = {&version};
    return !client_.exchange(question, all, repetition::allowed) && version.number() == version_;
}

pm_error directory::find_branches() {
    const std::string begin = client_.url().prefix + ":{";
    std::string cursor = "0";
    branches_.clear();
    do {
        pipeline question;
        question.add({"SCAN", cursor, "MATCH", begin + "*", "COUNT", "1000"});
        plain_answer found;
        answer *const all[] = {&found};
        if (pm_error error = client_.exchange(question, all, repetition::allowed)) {
            return error;
        }
        if (found.elements().empty()) {
            return damaged("an answer that the command cannot have");
        }
        cursor = found.elements()[0].text;
        for (const plain_answer::element &each : found.elements()) {
            known_branch next;
            const std::string name = each.text.substr(std::min(begin.size(), each.text.size()));
            if (parse_branch_name(name.substr(0, name.find('}')), &next.named)) {
                branches_.push_back(next);
            }
        }
    } while (cursor != "0");
    return {};
}

// Until no writer was at work between the reading of the marks and that of the last branch.
pm_error directory::count(store::census *out) {
    for (int tries = 0; tries < MAX_TRIES; ++tries) {
        if (pm_error error = read()) {
            return error;
        }
        if (pm_error error = settle()) {
            return error;
        }
        if (is_current()) {
            out->state = version_;
            out->records = noted_nodes_ + noted_interfaces_ + branches_.size() + (platform_ ? 1 : 0);
            for (const known_branch &each : branches_) {
                out->records += *each.items;
            }
            return {};
        }
    }
    return {OPSTORE_BUSY, client_.describe("writers changed the store whenever it was counted")};
}

}  // namespace redis_store
