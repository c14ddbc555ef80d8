// SPDX-License-Identifier: Apache-2.0
// Changes that take effect in one step: all of them or none.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/local/redis_store/client.h"
#include "platform/local/redis_store/writer_lock.h"

namespace redis_store {

// Write commands, in order.
class command_list {
public:
    void add(std::vector<std::string> words) { commands_.push_back(std::move(words)); }
    [[nodiscard]] const std::vector<std::vector<std::string>> &commands() const { return commands_; }

private:
    std::vector<std::vector<std::string>> commands_;
};

// A sorted set and how many members it must have.
using expected_set = std::pair<std::string, std::uint64_t>;

// Runs the commands in a MULTI, and gives the lock back in it, unless the lock was lost. `typed` are commands that read
// the keys which will be written: a key of another type is noticed by them, before anything is done.
[[nodiscard]] pm_error run_transaction(client *server, writer_lock *lock, const pipeline &typed,
                                       const command_list &changes);

// The same by a script on the server, which first checks that the sets that were staged are still there: renaming one
// whose expiry has passed would lose the data.
[[nodiscard]] pm_error run_script(client *server, writer_lock *lock, const pipeline &typed,
                                  const std::vector<expected_set> &staged, const command_list &changes);

}  // namespace redis_store
