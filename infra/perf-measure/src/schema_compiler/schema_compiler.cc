// Compiles a record catalogue into C++: the structs with their size and offset assertions, the
// descriptors with their layout tables, the accessors and the registration routines.
//
//   schema_compiler CATALOGUE OUTPUT-DIRECTORY PREFIX INCLUDE-DIRECTORY
//
// writes PREFIX_records.h, PREFIX_descriptors.h and PREFIX_descriptors.cc. It runs at build time
// only. The form of a catalogue is explained at the head of catalogue.txt.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/local/codec/parcel_notation.h"

namespace {

using parcel_notation::form;
using parcel_notation::kind;

[[noreturn]] void fail(const std::string &what) { throw std::runtime_error(what); }

// One line of the catalogue.
struct entry {
    std::string name;       // of the C structure and its accessor
    std::string wire_name;  // of the record type, in its descriptor and its parcels
    std::string number;
    std::string body;  // in the schema notation: "{Field}D...", "?(...)" or a scalar
    std::size_t size = 0;
    bool inner = false;
    std::string version_major, version_minor, library;
    std::vector<std::string> uses;  // names of the entries that the body refers to
};

struct run {
    std::string name;
    std::vector<std::string> types;
};

struct catalogue {
    std::vector<entry> entries;  // in catalogue order, inner ones included
    std::vector<run> runs;
    std::string include;

