// SPDX-License-Identifier: Apache-2.0
// Opens the store that a URL names for writing, whichever back end it takes.
#pragma once

#include <memory>

#include "base/pm_error.h"
#include "platform/local/store/writer.h"

namespace store {

// Opens the store and begins the transaction, after another writer's if one is at work. A store that is missing is
// made, and is gone again when nothing is committed; or it is refused with OPSTORE_NO_CLIENT. On success `*out`
// belongs to the caller.
[[nodiscard]] pm_error open_writer(const char *url, missing_store missing, std::unique_ptr<writer> *out);

}  // namespace store
