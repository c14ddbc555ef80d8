// The schema notation, parsed.
//
// A schema text is a list of definitions "$N=body;", the first of which is the top-level type. The
// parser takes any text: one that is not a schema gives an error and its place, never a crash, so
// that schemas kept in an untrusted store can be read too.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace parcel_notation {

enum class kind : std::uint8_t {
    u32,          // D, D%h
    u64,          // H
    u16,          // I
    u8,           // C
    opaque,       // c: a byte of an opaque buffer
    boolean,      // b
    text,         // s
    ipv4,         // N
    enumeration,  // [name]e
    bytes,        // nx%f: count raw bytes
    reference,    // $N: a definition
    optional,     // p(T)
    array,        // a(T)
    fixed_array,  // nA(T)
};

// Indices into schema::types and schema::definitions.
using type_index = std::uint32_t;
using definition_index = std::uint32_t;

struct type {
    kind what{};
    char format = 0;                  // of bytes: 's' for an IPv6 address or SID, 'm' for a MAC address; 'h' of D%h
    std::uint32_t count = 0;          // of bytes and fixed_array
    std::uint32_t number = 0;         // of reference: the N of $N
    definition_index definition = 0;  // of reference
    type_index element = 0;           // of optional, array and fixed_array
    std::string_view name;            // of enumeration
};

// A field of a record or an arm of a union.
struct field {
    std::string_view name;    // empty for an arm without content
    std::uint32_t value = 0;  // of an arm: the discriminator value
    bool empty = false;       // an arm without content
    bool marked = false;      // P
    type_index type = 0;
};

enum class form : std::uint8_t { record, choice, scalar };

struct definition {
    std::uint32_t number = 0;
    form what{};
    std::string_view discriminator;       // of a union
    std::string_view discriminator_type;  // its enumeration
    std::vector<field> fields;            // of a record or union
    type_index scalar = 0;                // of "$54=16x%s": the type that the number stands for
};

// A parsed schema. Names are views into the text, which must outlive it.
struct schema {
    std::vector<definition> definitions;
    std::vector<type> types;
};

// Reads `text` into `*out`. On failure returns false and says what is wrong, and where, in `*error`.
[[nodiscard]] bool parse(std::string_view text, schema *out, std::string *error);

// The type behind a reference to a scalar definition ("$54"); any other type gives itself.
[[nodiscard]] const type &resolve(const schema &schema, type_index index);

// Bytes of a scalar in the C structure; 0 for a kind whose size is not fixed by the notation.
[[nodiscard]] std::uint32_t scalar_size(const type &type);

// Notation of a type without its mark, for messages: "D", "[pm_advert_reason_e]e", "a($55)".
[[nodiscard]] std::string notation(const schema &schema, type_index index);

}  // namespace parcel_notation
