// SPDX-License-Identifier: Apache-2.0
// load and rm: the commands that change the store, in one transaction each.
#include <cstdio>
#include <memory>

#include "perf-store/command_line/commands.h"
#include "perf-store/datasets/dataset_loader.h"
#include "perf-store/datasets/output_file.h"
#include "platform/local/back_ends/writers.h"
#include "platform/local/store/store_url.h"

namespace perf_store {

namespace {

// Tells what was done: "loaded 2 items". What is done stays so when standard output cannot be written;
// then standard error tells it.
int report_done(const std::string &what) {
    output_file out;
    out.buffer() = what + "\n";
    if (const pm_error error = out.flush()) {
        static_cast<void>(report(pm_error(what + ", but " + error.text())));
    }
    return EXIT_DONE;
}

// Opens the configured store, or says that it cannot be opened.
pm_error open_writer(store::missing_store missing, std::unique_ptr<store::writer> *writer) {
    return store::open_writer(store::configured_url(), missing, writer);
}

pm_error require_items(store::writer *writer, const item_place &branch, const std::vector<std::string> &paths,
                       bool recursive) {
    for (const std::string &path : paths) {
        bool found = false;
        if (pm_error error = writer->has_item({branch.root.id, branch.node}, path, recursive, &found)) {
            return error;
        }
        if (!found) {
            return pm_error(ERRCODE_NOT_FOUND, describe_item({branch.root, branch.node, path}) + ": " +
                                                   errcode_strerror(ERRCODE_NOT_FOUND));
        }
    }
    return {};
}

// What one path removes another may name too.
pm_error remove_items(store::writer *writer, const store::branch &branch, const std::vector<std::string> &paths,
                      bool recursive, std::uint64_t *removed) {
    for (const std::string &path : paths) {
        if (pm_error error = writer->remove_item(branch, path, removed)) {
            return error;
        }
        if (recursive) {
            if (pm_error error = writer->remove_below(branch, path, removed)) {
                return error;
            }
        }
    }
    return {};
}

// Reports an error of the store.
int report_store(const pm_error &error) { return report(pm_error(error.code(), store::describe(error))); }

}  // namespace

int run_load(const load_options &options) {
    std::unique_ptr<store::writer> writer;
    using store::missing_store;
    pm_error error = open_writer(options.replace ? missing_store::replace : missing_store::make, &writer);
    if (!error && options.replace) {
        error = writer->clear();
    }
    if (error) {
        return report_store(error);
    }
    dataset_loader loader(writer.get());
    for (const std::string &file : options.files) {
        if (const pm_error refused = loader.load(file)) {  // the whole message
            static_cast<void>(std::fprintf(stderr, "%s\n", refused.text().c_str()));
            return EXIT_REFUSED;
        }
    }
    // Far more often the output of a command that failed than what is meant.
    if (options.replace && !options.empty && loader.items() == 0 && loader.nodes() == 0) {
        return report(pm_error("no item and no node to replace the store by; with --empty it is emptied"));
    }
    error = writer->commit();
    return error ? report_store(error) : report_done("loaded " + std::to_string(loader.items()) + " items");
}

int run_rm(const store::root_name &root, std::uint32_t node, const std::vector<std::string> &paths, bool recursive) {
    std::unique_ptr<store::writer> writer;
    std::uint64_t removed = 0;
    pm_error error = open_writer(store::missing_store::refuse, &writer);
    if (!error) {
        error = require_items(writer.get(), {root, node, {}}, paths, recursive);
    }
    if (!error) {
        error = remove_items(writer.get(), {root.id, node}, paths, recursive, &removed);
    }
    if (!error) {
        error = writer->commit();
    }
    return error ? report_store(error) : report_done("removed " + std::to_string(removed) + " items");
}

}  // namespace perf_store
