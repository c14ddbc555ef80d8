// SPDX-License-Identifier: Apache-2.0
// The description of a record type, made once from its schema text: the codec, the JSON of perf-store and
// the schema compiler all work from it.
//
// A schema text is a list of definitions "$N=body;", the first of which is the record type itself. The parser
// takes any text: one that is not a schema gives an error and its place, never a crash, so that schemas kept
// in an untrusted store can be read too. References are resolved: a field of type $55 points to the type that
// "$55=..." defines. Types that hold each other point to each other.
//
// Sizes and offsets are those of the C structure. Parsing alone gives the sizes of scalars, texts, optionals and
// arrays; take_layout or lay_out adds the rest.
#pragma once

#include <cstdint>
#include <deque>
#include <string_view>
#include <vector>

#include "base/pm_error.h"
#include "platform/parcel.h"

namespace parcel_notation {

enum class kind : std::uint8_t {
    // Scalars: their bytes are the same in a parcel and in the structure.
    u32,          // D, D%h
    u64,          // H
    u16,          // I
    u8,           // C
    opaque,       // c: a byte of an opaque buffer
    boolean,      // b
    ipv4,         // N
    enumeration,  // [name]e
    bytes,        // nx%f: count raw bytes
    // The rest.
    text,         // s
    optional,     // p(T)
    array,        // a(T)
    fixed_array,  // nA(T)
    record,
    tagged_union,
};

[[nodiscard]] constexpr bool is_scalar(kind what) { return what <= kind::bytes; }

struct data_type;

// A field of a record or an arm of a union.
struct field {
    std::string_view name;      // empty for an arm without content
    std::uint32_t value = 0;    // of an arm: the discriminator value that selects it
    std::uint32_t offset = 0;   // in the structure
    bool marked = false;        // P
    data_type *type = nullptr;  // null for an arm without content
};

struct data_type {
    kind what{};
    char format = 0;                 // of bytes: 's' for an IPv6 address or SID, 'm' for a MAC address
    std::uint32_t count = 0;         // of bytes and fixed arrays
    std::uint32_t size = 0;          // bytes in the structure
    std::uint32_t alignment = 0;     // set by lay_out only
    std::uint32_t number = 0;        // of what "$N=..." defines
    bool catch_all = false;          // of a union: "?:v" is written
    data_type *element = nullptr;    // of optionals and arrays
    std::string_view notation;       // without its mark: "D", "[pm_advert_reason_e]e", "a($55)"; "$55" of a definition
    std::string_view name;           // of an enumeration
    std::string_view discriminator;  // of a union; it is at the start of the structure
    std::string_view discriminator_type;  // its enumeration
    std::vector<field> fields;            // of records and unions, as the schema has them

    // The arm that a discriminator value selects; null when none lists the value.
    [[nodiscard]] const field *arm_of(std::uint32_t value) const;
    // The field or arm of that name; null when there is none. The search begins at field number `from`.
    [[nodiscard]] const field *find(std::string_view wanted, std::size_t from = 0) const;
};

// A parsed schema. Names are views into the text, which must outlive it.
struct schema {
    std::vector<data_type *> definitions;  // as the text has them; the first is the record type
    std::deque<data_type> types;

    schema() = default;
    schema(const schema &) = delete;  // types point to each other
    schema &operator=(const schema &) = delete;
};

// Reads `text` into the empty schema `*out`. An error's text says what is wrong, and where.
[[nodiscard]] pm_error parse(std::string_view text, schema *out);

// Sets the sizes and offsets of a descriptor's own schema from its layout table. PARCEL_BAD_DESCRIPTOR when the
// table lacks a type or gives one beyond any reason.
[[nodiscard]] pm_error take_layout(const parcel_descriptor *descriptor, schema *of);

// Parses a descriptor's schema and takes its layout. The descriptor must outlive the schema.
[[nodiscard]] pm_error describe(const parcel_descriptor *descriptor, schema *out);

// Sets the sizes and offsets that the C structures have: natural alignment, with a 16-byte address or SID aligned
// to 8 and a MAC address to 1. A union is its discriminator and after it the arms, one over the other. An error
// when a type holds itself by value or is beyond any reason.
[[nodiscard]] pm_error lay_out(schema *of);

}  // namespace parcel_notation
