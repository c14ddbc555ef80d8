// SPDX-License-Identifier: Apache-2.0
// A catalogue whose types are described: schema texts made, parsed and laid out.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/local/codec/parcel_notation.h"
#include "schema_compiler/catalogue.h"

// A type with all that it reaches.
struct compiled_type {
    const catalogue_entry *source = nullptr;
    std::vector<const catalogue_entry *> types;  // the type itself and what it reaches, as in the schema
    std::string text;                            // of the schema, which has views into it
    parcel_notation::schema schema;

    [[nodiscard]] const parcel_notation::data_type &top() const { return *schema.definitions.front(); }
};

using compiled_types = std::map<std::string, compiled_type>;  // by name of the C structure

// Whether the type has a structure of its own, which a named scalar has not.
[[nodiscard]] inline bool has_structure(const parcel_notation::data_type &type) {
    return !parcel_notation::is_scalar(type.what);
}

// Describes every type. An error when a body is not in the notation or a type has not the size that the
// catalogue says. The catalogue must outlive the result.
[[nodiscard]] pm_error compile_catalogue(const record_catalogue &catalogue, compiled_types *out);
