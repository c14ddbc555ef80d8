// See commands.h.
#include "perf-store/command_line/commands.h"

#include <cstdio>
#include <memory>

#include "perf-store/datasets/dataset_loader.h"
#include "perf-store/datasets/store_reader.h"
#include "perf-store/datasets/value_text.h"
#include "platform/local/back_ends/writers.h"
#include "platform/local/store/store_url.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

namespace {

void print(const char *format, auto... values) {
    static_cast<void>(std::printf(format, values...));  // NOLINT: formats are literals of this file
}

struct usage {
    unsigned long long items = 0;
    unsigned long long bytes = 0;
};

}  // namespace

int report(const std::string &problem) {
    static_cast<void>(std::fprintf(stderr, "perf-store: %s\n", problem.c_str()));
    return EXIT_REFUSED;
}

int report_done(const std::string &what) {
    output_file out;
    out.buffer() = what + "\n";
    if (const std::string problem = out.flush(); !problem.empty()) {
        report(what + ", but " + problem);
    }
    return EXIT_DONE;
}

int run_load(const std::vector<std::string> &files, bool replace) {
    std::unique_ptr<store::writer> writer;
    pm_error error = store::open_writer(store::configured_url(), store::missing_store::make, &writer);
    if (!error && replace) {
        error = writer->clear();
    }
    if (error) {
        return report(store::describe(error));
    }
    dataset_loader loader(writer.get());
    for (const std::string &file : files) {
        if (const std::string refused = loader.load(file); !refused.empty()) {
            static_cast<void>(std::fprintf(stderr, "%s\n", refused.c_str()));
            return EXIT_REFUSED;
        }
    }
    error = writer->commit();
    if (error) {
        return report(store::describe(error));
    }
    return report_done("loaded " + std::to_string(loader.items()) + " items");
}

int run_dump(const dump_filter &filter) {
    output_file out;
    const std::string problem = dump_store(filter, &out);
    return problem.empty() ? EXIT_DONE : report(problem);
}

int run_stat() {
    usage total;
    print("%-6s %10s %12s %14s\n", "root", "node", "items", "bytes");
    store::reader *from = nullptr;
    std::vector<store::branch> branches;
    if (const std::string problem = open_store(&from); !problem.empty()) {
        return report(problem);
    }
    if (const pm_error error = from->branches(&branches)) {
        return report(store::describe(error));
    }
    for (const store::branch &each : branches) {
        usage branch;
        const std::string problem = for_each_item(from, each, "", [&](const item_key &, std::string_view parcel) {
            ++branch.items;
            branch.bytes += parcel.size();
            return std::string();
        });
        if (!problem.empty()) {
            return report(problem);
        }
        print("%-6s %#10x %12llu %14llu\n", root_name_of(each.data_root).word, each.node, branch.items, branch.bytes);
        total.items += branch.items;
        total.bytes += branch.bytes;
    }
    print("%-6s %10s %12llu %14llu\n", "all", "", total.items, total.bytes);
    return EXIT_DONE;
}

int run_types() {
    for (const parcel_descriptor *type : pm_descriptors()) {
        print("%-62s %u.%u %6llu\n", type->name, type->version_major, type->version_minor,
              static_cast<unsigned long long>(type->layout[0].size));
    }
    return EXIT_DONE;
}

int run_schema(const std::string &name) {
    const parcel_descriptor *type = pm_find_descriptor(name);
    if (type == nullptr) {
        return report("unknown record type " + on_one_line(excerpt(name)));
    }
    print("type    %s\nversion %u.%u\nlibrary %s\nsize    %llu\n\n", type->name, type->version_major,
          type->version_minor, type->library, static_cast<unsigned long long>(type->layout[0].size));
    print("%8s %8s  %-24s %s\n", "offset", "size", "type", "field");
    for (const field_shape &field : shape_of(type).record().fields) {
        print("%8u %8u  %-24s %s\n", field.offset, field.type->size, std::string(field.type->notation).c_str(),
              std::string(field.name).c_str());
    }
    print("\nschema  %s\ncompact %s\n", type->schema, type->compact_schema);
    return EXIT_DONE;
}

}  // namespace perf_store
