// SPDX-License-Identifier: Apache-2.0
// The embedded store's side of store/writer.h: one LMDB transaction.
#pragma once

#include <memory>
#include <string>

#include "platform/local/store/writer.h"

namespace lmdb_store {

// Opens the store in a folder and begins the transaction, after another writer's if one is at work. Folder and files
// are made when they are missing, readable for the folder's group, unless `missing` refuses that with
// OPSTORE_NO_CLIENT; they are gone again when nothing is committed.
[[nodiscard]] pm_error open_writer(const std::string &folder, store::missing_store missing,
                                   std::unique_ptr<store::writer> *out);

}  // namespace lmdb_store
