// SPDX-License-Identifier: Apache-2.0
// Unsettles the directory's entries, changes the branches, and settles the entries with the router's other keys.
#include "platform/local/redis_store/cluster_commit.h"

#include "platform/local/redis_store/commit_script.h"
#include "platform/local/redis_store/server_policy.h"

namespace redis_store {

namespace {

// What must be there before a branch changes: the schemas of its new items.
pm_error prepare(client *servers, const key_names &names, const writer_lock &lock, const commit_plan &plan) {
    change_set changes;
    for (const auto &[named, ignored] : plan.branches) {
        changes.commands.add({"HSET", names.of(state_part::branches), branch_name(named), UNSETTLED});
    }
    changes.commands.append(plan.schemas);
    script_list scripts(&lock);
    scripts.add_locked(changes);
    return scripts.run(servers);
}

pm_error change_branches(client *servers, const writer_lock &lock, const commit_plan &plan) {
    script_list scripts(&lock);
    for (const auto &[named, each] : plan.branches) {
        scripts.add_unlocked(each.changes);
    }
    return scripts.run(servers);
}

// The number of items of each branch that changes.
pm_error count_items(client *servers, const key_names &names, const commit_plan &plan,
                     std::vector<plain_answer> *numbers) {
    pipeline questions;
    for (const auto &[named, each] : plan.branches) {
        questions.add({"ZCARD", names.of(named, branch_part::items)});
    }
    numbers->assign(plan.branches.size(), plain_answer(1));
    std::vector<answer *> all;
    for (plain_answer &each : *numbers) {
        all.push_back(&each);
    }
    return servers->exchange(questions, all, repetition::allowed);
}

pm_error settle(client *servers, const key_names &names, writer_lock *lock, const commit_plan &plan) {
    std::vector<plain_answer> numbers;
    if (pm_error error = count_items(servers, names, plan, &numbers)) {
        return error;
    }
    change_set changes = plan.state;
    auto number = numbers.begin();
    for (const auto &[named, each] : plan.branches) {
        if (each.is_listed) {
            changes.commands.add({"HSET", names.of(state_part::branches), branch_name(named), number->text()});
        }
        ++number;
    }
    return run_script(servers, lock, changes);
}

// Asking about the keys tells which servers have the branches.
pm_error check_servers(client *servers, const key_names &names, const commit_plan &plan) {
    std::vector<plain_answer> ignored;
    if (pm_error error = count_items(servers, names, plan, &ignored)) {
        return error;
    }
    std::vector<std::string> tags;
    for (const auto &[named, each] : plan.branches) {
        tags.push_back(branch_name(named));
    }
    bool is_cluster = false;
    return check_policy(servers, tags, &is_cluster);
}

}  // namespace

pm_error commit_to_cluster(client *servers, const key_names &names, writer_lock *lock, const commit_plan &plan) {
    if (!plan.branches.empty()) {
        if (pm_error error = check_servers(servers, names, plan)) {
            return error;
        }
        if (pm_error error = lock->refresh()) {
            return error;
        }
        if (pm_error error = prepare(servers, names, *lock, plan)) {
            return error;
        }
        if (pm_error error = change_branches(servers, *lock, plan)) {
            return error;
        }
    }
    return settle(servers, names, lock, plan);
}

}  // namespace redis_store
