// SPDX-License-Identifier: Apache-2.0
// The process's store as the answers of this room use it.
#pragma once

#include "platform/errcode.h"
#include "platform/local/store/reader.h"
#include "platform/parcel.h"

namespace store_client {

// The store, opened at the first call that succeeds. Where this user may not read it, one line on standard error,
// once, says why.
[[nodiscard]] errcode open(store::reader **out);

// Says once on standard error that a record beside the items cannot be read, where a show goes on without it: else what
// it prints would differ without a word. Says nothing of success, of a record that is not there and of no store.
void report_unreadable(const char *what, errcode code);

// Decodes a parcel into a zeroed record, which is freed with parcel_free_indirections.
[[nodiscard]] errcode decode(std::string_view parcel, void *record, const parcel_descriptor *descriptor);

}  // namespace store_client
