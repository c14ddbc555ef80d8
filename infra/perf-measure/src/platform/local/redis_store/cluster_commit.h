// SPDX-License-Identifier: Apache-2.0
// A commit whose keys are at several servers of a cluster. Each branch changes in one step, and the router's keys do;
// the whole does not. A writer that is killed within leaves each of them as it was or as it should be, and the
// directory's entries of its branches unsettled, so that readers look at the sets themselves.
#pragma once

#include "base/pm_error.h"
#include "platform/local/redis_store/client.h"
#include "platform/local/redis_store/commit_plan.h"
#include "platform/local/redis_store/redis_key.h"
#include "platform/local/redis_store/writer_lock.h"

namespace redis_store {

[[nodiscard]] pm_error commit_to_cluster(client *servers, const key_names &names, writer_lock *lock,
                                         const commit_plan &plan);

}  // namespace redis_store
