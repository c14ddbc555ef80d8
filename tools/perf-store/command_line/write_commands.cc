// load and rm: the commands that change the store, in one transaction each.
#include <cstdio>

#include "perf-store/command_line/commands.h"
#include "perf-store/datasets/dataset_loader.h"
#include "perf-store/datasets/output_file.h"
#include "platform/local/lmdb_store/store_writer.h"

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

// Opens a store that is there. Only load makes one.
pm_error begin_change(store::writer *store) {
    const char *folder = store::folder_of(store::configured_url());
    if (folder != nullptr && store::check_file(folder) == OPSTORE_NO_CLIENT) {
        return store_error(OPSTORE_NO_CLIENT);
    }
    return to_error(store->begin(store::configured_url()));
}

pm_error require_items(store::writer *store, const store::root_name &root, std::uint32_t node,
                       const std::vector<std::string> &paths, bool recursive) {
    for (const std::string &path : paths) {
        bool found = false;
        if (pm_error error = to_error(store->has_item(root.id, node, path, recursive, &found))) {
            return error;
        }
        if (!found) {
            return pm_error(describe_item({root, node, path}) + ": " + errcode_strerror(ERRCODE_NOT_FOUND));
        }
    }
    return {};
}

// What one path removes another may name too.
pm_error remove_items(store::writer *store, const store::root_name &root, std::uint32_t node,
                      const std::vector<std::string> &paths, bool recursive, std::uint64_t *removed) {
    for (const std::string &path : paths) {
        if (pm_error error = to_error(store->remove_item(root.id, node, path, removed))) {
            return error;
        }
        if (recursive) {
            if (pm_error error = to_error(store->remove_below(root.id, node, path, removed))) {
                return error;
            }
        }
    }
    return {};
}

}  // namespace

int run_load(const load_options &options) {
    store::writer store;
    pm_error error = to_error(store.begin(store::configured_url()));
    if (!error && options.replace) {
        error = to_error(store.clear());
    }
    if (error) {
        return report(error);
    }
    dataset_loader loader(&store);
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
    error = to_error(store.commit());
    return error ? report(error) : report_done("loaded " + std::to_string(loader.items()) + " items");
}

int run_rm(const store::root_name &root, std::uint32_t node, const std::vector<std::string> &paths, bool recursive) {
    store::writer store;
    std::uint64_t removed = 0;
    pm_error error = begin_change(&store);
    if (!error) {
        error = require_items(&store, root, node, paths, recursive);
    }
    if (!error) {
        error = remove_items(&store, root, node, paths, recursive, &removed);
    }
    if (!error) {
        error = to_error(store.commit());
    }
    return error ? report(error) : report_done("removed " + std::to_string(removed) + " items");
}

}  // namespace perf_store
