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

// Decodes a parcel into a zeroed record, which is freed with parcel_free_indirections.
[[nodiscard]] errcode decode(std::string_view parcel, void *record, const parcel_descriptor *descriptor);

}  // namespace store_client
