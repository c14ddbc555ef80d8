// SPDX-License-Identifier: Apache-2.0
// What a commit changes: write commands, by the keys that are in one slot of a cluster.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/local/store/branch.h"

namespace redis_store {

// Write commands, in order.
class command_list {
public:
    void add(std::vector<std::string> words) { commands_.push_back(std::move(words)); }
    // Sets a field of a hash to a number that is known then: the answer of `command` about `key`.
    void add_note(const std::string &command, const std::string &key, const std::string &hash,
                  const std::string &field) {
        add({NOTE, command, key, hash, field});
    }
    void append(const command_list &others) {
        commands_.insert(commands_.end(), others.commands_.begin(), others.commands_.end());
    }
    [[nodiscard]] const std::vector<std::vector<std::string>> &commands() const { return commands_; }

    static constexpr char NOTE[] = "NOTE";  // in place of a command's name

private:
    std::vector<std::vector<std::string>> commands_;
};

struct change_set {
    // Sorted sets that were staged, with their members: all must still be there. Renaming one whose expiry has passed
    // would lose the data.
    std::vector<std::pair<std::string, std::uint64_t>> staged;
    // Reading commands and their keys, by which a key of another type is noticed before anything is done.
    std::vector<std::pair<std::string, std::string>> typed;
    command_list commands;

    void append(const change_set &others);
};

struct branch_commit {
    change_set changes;
    bool is_listed = false;  // whether the branch is in the directory afterwards
};

struct commit_plan {
    change_set state;      // of the router's keys; the directory's entries are made from `branches`
    command_list schemas;  // that `state` puts too, and that items need
    std::map<store::branch, branch_commit> branches;
};

}  // namespace redis_store
