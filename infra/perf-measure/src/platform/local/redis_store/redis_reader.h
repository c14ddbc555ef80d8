// SPDX-License-Identifier: Apache-2.0
// The networked store's side of store/reader.h: sorted sets of a Redis server.
#pragma once

#include <memory>
#include <string>

#include "platform/local/store/reader.h"

namespace redis_store {

// Connects to the store that a URL names. OPSTORE_NO_CLIENT: with a text that names the server when it cannot be
// reached or refuses; without one when it holds no store. OPSTORE_DAMAGED, also for a store of another format.
[[nodiscard]] pm_error open_reader(const std::string &url, std::unique_ptr<store::reader> *out);

}  // namespace redis_store
