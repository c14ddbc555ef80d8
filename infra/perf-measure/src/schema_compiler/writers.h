// SPDX-License-Identifier: Apache-2.0
// The C++ that is made of a compiled catalogue.
#pragma once

#include <ostream>
#include <string>

#include "schema_compiler/compiled_catalogue.h"

// The structures, each with assertions of its size and offsets.
void write_records(std::ostream &out, const record_catalogue &catalogue, const compiled_types &all);

// The declarations of descriptors, accessors and registration routines. Their names begin with the prefix.
void write_descriptor_header(std::ostream &out, const record_catalogue &catalogue, const std::string &prefix);

// Their definitions. `header` is the path by which the header is included.
void write_descriptors(std::ostream &out, const record_catalogue &catalogue, const compiled_types &all,
                       const std::string &prefix, const std::string &header);

// What the codec needs for decoding and encoding the record types, after the definitions of their descriptors. An error
// of parcel_plan::compile.
[[nodiscard]] errcode write_plans(std::ostream &out, const record_catalogue &catalogue, const compiled_types &all);

inline constexpr char GENERATED_NOTE[] = "// Generated from the record catalogue by schema_compiler. Do not edit.\n";
