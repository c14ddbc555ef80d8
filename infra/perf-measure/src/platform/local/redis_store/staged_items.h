// SPDX-License-Identifier: Apache-2.0
// The changes of a writer's branches: kept here while they are few, and then staged in the server, as sets that take
// the branches' places when the writer commits.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "platform/local/redis_store/branch_changes.h"
#include "platform/local/redis_store/client.h"
#include "platform/local/redis_store/commit_plan.h"
#include "platform/local/redis_store/redis_key.h"
#include "platform/local/redis_store/stage_pipeline.h"
#include "platform/local/redis_store/writer_lock.h"

namespace redis_store {

class staged_items {
public:
    staged_items(client *server, const key_names *names, const writer_lock *lock)
        : client_(*server), names_(*names), lock_(*lock), stages_(server) {}
    // Removes what was staged.
    ~staged_items();
    staged_items(const staged_items &) = delete;
    staged_items &operator=(const staged_items &) = delete;

    // A branch of the store as it is. The others have no items.
    void add_known(const store::branch &named);
    // Nothing of the branches is kept.
    [[nodiscard]] pm_error clear();

    [[nodiscard]] pm_error put(const store::branch &into, std::string_view path, std::string_view sealed);
    [[nodiscard]] pm_error remove(const store::branch &from, std::string_view path, std::uint64_t *removed);
    [[nodiscard]] pm_error remove_below(const store::branch &from, std::string_view prefix, std::uint64_t *removed);
    // Counts the item at a path, or those below a prefix.
    [[nodiscard]] pm_error count(const store::branch &in, std::string_view path, std::uint64_t *found);
    [[nodiscard]] pm_error count_below(const store::branch &in, std::string_view prefix, std::uint64_t *found);

    // Waits for the answers to what was sent; before the client is used for anything else.
    [[nodiscard]] pm_error settle() { return stages_.settle(); }
    // Keeps what is staged from expiring.
    [[nodiscard]] pm_error prolong();
    // The last step before the commit: adds what it changes.
    [[nodiscard]] pm_error finish(commit_plan *plan);
    // The staged sets have become the branches' own.
    void forget() { branches_.clear(); }

private:
    struct state {
        branch_changes changes;
        bool is_known = false;  // the store has items of it, and they are kept
        bool is_staged = false;
        std::uint64_t members = 0;  // of the staged set
        std::string highest;        // path in it, while it got nothing but ascending ones
        bool ascends = true;
        std::size_t pending_items = 0;  // in `changes`
        std::size_t pending_bytes = 0;
    };
    using entry = std::pair<const store::branch, state>;

    [[nodiscard]] std::string base_key(const entry &of) const;
    [[nodiscard]] pm_error ask_count(const entry &in, const member_range &range, std::uint64_t *found);
    [[nodiscard]] pm_error stage_all();
    [[nodiscard]] pm_error begin_stage(entry *of);
    [[nodiscard]] pm_error stage_changes(entry *of);
    [[nodiscard]] pm_error stage_members(entry *of);
    void note_pending(state *of, std::size_t bytes);
    void forget_pending(state *of);
    void add_direct(const entry &of, command_list *changes) const;
    void add_staged(const entry &of, change_set *changes) const;

    client &client_;
    const key_names &names_;
    const writer_lock &lock_;
    bool cleared_ = false;
    std::map<store::branch, state> branches_;
    std::size_t pending_items_ = 0;  // of all branches
    std::size_t pending_bytes_ = 0;
    stage_pipeline stages_;
};

}  // namespace redis_store
