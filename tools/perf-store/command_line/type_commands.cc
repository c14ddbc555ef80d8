// SPDX-License-Identifier: Apache-2.0
// types, schema and gen: the commands that need no store.
#include <cstdio>

#include "perf-store/command_line/commands.h"
#include "perf-store/datasets/message_text.h"
#include "perf-store/datasets/nearest_type.h"
#include "perf-store/datasets/output_file.h"
#include "perf-store/datasets/record_shape.h"
#include "perf-store/generator/generate.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

namespace {

void print(const char *format, auto... values) {
    static_cast<void>(std::printf(format, values...));  // NOLINT: formats are literals of this file
}

unsigned long long size_of(const parcel_descriptor *type) { return type->layout[0].size; }

}  // namespace

int run_types() {
    for (const parcel_descriptor *type : pm_descriptors()) {
        print("%-62s %u.%u %6llu\n", type->name, type->version_major, type->version_minor, size_of(type));
    }
    return EXIT_DONE;
}

int run_schema(const std::string &name) {
    const parcel_descriptor *type = pm_find_descriptor(name);
    if (type == nullptr) {
        return report(pm_error("unknown record type " + on_one_line(excerpt(name)) + nearest_type(name)));
    }
    print("type    %s\nversion %u.%u\nlibrary %s\nsize    %llu\n\n", type->name, type->version_major,
          type->version_minor, type->library, size_of(type));
    print("%8s %8s  %-24s %s\n", "offset", "size", "type", "field");
    for (const field_shape &field : shape_of(type).record().fields) {
        print("%8u %8u  %-24s %s\n", field.offset, field.type->size, std::string(field.type->notation).c_str(),
              std::string(field.name).c_str());
    }
    print("\nschema  %s\ncompact %s\n", type->schema, type->compact_schema);
    return EXIT_DONE;
}

int run_gen(const gen_options &options) {
    if (!within_limits(options)) {
        static_cast<void>(report(pm_error("gen: a number is out of range")));
        return EXIT_USAGE;
    }
    output_file out;
    return report(generate(options, &out));
}

}  // namespace perf_store
