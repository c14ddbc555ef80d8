// SPDX-License-Identifier: Apache-2.0
// The objects and their way out.
#include "perf-measure/json/json_show.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

#include "perf-measure/items/item_reader.h"
#include "perf-measure/items/nodes.h"
#include "perf-measure/json/chkpt_message.h"
#include "perf-measure/json/json_text.h"
#include "perf-measure/json/record_cuts.h"
#include "perf-store/datasets/output_file.h"
#include "perf-store/datasets/record_json.h"
#include "platform/inventory.h"

namespace perf_measure {

namespace {

constexpr int PIPE_SIZE = 1024 * 1024;  // bytes; what a system allows to every user

// Ends the object that began at `begin` of the buffer.
[[nodiscard]] pm_error end_object(bool pretty, std::size_t begin, perf_store::output_file *out) {
    std::string &buffer = out->buffer();
    if (pretty) {
        const std::string text = indented_json(std::string_view(buffer).substr(begin));
        buffer.resize(begin);
        buffer += text;
    } else {
        buffer += '\n';
    }
    return out->flush_when_full();
}

// "node" and "node_name", the same for all items of a node.
class node_members {
public:
    [[nodiscard]] const std::string &of(std::uint32_t node) {
        if (node != node_ || text_.empty()) {
            node_ = node;
            text_ = "{\"node\":" + std::to_string(node) + ",\"node_name\":";
            append_json_any_text(name_of_node(node), &text_);
        }
        return text_;
    }

private:
    std::uint32_t node_ = NODEID_NONE;
    std::string text_;
};

// Appends the members of an item before its record.
void append_place(const item &read, const std::string &node, std::string *out) {
    *out += node;
    *out += ",\"root\":\"";
    *out += read.root;
    *out += "\",\"path\":";
    append_json_any_text(read.path, out);
    *out += ",\"type\":\"";
    *out += read.type->name;
    *out += '"';
}

// An item that JSON cannot hold has an error in place of its record, which is the result.
[[nodiscard]] pm_error append_item(const item &read, const std::string &node, std::string *out) {
    append_place(read, node, out);
    const std::size_t before = out->size();
    *out += ",\"record\":";
    pm_error error = perf_store::append_record(read.record, read.type, perf_store::json_fields::set, out);
    if (error) {
        out->resize(before);
        *out += ",\"error\":";
        append_json_any_text(error.text(), out);
    } else {
        append_chkpt_message(read, out);
    }
    *out += '}';
    return error;
}

void append_failure(const node_failure &failure, node_members *nodes, std::string *out) {
    char code[16];
    std::snprintf(code, sizeof code, "0x%x", failure.code);
    *out += failure.node == NODEID_NONE ? "{\"node\":null" : nodes->of(failure.node);
    *out += ",\"error\":";
    append_json_any_text(errcode_strerror(failure.code), out);
    *out += std::string(",\"code\":\"") + code + "\"}";
}

}  // namespace

pm_error write_json(bool pretty, std::vector<node_failure> *failures) {
    static_cast<void>(::fcntl(STDOUT_FILENO, F_SETPIPE_SZ, PIPE_SIZE));  // a pipe's reader works at the same time
    perf_store::output_file out;
    node_members nodes;
    std::vector<node_failure> unwritable;
    pm_error written;
    read_items(
        [&](const item &read) {
            if (is_left_out(read)) {
                return true;
            }
            const record_cuts cuts(read);
            const std::size_t begin = out.buffer().size();
            if (const pm_error error = append_item(read, nodes.of(read.node), &out.buffer())) {
                unwritable.push_back({read.node, error.code(), std::string(read.path) + ": " + error.text()});
            }
            written = end_object(pretty, begin, &out);
            return !written;
        },
        failures);
    *failures = failures_that_count(*failures);
    for (auto each = failures->begin(); each != failures->end() && !written; ++each) {
        const std::size_t begin = out.buffer().size();
        append_failure(*each, &nodes, &out.buffer());
        written = end_object(pretty, begin, &out);
    }
    failures->insert(failures->end(), unwritable.begin(), unwritable.end());
    return written ? written : out.flush();
}

}  // namespace perf_measure
