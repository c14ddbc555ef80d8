// ls, get and rm.
#include <cstdio>

#include "perf-store/command_line/commands.h"
#include "perf-store/command_line/output_file.h"
#include "perf-store/datasets/store_reader.h"
#include "perf-store/datasets/value_text.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/lmdb_store/store_writer.h"

namespace perf_store {

namespace {

bool is_selected(const dump_filter &filter, const item_key &item) {
    return (!filter.root || *filter.root == item.root.id) && (!filter.node || *filter.node == item.node) &&
           item.path.starts_with(filter.path_prefix);
}

// "main 0x100 pm_intf_parcel intf/detail/eth0/1/0/4": the path last, since it may hold blanks.
void append_line(const item_key &item, std::string_view parcel, std::string *out) {
    parcel_header header{};
    const errcode failure = parcel_read_header(parcel.data(), parcel.size(), &header);
    char node[16];
    std::snprintf(node, sizeof node, " %#x ", item.node);
    *out += item.root.word;
    *out += node;
    *out += failure == ERRCODE_SUCCESS ? header.type : "(damaged)";
    *out += ' ';
    *out += on_one_line(item.path);
    *out += '\n';
}

}  // namespace

int run_ls(const dump_filter &filter) {
    output_file out;
    std::string problem;
    for (const store::root_name &root : store::ROOTS) {
        const std::string prefix = store::key(store::key_space::item) + static_cast<char>(root.id);
        if (problem.empty()) {
            problem = for_each_key(prefix, [&](std::string_view key, std::string_view parcel) {
                const item_key item = parse_item_key(key);
                if (is_selected(filter, item)) {
                    append_line(item, parcel, &out.buffer());
                }
                return out.flush_when_full();
            });
        }
    }
    const std::string flushed = out.flush();
    problem = problem.empty() ? flushed : problem;
    return problem.empty() ? EXIT_DONE : report(problem);
}

int run_get(const store::root_name &root, std::uint32_t node, const std::string &path) {
    const std::string wanted = store::branch_key(store::key_space::item, root.id, node) + path;
    const item_key item{root, node, path};
    output_file out;
    bool found = false;
    std::string problem = for_each_key(wanted, [&](std::string_view key, std::string_view parcel) {
        found = key == wanted;
        const std::string wrong = found ? append_item(item, parcel, json_fields::all, &out.buffer()) : "";
        return wrong.empty() ? std::string(STOP) : wrong;
    });
    if (problem == STOP || problem.empty()) {
        problem = found ? out.flush() : describe_item(item) + ": " + errcode_strerror(ERRCODE_NOT_FOUND);
    }
    return problem.empty() ? EXIT_DONE : report(problem);
}

int run_rm(const store::root_name &root, std::uint32_t node, const std::vector<std::string> &paths, bool recursive) {
    const char *folder = store::folder_of(store::configured_url());
    if (folder != nullptr && store::check_file(folder) == OPSTORE_NO_CLIENT) {  // only load makes a store
        return report(describe_store(OPSTORE_NO_CLIENT));
    }
    store::writer store;
    store::problem problem = store.begin(store::configured_url());
    for (const std::string &path : paths) {  // what one path removes another may name too
        bool found = false;
        if (problem.empty()) {
            problem = store.has_item(root.id, node, path, recursive, &found);
        }
        if (problem.empty() && !found) {
            problem = describe_item({root, node, path}) + ": " + errcode_strerror(ERRCODE_NOT_FOUND);
        }
    }
    std::uint64_t removed = 0;
    for (const std::string &path : paths) {
        if (problem.empty()) {
            problem = store.remove_item(root.id, node, path, &removed);
        }
        if (problem.empty() && recursive) {
            problem = store.remove_below(root.id, node, path, &removed);
        }
    }
    problem = problem.empty() ? store.commit() : problem;
    if (!problem.empty()) {
        return report(problem);
    }
    return report_done("removed " + std::to_string(removed) + " items");
}

}  // namespace perf_store
