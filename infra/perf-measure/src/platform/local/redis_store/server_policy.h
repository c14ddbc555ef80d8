// SPDX-License-Identifier: Apache-2.0
// What a writer has to know of a server before it trusts it with a store.
#pragma once

#include <string>
#include <vector>

#include "base/pm_error.h"
#include "platform/local/redis_store/client.h"

namespace redis_store {

// Refuses servers that may throw keys away to make room for others: those that have the keys of `tags` (pipeline.h), as
// far as the client knows them. Tells whether they are a cluster. A user who may not ask is let through.
[[nodiscard]] pm_error check_policy(client *servers, const std::vector<std::string> &tags, bool *is_cluster);

}  // namespace redis_store
