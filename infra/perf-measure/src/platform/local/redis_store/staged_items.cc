// SPDX-License-Identifier: Apache-2.0
// Changes into commands: of the branches' own sets, or of staged ones.
#include "platform/local/redis_store/staged_items.h"

#include <algorithm>

#include "platform/errcode.h"
#include "platform/local/redis_store/stage_pipeline.h"

namespace redis_store {

namespace {

using knowledge = branch_changes::knowledge;

constexpr std::size_t MAX_PENDING_ITEMS = 2000;  // a MULTI of more makes every other client of the server wait
constexpr std::size_t MAX_PENDING_BYTES = 8 * 1024 * 1024;
constexpr char STAGE_EXPIRY_MSEC[] = "60000";  // longer than the lock's

constexpr char COPY_WITH_EXPIRY[] =
    "redis.call('COPY', KEYS[1], KEYS[2]) "
    "return redis.call('PEXPIRE', KEYS[2], ARGV[1])";

}  // namespace

staged_items::~staged_items() {
    pipeline commands;
    for (const entry &each : branches_) {
        if (each.second.is_staged) {
            commands.add({"UNLINK", names_.stage(each.first, lock_.token())});
        }
    }
    std::vector<plain_answer> done(commands.commands(), plain_answer(1));
    std::vector<answer *> all;
    for (plain_answer &each : done) {
        all.push_back(&each);
    }
    if (!all.empty()) {
        static_cast<void>(client_.exchange(commands, all, repetition::allowed));
    }
}

void staged_items::add_known(const store::branch &named) { branches_[named].is_known = true; }

pm_error staged_items::clear() {
    pipeline commands;
    for (auto &[named, each] : branches_) {
        each.changes.clear();
        each.is_known = false;
        if (each.is_staged) {
            each = state();
            each.is_staged = true;
            commands.add({"UNLINK", names_.stage(named, lock_.token())});
        }
    }
    cleared_ = true;
    pending_items_ = 0;
    pending_bytes_ = 0;
    std::vector<plain_answer> done(commands.commands(), plain_answer(1));
    std::vector<answer *> all;
    for (plain_answer &each : done) {
        all.push_back(&each);
    }
    return all.empty() ? pm_error() : client_.exchange(commands, all, repetition::allowed);
}

pm_error staged_items::put(const store::branch &into, std::string_view path, std::string_view sealed) {
    std::string member;
    member.reserve(path.size() + 1 + sealed.size());
    member += path;
    member += '\0';
    member += sealed;
    pending_bytes_ += 2 * path.size() + sealed.size();
    branches_[into].changes.put(path, std::move(member));
    return ++pending_items_ > MAX_PENDING_ITEMS || pending_bytes_ > MAX_PENDING_BYTES ? stage_all() : pm_error();
}

std::string staged_items::base_key(const entry &of) const {
    return of.second.is_staged ? names_.stage(of.first, lock_.token()) : names_.of(of.first, branch_part::items);
}

pm_error staged_items::ask_count(const entry &in, const member_range &range, std::uint64_t *found) {
    *found = 0;
    if (!in.second.is_known && !in.second.is_staged) {
        return {};
    }
    pipeline commands;
    commands.add({"ZLEXCOUNT", base_key(in), range.first, range.last});
    plain_answer number(1);
    answer *const all[] = {&number};
    pm_error error = client_.exchange(commands, all, repetition::allowed);
    *found = number.number();
    return error;
}

pm_error staged_items::count(const store::branch &in, std::string_view path, std::uint64_t *found) {
    const entry &of = *branches_.try_emplace(in).first;
    const knowledge known = of.second.changes.about(path);
    *found = known == knowledge::present ? 1 : 0;
    return known == knowledge::unknown ? ask_count(of, range_of_path(path), found) : pm_error();
}

pm_error staged_items::count_below(const store::branch &in, std::string_view prefix, std::uint64_t *found) {
    const entry &of = *branches_.try_emplace(in).first;
    knowledge known = of.second.changes.below(prefix, found);
    if (known == knowledge::partly) {  // the changes go where the rest is
        if (pm_error error = stage_all()) {
            return error;
        }
        known = knowledge::unknown;
    }
    return known == knowledge::unknown ? ask_count(of, range_of_prefix(prefix, ""), found) : pm_error();
}

pm_error staged_items::remove(const store::branch &from, std::string_view path, std::uint64_t *removed) {
    std::uint64_t found = 0;
    if (pm_error error = count(from, path, &found)) {
        return error;
    }
    *removed += found;
    if (found > 0) {
        branches_[from].changes.remove(path);
        ++pending_items_;
    }
    return {};
}

pm_error staged_items::remove_below(const store::branch &from, std::string_view prefix, std::uint64_t *removed) {
    std::uint64_t found = 0;
    if (pm_error error = count_below(from, prefix, &found)) {
        return error;
    }
    *removed += found;
    if (found > 0) {
        branches_[from].changes.remove_below(prefix);
    }
    return {};
}

// Makes the set that takes the branch's place: empty, or a copy.
pm_error staged_items::begin_stage(entry *of) {
    if (of->second.is_staged) {
        return {};
    }
    const std::string stage = names_.stage(of->first, lock_.token());
    stage_pipeline commands(&client_);
    if (of->second.is_known) {
        const std::string key = names_.of(of->first, branch_part::items);
        if (pm_error error = commands.add({"EVAL", COPY_WITH_EXPIRY, "2", key, stage, STAGE_EXPIRY_MSEC}, 0)) {
            return error;
        }
        if (pm_error error = commands.add({"ZCARD", stage}, 1)) {
            return error;
        }
        of->second.is_staged = true;
        if (pm_error error = commands.send()) {
            return error;
        }
    }
    of->second.is_staged = true;
    of->second.members = commands.sum();
    of->second.ascends = !of->second.is_known;
    return {};
}

pm_error staged_items::stage_changes(entry *of) {
    if (pm_error error = begin_stage(of)) {
        return error;
    }
    const std::string stage = names_.stage(of->first, lock_.token());
    state &now = of->second;
    stage_pipeline commands(&client_);
    member_list members(stage, STAGE_EXPIRY_MSEC);
    for (const std::string &prefix : now.changes.removed()) {
        const member_range range = range_of_prefix(prefix, "");
        if (pm_error error = commands.add({"ZREMRANGEBYLEX", stage, range.first, range.last}, -1)) {
            return error;
        }
    }
    for (const auto &[path, member] : now.changes.items()) {
        now.ascends = now.ascends && path > now.highest;  // nothing of the same path can be in the set
        if (!now.ascends || !member) {
            const member_range range = range_of_path(path);
            if (pm_error error = commands.add({"ZREMRANGEBYLEX", stage, range.first, range.last}, -1)) {
                return error;
            }
        }
        now.highest = now.ascends ? path : std::string();
        if (member) {
            members.add(*member);
        }
        if (members.full()) {
            if (pm_error error = commands.add(members.words(), 1)) {
                return error;
            }
            members.clear();
        }
    }
    if (!members.empty()) {
        if (pm_error error = commands.add(members.words(), 1)) {
            return error;
        }
    }
    if (pm_error error = commands.add({"PEXPIRE", stage, STAGE_EXPIRY_MSEC}, 0)) {
        return error;
    }
    if (pm_error error = commands.send()) {
        return error;
    }
    now.members += commands.sum();
    now.changes.clear();
    return {};
}

pm_error staged_items::stage_all() {
    for (entry &each : branches_) {
        if (!each.second.changes.empty()) {
            if (pm_error error = stage_changes(&each)) {
                return error;
            }
        }
    }
    pending_items_ = 0;
    pending_bytes_ = 0;
    return {};
}

pm_error staged_items::prolong() {
    stage_pipeline commands(&client_);
    for (const entry &each : branches_) {
        if (each.second.is_staged) {
            const std::string stage = names_.stage(each.first, lock_.token());
            if (pm_error error = commands.add({"PEXPIRE", stage, STAGE_EXPIRY_MSEC}, 0)) {
                return error;
            }
        }
    }
    return commands.send();
}

// The changes of a branch's own set.
void staged_items::add_direct(const entry &of, command_list *changes) const {
    const std::string key = names_.of(of.first, branch_part::items);
    const branch_changes &pending = of.second.changes;
    for (const std::string &prefix : pending.removed()) {
        member_range range = range_of_prefix(prefix, "");
        changes->add({"ZREMRANGEBYLEX", key, std::move(range.first), std::move(range.last)});
    }
    std::vector<std::string> added = {"ZADD", key};
    for (const auto &[path, member] : pending.items()) {
        if (of.second.is_known || !member) {
            member_range range = range_of_path(path);
            changes->add({"ZREMRANGEBYLEX", key, std::move(range.first), std::move(range.last)});
        }
        if (member) {
            added.insert(added.end(), {"0", *member});
        }
    }
    if (added.size() > 2) {
        changes->add(std::move(added));
    }
}

void staged_items::add_staged(const entry &of, change_set *changes) const {
    const std::string key = names_.of(of.first, branch_part::items);
    const std::string stage = names_.stage(of.first, lock_.token());
    changes->staged.emplace_back(stage, of.second.members);
    changes->commands.add({"UNLINK", key});  // a RENAME frees the old set while others wait
    if (of.second.members > 0) {
        changes->commands.add({"PERSIST", stage});
        changes->commands.add({"RENAME", stage, key});
    }
}

pm_error staged_items::finish(commit_plan *plan) {
    const bool stages =
        std::any_of(branches_.begin(), branches_.end(), [](const entry &each) { return each.second.is_staged; });
    if (stages) {
        if (pm_error error = stage_all()) {
            return error;
        }
    }
    for (const entry &each : branches_) {
        if (!each.second.is_staged && each.second.changes.empty()) {
            continue;
        }
        branch_commit &into = plan->branches[each.first];
        into.is_listed = true;
        const std::string key = names_.of(each.first, branch_part::items);
        if (cleared_) {  // whatever is there goes
            into.changes.commands.add({"UNLINK", key});
        } else {
            into.changes.typed.emplace_back("ZCARD", key);
        }
        if (each.second.is_staged) {
            add_staged(each, &into.changes);
        } else {
            add_direct(each, &into.changes.commands);
        }
    }
    return {};
}

}  // namespace redis_store
