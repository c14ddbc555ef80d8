// SPDX-License-Identifier: Apache-2.0
// Writes the descriptors of a catalogue's record types, their accessors and the registration routines.
#include "schema_compiler/writers.h"

namespace {

using parcel_notation::data_type;
using parcel_notation::field;
using parcel_notation::kind;

// The schema without names -----------------------------------------------------------------------

std::string compact_type(const data_type &type) {
    const std::string notation(type.notation);
    if (notation.front() == '$') {
        return notation + ".";
    }
    switch (type.what) {
    case kind::optional: return "p(" + compact_type(*type.element) + ")";
    case kind::array: return "a(" + compact_type(*type.element) + ")";
    case kind::fixed_array: return std::to_string(type.count) + "A(" + compact_type(*type.element) + ")";
    default: return notation;
    }
}

std::string compact_field(const field &each) {
    return each.type == nullptr ? "v" : (each.marked ? "P" : "") + compact_type(*each.type);
}

std::string compact_definition(const data_type &definition) {
    std::string text;
    switch (definition.what) {
    case kind::record:
        for (const field &each : definition.fields) {
            text += compact_field(each);
        }
        return text;
    case kind::tagged_union:
        for (const field &each : definition.fields) {
            text += "," + std::to_string(each.value) + ":" + compact_field(each);
        }
        return "?(" + text + (definition.catch_all ? ",?:v)" : ")");
    default: return std::string(definition.notation);
    }
}

std::string compact_text(const compiled_type &of) {
    std::string text;
    for (const data_type *each : of.schema.definitions) {
        text += "$" + std::to_string(each->number) + "=" + compact_definition(*each) + ";";
    }
    return text;
}

// Descriptors ------------------------------------------------------------------------------------

void write_offsets(std::ostream &out, const compiled_type &of) {
    const char *separator = "";
    out << "const std::uint64_t " << of.source->name << "_offsets[] = {";
    if (of.top().what == kind::tagged_union) {  // of the discriminator
        out << 0;
        separator = ", ";
    }
    for (const field &each : of.top().fields) {
        out << separator << each.offset;
        separator = ", ";
    }
    out << "};\n";
}

void write_layout(std::ostream &out, const compiled_type &of) {
    std::string rest;
    std::size_t following = 0;
    for (std::size_t i = 1; i < of.types.size(); ++i) {
        const data_type &each = *of.schema.definitions[i];
        if (has_structure(each)) {
            rest += "    {" + std::to_string(each.number) + ", " + std::to_string(each.size) + ", " +
                    of.types[i]->name + "_offsets},\n";
            ++following;
        }
    }
    out << "const parcel_layout " << of.source->name << "_layout[] = {\n    {" << following << ", " << of.top().size
        << ", " << of.source->name << "_offsets},\n"
        << rest << "};\n";
}

void write_descriptor(std::ostream &out, const compiled_type &of) {
    const catalogue_entry &source = *of.source;
    write_layout(out, of);
    out << "const parcel_descriptor " << source.name << "_description = {\n    1, \"" << source.wire_name << "\", "
        << source.version_major << ", " << source.version_minor << ", \"" << source.library << "\", " << source.name
        << "_layout,\n    \"" << of.text << "\",\n    \"" << compact_text(of) << "\"};\n\n";
}

void write_list(std::ostream &out, const std::string &name, const std::vector<std::string> &types) {
    out << "const parcel_descriptor *const " << name << "[] = {\n";
    for (const std::string &each : types) {
        out << "    &" << each << "_description,\n";
    }
    out << "};\n\n";
}

std::vector<std::string> record_types(const record_catalogue &catalogue) {
    std::vector<std::string> names;
    for (const catalogue_entry &each : catalogue.entries) {
        if (!each.inner) {
            names.push_back(each.name);
        }
    }
    return names;
}

}  // namespace

void write_descriptor_header(std::ostream &out, const record_catalogue &catalogue, const std::string &prefix) {
    out << GENERATED_NOTE
        << "#pragma once\n\n#include <span>\n#include <string_view>\n\n#include \"platform/parcel.h\"\n\n"
        << "// All record types, in catalogue order.\n"
        << "[[nodiscard]] std::span<const parcel_descriptor *const> " << prefix << "_descriptors();\n\n"
        << "// The type of that name; null when there is none.\n"
        << "[[nodiscard]] const parcel_descriptor *" << prefix << "_find_descriptor(std::string_view name);\n\n"
        << "// One accessor for each record type.\n";
    for (const std::string &name : record_types(catalogue)) {
        out << "[[nodiscard]] const parcel_descriptor *" << name << "_descriptor();\n";
    }
    if (!catalogue.runs.empty()) {
        out << "\n// Registration routines: each registers its run of the catalogue, all or nothing.\n";
    }
    for (const catalogue_run &each : catalogue.runs) {
        out << "[[nodiscard]] errcode " << each.name << "();  // " << each.types.front() << " to " << each.types.back()
            << "\n";
    }
}

void write_descriptors(std::ostream &out, const record_catalogue &catalogue, const compiled_types &all,
                       const std::string &prefix, const std::string &header) {
    out << GENERATED_NOTE << "#include \"" << header << "\"\n\n#include \"platform/local/codec/built_plans.h\"\n";
    if (!catalogue.runs.empty()) {
        out << "#include \"schema/registration.h\"\n\n";
    }
    out << "namespace {\n\n";
    for (const catalogue_entry &each : catalogue.entries) {
        if (has_structure(all.at(each.name).top())) {
            write_offsets(out, all.at(each.name));
        }
    }
    out << "\n";
    const std::vector<std::string> names = record_types(catalogue);
    for (const std::string &name : names) {
        write_descriptor(out, all.at(name));
    }
    write_list(out, "all_descriptors", names);
    for (const catalogue_run &each : catalogue.runs) {
        write_list(out, each.name + "_run", each.types);
    }
    out << "}  // namespace\n\n"
        << "std::span<const parcel_descriptor *const> " << prefix << "_descriptors() { return all_descriptors; }\n\n"
        << "const parcel_descriptor *" << prefix << "_find_descriptor(std::string_view name) {\n"
        << "    for (const parcel_descriptor *each : all_descriptors) {\n        if (name == each->name) {\n"
        << "            return each;\n        }\n    }\n    return nullptr;\n}\n\n";
    for (const std::string &name : names) {
        out << "const parcel_descriptor *" << name << "_descriptor() { return &" << name << "_description; }\n";
    }
    out << "\n";
    for (const catalogue_run &each : catalogue.runs) {
        out << "errcode " << each.name << "() { return pm_register_parcels(" << each.name << "_run); }\n";
    }
}
