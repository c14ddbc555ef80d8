// SPDX-License-Identifier: Apache-2.0
// A reading of a store in a server that goes on where something is wrong.
#pragma once

#include <string>

#include "base/pm_error.h"
#include "platform/local/store/inspector.h"

namespace redis_store {

// Reads every key of the store, and compares what is there with the numbers that writers noted. Writers may be at work
// meanwhile: each page is of one state. An error when there is nothing to be read at all; what is wrong with the store
// goes to the inspector.
[[nodiscard]] pm_error inspect(const std::string &url, store::inspector *to);

}  // namespace redis_store
