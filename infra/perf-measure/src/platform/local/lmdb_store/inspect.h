// SPDX-License-Identifier: Apache-2.0
// A reading of an embedded store that goes on where something is wrong.
#pragma once

#include <string>

#include "base/pm_error.h"
#include "platform/local/store/inspector.h"

namespace lmdb_store {

// Reads every page that the store's tree reaches, compares the head with its writer's note, and all links and seals.
// Waits while a writer is at work, and keeps the next one waiting. An error when there is nothing to be read at all;
// what is wrong with the store goes to the inspector.
[[nodiscard]] pm_error inspect(const std::string &folder, store::inspector *to);

}  // namespace lmdb_store
