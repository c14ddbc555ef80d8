// SPDX-License-Identifier: Apache-2.0
// What another schema leaves alone in a record that was decoded with it.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/parcel.h"

// Whether every field is zero that the writer's schema does not have under its name, wherever it is in the record. The
// schema is one that the codec has accepted for the type.
[[nodiscard]] bool unknown_fields_are_zero(std::string_view writer_schema, const parcel_descriptor *descriptor,
                                           const std::uint8_t *record);