    [[nodiscard]] const entry &at(const std::string &name) const {
        const auto found = std::find_if(entries.begin(), entries.end(), [&](const entry &e) { return e.name == name; });
        if (found == entries.end()) {
            fail("unknown type " + name);
        }
        return *found;
    }
};

bool is_name_character(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

// Reading ---------------------------------------------------------------------------------------

class reader {
public:
    explicit reader(const std::string &path) : in_(path) {
        if (!in_) {
            fail("cannot read " + path);
        }
    }

    catalogue read() {
        std::string line;
        for (std::size_t number = 1; std::getline(in_, line); ++number) {
            try {
                read_line(line);
            } catch (const std::exception &problem) {
                fail("line " + std::to_string(number) + ": " + problem.what());
            }
        }
        for (entry &each : result_.entries) {
            each.body = in_notation(&each);
        }
        return std::move(result_);
    }

private:
    void read_line(const std::string &line) {
        std::istringstream words(line);
        std::string first;
        words >> first;
        if (first.empty() || first[0] == '#') {
            return;
        }
        if (first == "include") {
            words >> result_.include;
        } else if (first == "group") {
            std::string version;
            words >> version >> library_;
            const std::size_t point = version.find('.');
            major_ = version.substr(0, point);
            minor_ = version.substr(point + 1);
        } else if (first == "run") {
            result_.runs.emplace_back();
            words >> result_.runs.back().name;
        } else {
            read_type(line, first == "inner");
        }
    }

    void read_type(const std::string &line, bool inner) {
        const std::size_t dollar = line.find('$');
        const std::size_t colon = line.find(": ");
        if (dollar == std::string::npos || colon == std::string::npos) {
            fail("not a type");
        }
        std::istringstream head(line.substr(dollar + 1, colon - dollar - 1));
        entry type;
        std::string size;
        head >> type.number >> type.name >> size;
        type.wire_name = type.name;
        if (size == "=") {
            size.clear();
            head >> type.wire_name >> size;
        }
        type.inner = inner;
        type.body = line.substr(colon + 2);
        type.version_major = major_;
        type.version_minor = minor_;
        type.library = library_;
        if (!inner) {
            if (size.size() < 3) {
                fail("a record type needs its size");
            }
            type.size = std::stoul(size.substr(1));
            if (!result_.runs.empty()) {
                result_.runs.back().types.push_back(type.name);
            }
        }
        result_.entries.push_back(std::move(type));
    }

    // The body with type names replaced by numbers and "Name type; ..." by "{Name}type...".
    std::string in_notation(entry *type) {
        std::string text;
        if (type->body.starts_with("?(") || type->body.find(' ') == std::string::npos) {
            return with_numbers(type->body, type);
        }
        std::istringstream fields(type->body);
        std::string field;
        while (std::getline(fields, field, ';')) {
            std::istringstream words(field);
            std::string name;
            std::string notation;
            std::string extra;
            if (!(words >> name >> notation) || words >> extra) {
                fail(type->name + ": not a field: " + field);
            }
            text += "{" + name + "}" + with_numbers(notation, type);
        }
        return text;
    }

    // Replaces the names of record types by their numbers, outside {...}, [...] and <...>.
    std::string with_numbers(const std::string &text, entry *type) {
        static const std::map<char, char> brackets = {{'{', '}'}, {'[', ']'}, {'<', '>'}};
        std::string out;
        std::size_t at = 0;
        while (at < text.size()) {
            const std::size_t begin = at;
            if (const auto bracket = brackets.find(text[at]); bracket != brackets.end()) {
                at = text.find(bracket->second, at) + 1;
                out += text.substr(begin, at - begin);
            } else if (const entry *named = name_at(text, &at); named != nullptr) {
                type->uses.push_back(named->name);
                out += "$" + named->number;
            } else if (text[at] == '$') {
                do {
                    ++at;
                } while (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0);
                type->uses.push_back(inner_by_number(text.substr(begin + 1, at - begin - 1)).name);
                out += text.substr(begin, at - begin);
            } else {
                out += text[at++];
            }
        }
        return out;
    }

    // The type whose name stands at `*at`, which moves behind it; null when there is none.
    const entry *name_at(const std::string &text, std::size_t *at) {
        std::size_t end = *at;
        while (end < text.size() && is_name_character(text[end])) {
            ++end;
        }
        const std::string name = text.substr(*at, end - *at);
        for (const entry &each : result_.entries) {
            if (each.name == name) {
                *at = end;
                return &each;
            }
        }
        return nullptr;
    }

    const entry &inner_by_number(const std::string &number) {
        for (const entry &each : result_.entries) {
            if (each.inner && each.number == number) {
                return each;
            }
        }
        fail("no inner type $" + number);
    }

    std::ifstream in_;
    catalogue result_;
    std::string major_, minor_, library_;
};

// Closures --------------------------------------------------------------------------------------

// The type and everything it reaches: the type first, the rest by ascending number.
std::vector<const entry *> closure(const catalogue &catalogue, const entry &top) {
    std::set<std::string> seen{top.name};
    std::vector<const entry *> reached{&top};
    for (std::size_t i = 0; i < reached.size(); ++i) {
        for (const std::string &name : reached[i]->uses) {
            if (seen.insert(name).second) {
                reached.push_back(&catalogue.at(name));
            }
        }
    }
    std::sort(reached.begin() + 1, reached.end(),
              [](const entry *a, const entry *b) { return std::stoul(a->number) < std::stoul(b->number); });
    return reached;
}

std::string schema_text(const std::vector<const entry *> &types) {
    std::string text;
    for (const entry *type : types) {
        text += "$" + type->number + "=" + type->body + ";";
    }
    return text;
}

// Layout ----------------------------------------------------------------------------------------

struct extent {
    std::size_t size = 0;
    std::size_t alignment = 1;
};

struct layout {
    extent whole;
    std::vector<std::size_t> offsets;
};

std::size_t round_up(std::size_t value, std::size_t alignment) {
    return (value + alignment - 1) / alignment * alignment;
}

// Natural alignment for every type; a 16-byte address or SID is aligned to 8, a MAC address to 1.
class measurer {
public:
    explicit measurer(const parcel_notation::schema &schema) : schema_(schema) {}

    extent of_type(parcel_notation::type_index index) {
        const parcel_notation::type &type = parcel_notation::resolve(schema_, index);
        switch (type.what) {
        case kind::text:
        case kind::optional: return {8, 8};
        case kind::array: return {16, 8};
        case kind::fixed_array: {
            const extent element = of_type(type.element);
            return {element.size * type.count, element.alignment};
        }
        case kind::bytes: return {type.count, type.format == 's' ? 8U : 1U};
        case kind::reference: return of_definition(type.definition).whole;
        default: return {parcel_notation::scalar_size(type), parcel_notation::scalar_size(type)};
        }
    }

    layout of_definition(parcel_notation::definition_index index) {
        const parcel_notation::definition &definition = schema_.definitions[index];
        return definition.what == form::choice ? of_union(definition) : of_record(definition);
    }

private:
    layout of_record(const parcel_notation::definition &definition) {
        layout result;
        std::size_t at = 0;
        for (const parcel_notation::field &field : definition.fields) {
            const extent each = of_type(field.type);
            at = round_up(at, each.alignment);
            result.offsets.push_back(at);
            at += each.size;
            result.whole.alignment = std::max(result.whole.alignment, each.alignment);
        }
        result.whole.size = round_up(at, result.whole.alignment);
        return result;
    }

    // The discriminator, then the arms overlaid at the first multiple of the strictest alignment.
    layout of_union(const parcel_notation::definition &definition) {
        extent arms;
        for (const parcel_notation::field &arm : definition.fields) {
            if (!arm.empty) {
                const extent each = of_type(arm.type);
                arms.size = std::max(arms.size, each.size);
                arms.alignment = std::max(arms.alignment, each.alignment);
            }
        }
        layout result;
        const std::size_t at = round_up(4, arms.alignment);
        result.whole.alignment = std::max<std::size_t>(4, arms.alignment);
        result.whole.size = round_up(at + arms.size, result.whole.alignment);
        result.offsets.assign(definition.fields.size() + 1, at);
        result.offsets[0] = 0;
        return result;
    }

    const parcel_notation::schema &schema_;
};

// A type with its closure parsed. Stays where it is made: the schema holds views into the text.
struct compiled {
    const entry *source = nullptr;
    std::vector<const entry *> types;  // the same order as schema.definitions
    std::string text;
    parcel_notation::schema schema;
    layout top;
};

void compile(const catalogue &catalogue, const entry &type, compiled *result) {
    result->source = &type;
    result->types = closure(catalogue, type);
    result->text = schema_text(result->types);
    std::string problem;
    if (!parcel_notation::parse(result->text, &result->schema, &problem)) {
        fail(type.name + ": " + problem);
    }
    if (result->schema.definitions[0].what != form::scalar) {
        result->top = measurer(result->schema).of_definition(0);
    }
    if (!type.inner && result->top.whole.size != type.size) {
        fail(type.name + ": the catalogue says " + std::to_string(type.size) + " bytes, the fields take " +
             std::to_string(result->top.whole.size));
    }
}

// Writing ---------------------------------------------------------------------------------------

std::string compact_type(const compiled &of, parcel_notation::type_index index) {
    const parcel_notation::type &type = of.schema.types[index];
    switch (type.what) {
    case kind::reference: return "$" + std::to_string(type.number) + ".";
    case kind::optional: return "p(" + compact_type(of, type.element) + ")";
    case kind::array: return "a(" + compact_type(of, type.element) + ")";
    case kind::fixed_array: return std::to_string(type.count) + "A(" + compact_type(of, type.element) + ")";
    default: return parcel_notation::notation(of.schema, index);
    }
}

std::string compact_definition(const compiled &of, const parcel_notation::definition &definition,
                               const std::string &body) {
    if (definition.what == form::scalar) {
        return body;
    }
    std::string text;
    for (const parcel_notation::field &field : definition.fields) {
        const std::string notation = field.empty ? "v" : (field.marked ? "P" : "") + compact_type(of, field.type);
        text += definition.what == form::choice ? "," + std::to_string(field.value) + ":" + notation : notation;
    }
    if (definition.what == form::choice) {
        return "?(" + text + (body.ends_with(",?:v)") ? ",?:v)" : ")");
    }
    return text;
}

std::string compact_text(const compiled &of) {
    std::string text;
    for (std::size_t i = 0; i < of.types.size(); ++i) {
        text +=
            "$" + of.types[i]->number + "=" + compact_definition(of, of.schema.definitions[i], of.types[i]->body) + ";";
    }
    return text;
}

std::string cpp_type(const compiled &of, parcel_notation::type_index index) {
    const parcel_notation::type &type = of.schema.types[index];
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
    case kind::reference: return of.types[type.definition]->name;
    case kind::optional: return cpp_type(of, type.element) + " *";
    case kind::array: return "parcel_array<" + cpp_type(of, type.element) + ">";
    case kind::fixed_array: return "std::array<" + cpp_type(of, type.element) + ", " + std::to_string(type.count) + ">";
    }
    return {};
}

std::string declaration(const std::string &type, std::string_view name) {
    return type + (type.ends_with("*") ? "" : " ") + std::string(name) + ";";
}

void write_struct(std::ostream &out, const compiled &of) {
    const parcel_notation::definition &definition = of.schema.definitions[0];
    const std::string &name = of.source->name;
    if (definition.what == form::scalar) {
        out << "using " << name << " = " << cpp_type(of, definition.scalar) << ";\n\n";
        return;
    }
    const bool is_union = definition.what == form::choice;
    out << "struct " << name << " {\n";
    if (is_union) {
        out << "    " << declaration(std::string(definition.discriminator_type), definition.discriminator)
            << "\n    union {\n";
    }
    for (const parcel_notation::field &field : definition.fields) {
        if (!field.empty) {
            out << (is_union ? "        " : "    ") << declaration(cpp_type(of, field.type), field.name)
                << (is_union ? "  // " + std::to_string(field.value) : "") << "\n";
        }
    }
    out << (is_union ? "    };\n" : "") << "};\n"
        << "static_assert(sizeof(" << name << ") == " << of.top.whole.size << ");\n";
    for (std::size_t i = 0; i < definition.fields.size(); ++i) {
        if (!definition.fields[i].empty) {
            out << "static_assert(offsetof(" << name << ", " << definition.fields[i].name
                << ") == " << of.top.offsets[i + (is_union ? 1 : 0)] << ");\n";
        }
    }
    out << "\n";
}

// Structs that a struct holds by value must stand before it.
void write_in_order(std::ostream &out, const std::map<std::string, compiled> &all, const compiled &of,
                    std::set<std::string> *written) {
    if (!written->insert(of.source->name).second) {
        return;
    }
    for (const std::string &name : of.source->uses) {
        write_in_order(out, all, all.at(name), written);
    }
    write_struct(out, of);
}

constexpr char GENERATED[] = "// Generated from the record catalogue by schema_compiler. Do not edit.\n";

void write_records(const std::string &path, const catalogue &catalogue, const std::map<std::string, compiled> &all) {
    std::ofstream out(path);
    out << GENERATED << "#pragma once\n\n#include <array>\n#include <cstddef>\n#include <cstdint>\n\n"
        << "#include \"platform/parcel.h\"\n";
    if (!catalogue.include.empty()) {
        out << "#include \"" << catalogue.include << "\"\n";
    }
    out << "\n";
    for (const entry &each : catalogue.entries) {
        if (all.at(each.name).schema.definitions[0].what != form::scalar) {
            out << "struct " << each.name << ";\n";
        }
    }
    out << "\n";
    std::set<std::string> written;
    for (const entry &each : catalogue.entries) {
        write_in_order(out, all, all.at(each.name), &written);
    }
}

void write_descriptor_header(const std::string &path, const catalogue &catalogue, const std::string &prefix) {
    std::ofstream out(path);
    out << GENERATED << "#pragma once\n\n#include <span>\n#include <string_view>\n\n#include \"platform/parcel.h\"\n\n"
        << "// All record types, in catalogue order.\n"
        << "[[nodiscard]] std::span<const parcel_descriptor *const> " << prefix << "_descriptors();\n\n"
        << "// The type of that name; null when there is none.\n"
        << "[[nodiscard]] const parcel_descriptor *" << prefix << "_find_descriptor(std::string_view name);\n\n"
        << "// One accessor for each record type.\n";
    for (const entry &each : catalogue.entries) {
        if (!each.inner) {
            out << "[[nodiscard]] const parcel_descriptor *" << each.name << "_descriptor();\n";
        }
    }
    if (!catalogue.runs.empty()) {
        out << "\n// Registration routines: each registers its run of the catalogue, all or nothing.\n";
    }
    for (const run &each : catalogue.runs) {
        out << "[[nodiscard]] errcode " << each.name << "();  // " << each.types.front() << " to " << each.types.back()
            << "\n";
    }
}

void write_descriptor(std::ostream &out, const compiled &of, const std::map<std::string, compiled> &all) {
    const entry &source = *of.source;
    std::string rest;
    std::size_t following = 0;
    for (std::size_t i = 1; i < of.types.size(); ++i) {
        if (of.schema.definitions[i].what == form::scalar) {
            continue;
        }
        const std::string &name = of.types[i]->name;
        rest += "    {" + of.types[i]->number + ", " + std::to_string(all.at(name).top.whole.size) + ", " + name +
                "_offsets},\n";
        ++following;
    }
    out << "const parcel_layout " << source.name << "_layout[] = {\n    {" << following << ", " << of.top.whole.size
        << ", " << source.name << "_offsets},\n"
        << rest << "};\n"
        << "const parcel_descriptor " << source.name << "_description = {\n    1, \"" << source.wire_name << "\", "
        << source.version_major << ", " << source.version_minor << ", \"" << source.library << "\", " << source.name
        << "_layout,\n    \"" << of.text << "\",\n    \"" << compact_text(of) << "\"};\n\n";
}

void write_list(std::ostream &out, const std::vector<std::string> &names) {
    for (const std::string &name : names) {
        out << "    &" << name << "_description,\n";
    }
    out << "};\n\n";
}

void write_descriptor_source(const std::string &path, const catalogue &catalogue,
                             const std::map<std::string, compiled> &all, const std::string &prefix,
                             const std::string &include_directory) {
    std::ofstream out(path);
    out << GENERATED << "#include \"" << include_directory << "/" << prefix << "_descriptors.h\"\n\n";
    if (!catalogue.runs.empty()) {
        out << "#include \"schema/registration.h\"\n\n";
    }
    out << "namespace {\n\n";
    for (const entry &each : catalogue.entries) {
        const compiled &of = all.at(each.name);
        if (of.schema.definitions[0].what != form::scalar) {
            out << "const std::uint64_t " << each.name << "_offsets[] = {";
            for (std::size_t i = 0; i < of.top.offsets.size(); ++i) {
                out << (i == 0 ? "" : ", ") << of.top.offsets[i];
            }
            out << "};\n";
        }
    }
    out << "\n";
    std::vector<std::string> names;
    for (const entry &each : catalogue.entries) {
        if (!each.inner) {
            write_descriptor(out, all.at(each.name), all);
            names.push_back(each.name);
        }
    }
    out << "const parcel_descriptor *const all_descriptors[] = {\n";
    write_list(out, names);
    for (const run &each : catalogue.runs) {
        out << "const parcel_descriptor *const " << each.name << "_run[] = {\n";
        write_list(out, each.types);
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
    for (const run &each : catalogue.runs) {
        out << "errcode " << each.name << "() { return pm_register_parcels(" << each.name << "_run); }\n";
    }
}

void compile_catalogue(const std::string &input, const std::string &directory, const std::string &prefix,
                       const std::string &include_directory) {
    const catalogue catalogue = reader(input).read();
    std::map<std::string, compiled> all;
    for (const entry &each : catalogue.entries) {
        compile(catalogue, each, &all[each.name]);
    }
    const std::string base = directory + "/" + prefix;
    write_records(base + "_records.h", catalogue, all);
    write_descriptor_header(base + "_descriptors.h", catalogue, prefix);
    write_descriptor_source(base + "_descriptors.cc", catalogue, all, prefix, include_directory);
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 5) {
        std::cerr << "usage: schema_compiler CATALOGUE OUTPUT-DIRECTORY PREFIX INCLUDE-DIRECTORY\n";
        return EXIT_FAILURE;
    }
    try {
        compile_catalogue(argv[1], argv[2], argv[3], argv[4]);
    } catch (const std::exception &problem) {
        std::cerr << "schema_compiler: " << argv[1] << ": " << problem.what() << "\n";
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
