// SPDX-License-Identifier: Apache-2.0
// Changes into commands: of the branches' own sets, or of staged ones.
#include "platform/local/redis_store/staged_items.h"

#include <algorithm>
#include <utility>

#include "platform/errcode.h"

namespace redis_store {

namespace {

using knowledge = branch_changes::knowledge;

constexpr std::size_t MAX_PENDING_ITEMS = 2000;  // a MULTI of more makes every other client of the server wait
constexpr std::size_t MAX_PENDING_BYTES = 8 * 1024 * 1024;
// Of a branch that is staged: one pipeline. The server is at work on it while the next one is filled.
constexpr std::size_t STAGE_BYTES = 480 * 1024;
constexpr char STAGE_EXPIRY_MSEC[] = "60000";  // longer than the lock's

constexpr char COPY_WITH_EXPIRY[] =
    "redis.call('COPY', KEYS[1], KEYS[2]) "
    "return redis.call('PEXPIRE', KEYS[2], ARGV[1])";

}  // namespace

staged_items::~staged_items() {
    static_cast<void>(settle());
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
    if (pm_error error = settle()) {
        return error;
    }
    pipeline commands;
    for (auto &[named, each] : branches_) {
        each.changes.clear();
        forget_pending(&each);
        each.is_known = false;
        if (each.is_staged) {
            each = state();
            each.is_staged = true;
            commands.add({"UNLINK", names_.stage(named, lock_.token())});
        }
    }
    cleared_ = true;
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
    entry &of = *branches_.try_emplace(into).first;
    note_pending(&of.second, path.size() + member.size());
    of.second.changes.put(path, std::move(member));
    if (of.second.is_staged && of.second.pending_bytes >= STAGE_BYTES) {
        return stage_changes(&of);
    }
    return pending_items_ > MAX_PENDING_ITEMS || pending_bytes_ > MAX_PENDING_BYTES ? stage_all() : pm_error();
}

void staged_items::note_pending(state *of, std::size_t bytes) {
    ++of->pending_items;
    of->pending_bytes += bytes;
    ++pending_items_;
    pending_bytes_ += bytes;
}

void staged_items::forget_pending(state *of) {
    pending_items_ -= std::exchange(of->pending_items, 0);
    pending_bytes_ -= std::exchange(of->pending_bytes, 0);
}

std::string staged_items::base_key(const entry &of) const {
    return of.second.is_staged ? names_.stage(of.first, lock_.token()) : names_.of(of.first, branch_part::items);
}

pm_error staged_items::ask_count(const entry &in, const member_range &range, std::uint64_t *found) {
    *found = 0;
    if (!in.second.is_known && !in.second.is_staged) {
        return {};
    }
    if (pm_error error = settle()) {
        return error;
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
        state &of = branches_[from];
        of.changes.remove(path);
        note_pending(&of, path.size());
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
    state &now = of->second;
    if (now.is_staged) {
        return {};
    }
    now.is_staged = true;
    now.members = 0;
    now.ascends = !now.is_known;
    if (!now.is_known) {
        return {};
    }
    const std::string key = names_.of(of->first, branch_part::items);
    const std::string stage = names_.stage(of->first, lock_.token());
    pm_error error = stages_.add({"EVAL", COPY_WITH_EXPIRY, "2", key, stage, STAGE_EXPIRY_MSEC}, {});
    return error ? error : stages_.add({"ZCARD", stage}, {member_count::kind::came, &now.members});
}

// Sends the changes of a branch.
pm_error staged_items::stage_changes(entry *of) {
    if (pm_error error = begin_stage(of)) {
        return error;
    }
    const std::string stage = names_.stage(of->first, lock_.token());
    state &now = of->second;
    for (const std::string &prefix : now.changes.removed()) {
        const member_range range = range_of_prefix(prefix, "");
        if (pm_error error = stages_.add({"ZREMRANGEBYLEX", stage, range.first, range.last},
                                         {member_count::kind::went, &now.members})) {
            return error;
        }
    }
    if (pm_error error = stage_members(of)) {
        return error;
    }
    now.changes.clear();
    forget_pending(&now);
    pm_error error = stages_.add({"PEXPIRE", stage, STAGE_EXPIRY_MSEC}, {});
    return error ? error : stages_.send();
}

// The items that are put and removed one by one.
pm_error staged_items::stage_members(entry *of) {
    const std::string stage = names_.stage(of->first, lock_.token());
    state &now = of->second;
    const member_count came{member_count::kind::came, &now.members};
    const member_count went{member_count::kind::went, &now.members};
    member_list members(stage, STAGE_EXPIRY_MSEC);
    for (const auto &[path, member] : now.changes.items()) {
        now.ascends = now.ascends && path > now.highest;  // nothing of the same path can be in the set
        if (!now.ascends || !member) {
            const member_range range = range_of_path(path);
            if (pm_error error = stages_.add({"ZREMRANGEBYLEX", stage, range.first, range.last}, went)) {
                return error;
            }
        }
        now.highest = now.ascends ? path : std::string();
        if (member) {
            members.add(*member);
        }
        if (members.full()) {
            if (pm_error error = stages_.add(members.words(), came)) {
                return error;
            }
            members.clear();
        }
    }
    return members.empty() ? pm_error() : stages_.add(members.words(), came);
}

pm_error staged_items::stage_all() {
    for (entry &each : branches_) {
        if (!each.second.changes.empty()) {
            if (pm_error error = stage_changes(&each)) {
                return error;
            }
        }
    }
    return {};
}

pm_error staged_items::prolong() {
    for (const entry &each : branches_) {
        if (each.second.is_staged) {
            const std::string stage = names_.stage(each.first, lock_.token());
            if (pm_error error = stages_.add({"PEXPIRE", stage, STAGE_EXPIRY_MSEC}, {})) {
                return error;
            }
        }
    }
    pm_error error = stages_.send();
    return error ? error : settle();
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
        if (pm_error error = settle()) {
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
