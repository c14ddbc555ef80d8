// Writes Protocol Buffers messages of the same fields as the record types named on the command
// line, to compare the two encodings on equal terms. Field i of a record is field f<i+1>; a union has
// its discriminator in f1 and its arms from f2 on. Messages are named <type>_T<number>.
#include <iostream>
#include <string>

#include "platform/local/codec/parcel_notation.h"
#include "schema/pm_descriptors.h"

namespace {

using parcel_notation::form;
using parcel_notation::kind;
using parcel_notation::schema;

std::string message_name(const std::string &type, std::uint32_t number) { return type + "_T" + std::to_string(number); }

std::string scalar_name(const schema &schema, const std::string &type, parcel_notation::type_index index) {
    const parcel_notation::type &what = parcel_notation::resolve(schema, index);
    switch (what.what) {
    case kind::u64: return "uint64";
    case kind::boolean: return "bool";
    case kind::text: return "string";
    case kind::ipv4: return "fixed32";
    case kind::enumeration: return "int32";
    case kind::bytes: return "bytes";
    case kind::reference: return message_name(type, schema.definitions[what.definition].number);
    default: return "uint32";
    }
}

std::string field_type(const schema &schema, const std::string &type, parcel_notation::type_index index) {
    const parcel_notation::type &what = parcel_notation::resolve(schema, index);
    switch (what.what) {
    case kind::text: return "optional string";
    case kind::optional: {
        const std::string name = scalar_name(schema, type, what.element);
        return parcel_notation::resolve(schema, what.element).what == kind::reference ? name : "optional " + name;
    }
    case kind::array:
    case kind::fixed_array:
        return parcel_notation::resolve(schema, what.element).what == kind::opaque
                   ? "bytes"
                   : "repeated " + scalar_name(schema, type, what.element);
    default: return scalar_name(schema, type, index);
    }
}

void write_message(const schema &schema, const std::string &type, const parcel_notation::definition &definition) {
    if (definition.what == form::scalar) {
        return;
    }
    const bool is_union = definition.what == form::choice;
    std::cout << "message " << message_name(type, definition.number) << " {\n";
    if (is_union) {
        std::cout << "  uint32 f1 = 1;\n  oneof arm {\n";
    }
    std::size_t number = is_union ? 2 : 1;
    for (const parcel_notation::field &field : definition.fields) {
        if (!field.empty) {
            std::cout << "    " << field_type(schema, type, field.type) << " f" << number << " = " << number << ";\n";
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
        schema schema;
        if (descriptor == nullptr || !parcel_notation::parse(descriptor->schema, &schema, nullptr)) {
            std::cerr << "schema_to_proto: no type " << argv[i] << "\n";
            return 1;
        }
        for (const parcel_notation::definition &definition : schema.definitions) {
            write_message(schema, argv[i], definition);
        }
    }
    return 0;
}
