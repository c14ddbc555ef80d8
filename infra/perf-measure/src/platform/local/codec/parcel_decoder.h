// SPDX-License-Identifier: Apache-2.0
// Decodes the fields of a parcel by a plan, and finds again what decoding allocated.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/local/codec/parcel_plan.h"

// Decodes the bytes from `begin` to `end` into a zeroed structure of the plan's size. All texts,
// arrays and optionals take one heap block of at most `limit` bytes. ERRCODE_NO_MEMORY or
// PARCEL_MALFORMED, with nothing left allocated and the structure in any state.
[[nodiscard]] errcode parcel_decode_fields(const parcel_plan::record_plan &plan, const std::uint8_t *begin,
                                           const std::uint8_t *end, std::size_t limit, std::uint8_t *record);

// The heap block that a decoded structure hangs on; null when it took none.
[[nodiscard]] void *parcel_indirections(const parcel_plan::record_plan &plan, const std::uint8_t *record);
