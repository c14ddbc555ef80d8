// SPDX-License-Identifier: Apache-2.0
// Writes the C structures of a catalogue's types.
#include <set>

#include "schema_compiler/writers.h"

namespace {

using parcel_notation::data_type;
using parcel_notation::field;
using parcel_notation::kind;

std::string cpp_type(const compiled_type &of, const data_type &type) {
    if (type.notation.front() == '$') {
        for (const catalogue_entry *each : of.types) {
            if (each->number == type.number) {
                return each->name;
            }
        }
    }
    switch (type.what) {
    case kind::u32:
    case kind::ipv4:
    case kind::boolean: return "std::uint32_t";
    case kind::u64: return "std::uint64_t";
    case kind::u16: return "std::uint16_t";
    case kind::u8:
    case kind::opaque: return "std::uint8_t";
    case kind::text: return "const char *";
    case kind::enumeration: return std::string(type.name);
    case kind::bytes: return type.format == 's' ? "parcel_ipv6" : "parcel_mac";
    case kind::optional: return cpp_type(of, *type.element) + " *";
    case kind::array: return "parcel_array<" + cpp_type(of, *type.element) + ">";
    case kind::fixed_array:
        return "std::array<" + cpp_type(of, *type.element) + ", " + std::to_string(type.count) + ">";
    case kind::record:
    case kind::tagged_union: break;  // are referred to
    }
    return {};
}

std::string declaration(const std::string &type, std::string_view name) {
    return type + (type.ends_with("*") ? "" : " ") + std::string(name) + ";";
}

void write_members(std::ostream &out, const compiled_type &of) {
    const data_type &top = of.top();
    const bool is_union = top.what == kind::tagged_union;
    if (is_union) {
        out << "    " << declaration(std::string(top.discriminator_type), top.discriminator) << "\n    union {\n";
    }
    for (const field &each : top.fields) {
        if (each.type != nullptr) {
            out << (is_union ? "        " : "    ") << declaration(cpp_type(of, *each.type), each.name)
                << (is_union ? "  // " + std::to_string(each.value) : "") << "\n";
        }
    }
    out << (is_union ? "    };\n" : "");
}

void write_struct(std::ostream &out, const compiled_type &of) {
    const data_type &top = of.top();
    const std::string &name = of.source->name;
    if (!has_structure(top)) {
        out << "using " << name << " = " << cpp_type(of, top) << ";\n\n";
        return;
    }
    out << "struct " << name << " {\n";
    write_members(out, of);
    out << "};\n"
        << "static_assert(sizeof(" << name << ") == " << top.size << ");\n";
    for (const field &each : top.fields) {
        if (each.type != nullptr) {
            out << "static_assert(offsetof(" << name << ", " << each.name << ") == " << each.offset << ");\n";
        }
    }
    out << "\n";
}

// A struct after those that it holds by value.
void write_in_order(std::ostream &out, const compiled_types &all, const compiled_type &of,
                    std::set<std::string> *written) {
    if (!written->insert(of.source->name).second) {
        return;
    }
    for (const std::string &name : of.source->uses) {
        write_in_order(out, all, all.at(name), written);
    }
    write_struct(out, of);
}

}  // namespace

void write_records(std::ostream &out, const record_catalogue &catalogue, const compiled_types &all) {
    out << GENERATED_NOTE << "#pragma once\n\n#include <array>\n#include <cstddef>\n#include <cstdint>\n\n"
        << "#include \"platform/parcel.h\"\n";
    if (!catalogue.include.empty()) {
        out << "#include \"" << catalogue.include << "\"\n";
    }
    out << "\n";
    for (const catalogue_entry &each : catalogue.entries) {
        if (has_structure(all.at(each.name).top())) {
            out << "struct " << each.name << ";\n";
        }
    }
    out << "\n";
    std::set<std::string> written;
    for (const catalogue_entry &each : catalogue.entries) {
        write_in_order(out, all, all.at(each.name), &written);
    }
}
