// SPDX-License-Identifier: Apache-2.0
// The local platform's parcel codec beyond platform/parcel.h: encoding, for the serving side, and
// the schemas of records that were written by another version. docs/parcel-encoding.md gives the
// wire form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/parcel.h"

// What decoding allocates is at most this many bytes for each byte of the parcel; the second bound
// is for parcels whose schema is not the reader's own.
inline constexpr std::size_t PARCEL_GROWTH = 16;
inline constexpr std::size_t PARCEL_GROWTH_CONVERTED = 64;

// Deepest nesting of arrays, optionals and unions in one record.
inline constexpr std::uint32_t PARCEL_MAX_DEPTH = 64;

// Encodes `record` and appends the parcel to `*out`. ERRCODE_INVALID_ARGUMENT for a null argument or
// an array without elements, ERRCODE_RANGE for a record nested too deeply or beyond 2^32 bytes,
// PARCEL_BAD_DESCRIPTOR. On failure `*out` is as it was.
[[nodiscard]] errcode parcel_encode(const void *record, const parcel_descriptor *descriptor,
                                    std::vector<std::uint8_t> *out);

// What a parcel says of itself, read without its schema.
struct parcel_header {
    std::uint64_t checksum;
    std::uint64_t fingerprint;
    std::uint32_t version_major;
    std::uint32_t version_minor;
    std::string_view type;  // a view into the parcel
    std::size_t size;       // bytes of the header; the fields follow
};

// Reads and checks the header of a parcel. PARCEL_MALFORMED or PARCEL_CHECKSUM.
[[nodiscard]] errcode parcel_read_header(const void *data, std::size_t length, parcel_header *header);

// The fingerprint that parcels of a type carry.
[[nodiscard]] std::uint64_t parcel_fingerprint(const parcel_descriptor *descriptor);

// Finds the schema text of a fingerprint that is not the reader's own; false when nobody kept it.
using parcel_schema_source = bool (*)(std::uint64_t fingerprint, std::string *schema);
void parcel_set_schema_source(parcel_schema_source source);

// Makes what decoding and encoding of a type need, ahead of its first record. PARCEL_BAD_DESCRIPTOR.
[[nodiscard]] errcode parcel_prepare(const parcel_descriptor *descriptor);

// The registered type of that name (see parcel_register); null when there is none.
[[nodiscard]] const parcel_descriptor *parcel_registered(std::string_view name);
