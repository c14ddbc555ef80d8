// SPDX-License-Identifier: Apache-2.0
// Describes the types of a catalogue: each with the schema of all that it reaches, and its C structure.
#include "schema_compiler/compiled_catalogue.h"

#include <algorithm>
#include <set>

namespace {

// The type and everything it reaches: the type first, the rest by ascending number.
std::vector<const catalogue_entry *> closure(const record_catalogue &catalogue, const catalogue_entry &top) {
    std::set<std::string> seen{top.name};
    std::vector<const catalogue_entry *> reached{&top};
    for (std::size_t i = 0; i < reached.size(); ++i) {
        for (const std::string &name : reached[i]->uses) {
            if (seen.insert(name).second) {
                reached.push_back(catalogue.find(name));
            }
        }
    }
    std::sort(reached.begin() + 1, reached.end(),
              [](const catalogue_entry *a, const catalogue_entry *b) { return a->number < b->number; });
    return reached;
}

pm_error compile(const record_catalogue &catalogue, const catalogue_entry &entry, compiled_type *out) {
    const auto fail = [&](const std::string &what) {
        return pm_error("line " + std::to_string(entry.line) + ": " + entry.name + ": " + what);
    };
    out->source = &entry;
    out->types = closure(catalogue, entry);
    for (const catalogue_entry *type : out->types) {
        out->text += "$" + std::to_string(type->number) + "=" + type->body + ";";
    }
    if (pm_error error = parcel_notation::parse(out->text, &out->schema)) {
        return fail(error.text());
    }
    if (pm_error error = parcel_notation::lay_out(&out->schema)) {
        return fail(error.text());
    }
    if (!entry.inner && out->top().size != entry.size) {
        return fail("the catalogue says " + std::to_string(entry.size) + " bytes, the fields take " +
                    std::to_string(out->top().size));
    }
    return {};
}

}  // namespace

pm_error compile_catalogue(const record_catalogue &catalogue, compiled_types *out) {
    for (const catalogue_entry &each : catalogue.entries) {
        if (pm_error error = compile(catalogue, each, &(*out)[each.name])) {
            return error;
        }
    }
    return {};
}
