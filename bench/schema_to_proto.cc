// SPDX-License-Identifier: Apache-2.0
// Writes Protocol Buffers messages of the same fields as the record types named on the command
// line, to compare the two encodings on equal terms. Field i of a record is field f<i+1>; a union has
// its discriminator in f1 and its arms from f2 on. Messages are named <type>_T<number>.
#include <iostream>
#include <string>

#include "platform/local/codec/parcel_notation.h"
#include "schema/pm_descriptors.h"

namespace {

using parcel_notation::data_type;
using parcel_notation::kind;

std::string message_name(const std::string &type, std::uint32_t number) { return type + "_T" + std::to_string(number); }

bool has_message(const data_type &type) { return !parcel_notation::is_scalar(type.what); }

std::string scalar_name(const std::string &record, const data_type &type) {
    switch (type.what) {
    case kind::u64: return "uint64";
    case kind::boolean: return "bool";
    case kind::text: return "string";
    case kind::ipv4: return "fixed32";
    case kind::enumeration: return "int32";
    case kind::bytes: return "bytes";
    case kind::record:
    case kind::tagged_union: return message_name(record, type.number);
    default: return "uint32";
    }
}

std::string field_type(const std::string &record, const data_type &type) {
    switch (type.what) {
    case kind::text: return "optional string";
    case kind::optional: {
        const std::string name = scalar_name(record, *type.element);
        const bool message = type.element->what == kind::record || type.element->what == kind::tagged_union;
        return message ? name : "optional " + name;
    }
    case kind::array:
    case kind::fixed_array:
        return type.element->what == kind::opaque ? "bytes" : "repeated " + scalar_name(record, *type.element);
    default: return scalar_name(record, type);
    }
}

void write_message(const std::string &record, const data_type &type) {
    const bool is_union = type.what == kind::tagged_union;
    std::cout << "message " << message_name(record, type.number) << " {\n";
    if (is_union) {
        std::cout << "  uint32 f1 = 1;\n  oneof arm {\n";
    }
    std::size_t number = is_union ? 2 : 1;
    for (const parcel_notation::field &field : type.fields) {
        if (field.type != nullptr) {
            std::cout << "    " << field_type(record, *field.type) << " f" << number << " = " << number << ";\n";
        }
        ++number;
    }
    std::cout << (is_union ? "  }\n" : "") << "}\n";
}

}  // namespace

int main(int argc, char **argv) {
    std::cout << "syntax = \"proto3\";\npackage mirror;\noption cc_enable_arenas = true;\n";
    for (int i = 1; i < argc; ++i) {
        const parcel_descriptor *descriptor = pm_find_descriptor(argv[i]);
        parcel_notation::schema schema;
        if (descriptor == nullptr || parcel_notation::describe(descriptor, &schema)) {
            std::cerr << "schema_to_proto: no type " << argv[i] << "\n";
            return 1;
        }
        for (const data_type *type : schema.definitions) {
            if (has_message(*type)) {
                write_message(argv[i], *type);
            }
        }
    }
    return 0;
}
