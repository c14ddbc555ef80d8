// SPDX-License-Identifier: Apache-2.0
// One input of the parcel fuzz target, for libFuzzer and for the ordinary tests that replay what it
// found. The first byte says how the rest is read (parcel_fuzz_mode), the next two which record
// type it claims to be.
#pragma once

#include <cstddef>
#include <cstdint>

enum class parcel_fuzz_mode : std::uint8_t {
    whole_parcel,   // the rest is a parcel, header and checksum included
    fields,         // the rest are the fields of a record written with the type's own schema
    other_schema,   // a 16-bit length, a schema text of that length, and fields written with it
    edited_schema,  // changes of the type's own schema (schema_edit.h), and fields written with what comes of it
    count,
};

// Decodes the input; aborts when a promise of the codec does not hold.
void parcel_fuzz_one(const std::uint8_t *data, std::size_t size);
