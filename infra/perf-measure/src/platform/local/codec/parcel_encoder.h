// SPDX-License-Identifier: Apache-2.0
// Encodes the fields of a structure by a plan.
#pragma once

#include <cstdint>
#include <vector>

#include "platform/local/codec/parcel_plan.h"

// Appends the fields to `*out`. ERRCODE_INVALID_ARGUMENT for an array with a count and no elements,
// ERRCODE_RANGE for nesting beyond PARCEL_MAX_DEPTH or a text beyond 2^32 bytes.
[[nodiscard]] errcode parcel_encode_fields(const parcel_plan::record_plan &plan, const std::uint8_t *record,
                                           std::vector<std::uint8_t> *out);

// Appends a number of 7 bits a byte, lowest first; the top bit says that more follow.
void parcel_append_varint(std::uint32_t value, std::vector<std::uint8_t> *out);
