// SPDX-License-Identifier: Apache-2.0
// The networked store's side of store/writer.h: changes that take effect in one step.
#pragma once

#include <memory>
#include <string>

#include "platform/local/store/writer.h"

namespace redis_store {

// Connects to the store that a URL names and takes the writer's lock, after another writer. A store that is missing is
// made when something is committed, unless `missing` refuses that with OPSTORE_NO_CLIENT. A server that may evict keys
// is refused.
[[nodiscard]] pm_error open_writer(const std::string &url, store::missing_store missing,
                                   std::unique_ptr<store::writer> *out);

}  // namespace redis_store
