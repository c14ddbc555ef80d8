// SPDX-License-Identifier: Apache-2.0
// The embedded store's side of store/reader.h: an LMDB environment in a folder.
#pragma once

#include <memory>
#include <string>

#include "platform/local/store/reader.h"

namespace lmdb_store {

// Opens the store in a folder. Such a reader may be opened once in a process. OPSTORE_NO_CLIENT, with a text when it
// is a matter of permission; OPSTORE_DAMAGED, also for a store of another program.
[[nodiscard]] pm_error open_reader(const std::string &folder, std::unique_ptr<store::reader> *out);

// What this user may do with the store in a folder. A store that may be read can have a denial nevertheless: of its
// lock file, in which readers beside a writer register.
[[nodiscard]] store::access_state check_access(const std::string &folder);

}  // namespace lmdb_store
