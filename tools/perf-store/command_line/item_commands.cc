// ls, get and rm.
#include <cstdio>

#include "perf-store/command_line/commands.h"
#include "perf-store/command_line/output_file.h"
#include "perf-store/datasets/store_reader.h"
#include "perf-store/datasets/value_text.h"
#include "platform/local/back_ends/writers.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/store/store_url.h"

namespace perf_store {

namespace {

bool is_selected(const dump_filter &filter, const store::branch &branch) {
    return (!filter.root || *filter.root == branch.data_root) && (!filter.node || *filter.node == branch.node);
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
    store::reader *from = nullptr;
    std::vector<store::branch> branches;
    if (const std::string problem = open_store(&from); !problem.empty()) {
        return report(problem);
    }
    if (const pm_error error = from->branches(&branches)) {
        return report(store::describe(error));
    }
    output_file out;
    std::string problem;
    for (const store::branch &each : branches) {
        if (problem.empty() && is_selected(filter, each)) {
            problem = for_each_item(from, each, filter.path_prefix, [&](const item_key &item, std::string_view parcel) {
                append_line(item, parcel, &out.buffer());
                return out.flush_when_full();
            });
        }
    }
    const std::string flushed = out.flush();
    problem = problem.empty() ? flushed : problem;
    return problem.empty() ? EXIT_DONE : report(problem);
}

int run_get(const store::root_name &root, std::uint32_t node, const std::string &path) {
    store::reader *from = nullptr;
    if (const std::string problem = open_store(&from); !problem.empty()) {
        return report(problem);
    }
    const item_key item{root, node, path};
    store::batch first;
    if (const pm_error error = from->list({root.id, node}, {path, "", 1, {}}, nullptr, &first)) {
        return report(store::describe(error));
    }
    if (first.items().empty() || first.items().front().path != path) {
        return report(describe_item(item) + ": " + errcode_strerror(ERRCODE_NOT_FOUND));
    }
    output_file out;
    std::string problem = append_item(item, first.items().front().parcel, json_fields::all, &out.buffer());
    problem = problem.empty() ? out.flush() : problem;
    return problem.empty() ? EXIT_DONE : report(problem);
}

int run_rm(const store::root_name &root, std::uint32_t node, const std::vector<std::string> &paths, bool recursive) {
    const store::branch branch{root.id, node};
    std::unique_ptr<store::writer> writer;
    pm_error error = store::open_writer(store::configured_url(), store::missing_store::refuse, &writer);
    for (const std::string &path : paths) {  // what one path removes another may name too
        bool found = false;
        if (!error) {
            error = writer->has_item(branch, path, recursive, &found);
        }
        if (!error && !found) {
            error = pm_error(ERRCODE_NOT_FOUND,
                             describe_item({root, node, path}) + ": " + errcode_strerror(ERRCODE_NOT_FOUND));
        }
    }
    std::uint64_t removed = 0;
    for (const std::string &path : paths) {
        if (!error) {
            error = writer->remove_item(branch, path, &removed);
        }
        if (!error && recursive) {
            error = writer->remove_below(branch, path, &removed);
        }
    }
    error = error ? error : writer->commit();
    if (error) {
        return report(store::describe(error));
    }
    return report_done("removed " + std::to_string(removed) + " items");
}

}  // namespace perf_store
