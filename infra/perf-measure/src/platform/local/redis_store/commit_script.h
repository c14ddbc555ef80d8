// SPDX-License-Identifier: Apache-2.0
// Changes that take effect in one step: all of them or none.
#pragma once

#include <string>
#include <vector>

#include "platform/local/redis_store/client.h"
#include "platform/local/redis_store/commit_plan.h"
#include "platform/local/redis_store/writer_lock.h"

namespace redis_store {

// Runs the commands in a MULTI, and gives the lock back in it, unless the lock was lost. Nothing may be staged.
[[nodiscard]] pm_error run_transaction(client *server, writer_lock *lock, const change_set &changes);

// The same by a script on the server, which first checks what was staged.
[[nodiscard]] pm_error run_script(client *server, writer_lock *lock, const change_set &changes);

// Scripts for a cluster, of changes whose keys are all in one slot.
class script_list {
public:
    explicit script_list(const writer_lock *lock) : lock_(*lock) {}

    // Checks the lock and keeps it. For keys in the lock's slot.
    void add_locked(const change_set &changes);
    // Checks no lock.
    void add_unlocked(const change_set &changes);

    // Runs all of them in one round trip; the error is the first one's.
    [[nodiscard]] pm_error run(client *server);

private:
    const writer_lock &lock_;
    pipeline commands_;
};

}  // namespace redis_store
