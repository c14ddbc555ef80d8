// SPDX-License-Identifier: Apache-2.0
// dump, ls, get and stat: the commands that read the store.
#include <cstdio>
#include <vector>

#include "perf-store/command_line/commands.h"
#include "perf-store/datasets/dataset_dumper.h"
#include "perf-store/datasets/message_text.h"
#include "perf-store/datasets/output_file.h"
#include "perf-store/datasets/store_check.h"
#include "platform/local/codec/parcel_codec.h"

namespace perf_store {

namespace {

// "main 0x100 pm_intf_parcel intf/detail/eth0/1/0/4": the path last, since it may hold blanks.
void append_line(const item_place &item, std::string_view parcel, std::string *out) {
    parcel_header header{};
    const errcode error = parcel_read_header(parcel.data(), parcel.size(), &header);
    char node[16];
    std::snprintf(node, sizeof node, " %#x ", item.node);
    *out += item.root.word;
    *out += node;
    *out += error == ERRCODE_SUCCESS ? header.type : "(damaged)";
    *out += ' ';
    *out += on_one_line(item.path);
    *out += '\n';
}

// Writes what is left and reports the first error.
int finish(const pm_error &error, output_file *out) {
    const pm_error flushed = out->flush();
    return report(error ? error : flushed);
}

// What stat counts of one root and node.
struct branch_usage {
    store::root_name root;
    std::uint32_t node;
    unsigned long long items;
    unsigned long long bytes;
};

void append_usage(const char *root, const char *node, unsigned long long items, unsigned long long bytes,
                  std::string *out) {
    char line[96];
    std::snprintf(line, sizeof line, "%-6s %10s %12llu %14llu\n", root, node, items, bytes);
    *out += line;
}

void append_table(const std::vector<branch_usage> &branches, std::string *out) {
    char line[96];
    std::snprintf(line, sizeof line, "%-6s %10s %12s %14s\n", "root", "node", "items", "bytes");
    *out += line;
    branch_usage all{};
    for (const branch_usage &branch : branches) {
        char node[16];
        std::snprintf(node, sizeof node, "%#x", branch.node);
        append_usage(branch.root.word, node, branch.items, branch.bytes, out);
        all.items += branch.items;
        all.bytes += branch.bytes;
    }
    append_usage("all", "", all.items, all.bytes, out);
}

void report_loss(const std::string &what) { static_cast<void>(report(pm_error(on_one_line(what)))); }

}  // namespace

int run_dump(const item_selection &selection) {
    output_file out;
    return report(dump_store(selection, &out));
}

int run_dump_damaged() {
    output_file out;
    check_result result;
    const pm_error error = dump_sound_records(report_loss, &out, &result);
    return error ? report(error) : result.losses == 0 ? EXIT_DONE : EXIT_REFUSED;
}

int run_verify() {
    check_result result;
    if (const pm_error error = verify_store(report_loss, &result)) {
        return report(error);
    }
    output_file out;
    out.buffer() = std::to_string(result.records) + " records, " + std::to_string(result.losses) + " errors\n";
    const pm_error written = out.flush();
    return written || result.losses != 0 ? report(written) | EXIT_REFUSED : EXIT_DONE;
}

int run_ls(const item_selection &selection) {
    output_file out;
    const pm_error error = each_item(selection, [&](const item_place &item, std::string_view parcel) {
        append_line(item, parcel, &out.buffer());
        return out.flush_when_full();
    });
    return finish(error, &out);
}

int run_get(const item_place &item) {
    output_file out;
    std::string parcel;
    pm_error error = read_item(item, &parcel);
    if (!error) {
        error = append_stored_item(item, parcel, json_fields::all, &out.buffer());
    }
    return finish(error, &out);
}

// Nothing is printed of a store that cannot be read to its end.
int run_stat() {
    std::vector<branch_usage> branches;  // in the order of the visit
    const pm_error error = each_item({}, [&](const item_place &item, std::string_view parcel) {
        if (branches.empty() || branches.back().root.id != item.root.id || branches.back().node != item.node) {
            branches.push_back({item.root, item.node, 0, 0});
        }
        ++branches.back().items;
        branches.back().bytes += parcel.size();
        return pm_error();
    });
    output_file out;
    if (!error) {
        append_table(branches, &out.buffer());
    }
    return finish(error, &out);
}

}  // namespace perf_store
