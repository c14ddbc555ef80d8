// SPDX-License-Identifier: Apache-2.0
// Parcels: self-describing encoded records, and the descriptors that say how a record type looks.
//
// A descriptor carries a type's schema text and the C layout of its structure; the codec works
// from the descriptor alone. The wire form is given in docs/parcel-encoding.md.
#pragma once

#include <cstdint>

#include "platform/errcode.h"

// One entry of a layout table. The first entry describes the type itself and its number says how
// many entries follow; each following entry describes one record or union type that the type
// reaches, and its number is that type's schema number.
struct parcel_layout {
    std::uint64_t number;
    std::uint64_t size;            // bytes of the C structure
    const std::uint64_t *offsets;  // a record: one byte offset per field, in schema order;
                                   // a union: the discriminator's, then one per listed arm
};

// Describes one record type. Read-only, defined at build time.
struct parcel_descriptor {
    std::uint64_t format;         // descriptor format, always 1
    const char *name;             // record type name
    std::uint32_t version_major;  // schema version of the descriptor group
    std::uint32_t version_minor;
    const char *library;  // name of the descriptor group
    const parcel_layout *layout;
    const char *schema;          // full schema, with field names
    const char *compact_schema;  // the same with the field names left out
};

// A variable-length array inside a record: `count` elements, null when there is none.
template <class T>
struct parcel_array {
    std::uint32_t count;
    T *elements;

    const T *begin() const { return elements; }
    const T *end() const { return elements + count; }
    const T &operator[](std::uint32_t index) const { return elements[index]; }
};

// Sixteen bytes of an IPv6 address or an SRv6 SID.
struct alignas(8) parcel_ipv6 {
    std::uint8_t octets[16];
};

// Six bytes of a MAC address.
struct parcel_mac {
    std::uint8_t octets[6];
};

// Registration, for processes that serve records: start, one parcel_register per type, then end, which commits
// them. parcel_register_abort discards all types registered since the start. ERRCODE_INVALID_ARGUMENT for a start
// within a transaction, any other call but abort outside of one, a null descriptor, or a name that another
// descriptor has; the same descriptor again is no error. PARCEL_BAD_DESCRIPTOR.
[[nodiscard]] errcode parcel_register_start();
[[nodiscard]] errcode parcel_register(const parcel_descriptor *descriptor);
[[nodiscard]] errcode parcel_register_end();
void parcel_register_abort();

// Decodes `length` bytes at `data` into `record`, a structure of the descriptor's size. Texts,
// arrays and optional parts hang off the record and stay until parcel_free_indirections. On
// failure nothing stays allocated and the record is all zero. ERRCODE_INVALID_ARGUMENT for a null
// argument; PARCEL_* for bytes that are not such a record; ERRCODE_NO_MEMORY.
[[nodiscard]] errcode parcel_decode(const void *data, std::uint32_t length, void *record,
                                    const parcel_descriptor *descriptor);

// Frees what parcel_decode allocated inside the record, not the record, and zeroes it.
void parcel_free_indirections(void *record, const parcel_descriptor *descriptor);
