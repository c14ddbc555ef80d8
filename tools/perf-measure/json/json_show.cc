// The objects and their way out.
#include "perf-measure/json/json_show.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

#include "perf-measure/items/item_reader.h"
#include "perf-measure/items/nodes.h"
#include "perf-measure/json/chkpt_message.h"
#include "perf-measure/json/json_text.h"
#include "perf-measure/json/record_cuts.h"
#include "perf-store/datasets/record_writer.h"
#include "platform/inventory.h"

namespace perf_measure {

namespace {

constexpr std::size_t FULL = 256 * 1024;  // bytes that are written at once
constexpr int PIPE_SIZE = 1024 * 1024;    // what a system allows to every user
constexpr errcode NOT_UTF8 = ERRCODE_INVALID_ARGUMENT;

// Standard output.
class writer {
public:
    explicit writer(bool pretty) : pretty_(pretty) {
        static_cast<void>(::fcntl(STDOUT_FILENO, F_SETPIPE_SZ, PIPE_SIZE));  // a pipe's reader works beside us
    }

    // The object that is being written.
    [[nodiscard]] std::string &buffer() { return buffer_; }

    // Ends the object that began at `begin`. False when standard output takes no more.
    [[nodiscard]] bool end_object(std::size_t begin) {
        if (pretty_) {
            const std::string text = indented_json(std::string_view(buffer_).substr(begin));
            buffer_.resize(begin);
            buffer_ += text;
        } else {
            buffer_ += '\n';
        }
        return buffer_.size() < FULL || flush();
    }

    bool flush() {
        std::string_view left = buffer_;
        while (!left.empty() && error_ == 0) {
            const ssize_t written = ::write(STDOUT_FILENO, left.data(), left.size());
            if (written < 0 && errno != EINTR) {
                error_ = errno;
            }
            left.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
        }
        buffer_.clear();
        return error_ == 0;
    }

    [[nodiscard]] int error() const { return error_; }

private:
    bool pretty_;
    int error_ = 0;
    std::string buffer_;
};

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

void append_item(const item &read, const std::string &node, std::string *out) {
    *out += node;
    *out += ",\"root\":\"";
    *out += read.root;
    *out += "\",\"path\":";
    append_json_any_text(read.path, out);
    *out += ",\"type\":\"";
    *out += read.type->name;
    *out += "\",\"record\":";
    perf_store::append_record(read.record, perf_store::shape_of(read.type).record(), perf_store::json_fields::set, out);
    append_chkpt_message(read, out);
    *out += '}';
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

std::vector<node_failure> write_json(bool pretty, std::string *problem) {
    writer out(pretty);
    node_members nodes;
    std::vector<node_failure> failures;
    std::vector<node_failure> unwritable;
    read_items(
        [&](const item &read) {
            if (is_left_out(read)) {
                return true;
            }
            const record_cuts cuts(read);
            const std::size_t begin = out.buffer().size();
            try {
                append_item(read, nodes.of(read.node), &out.buffer());
            } catch (const std::runtime_error &) {  // a text that is not UTF-8, which JSON cannot hold
                out.buffer().resize(begin);
                unwritable.push_back({read.node, NOT_UTF8});
                return true;
            }
            return out.end_object(begin);
        },
        &failures);
    failures = failures_that_count(failures);
    failures.insert(failures.end(), unwritable.begin(), unwritable.end());
    for (const node_failure &each : failures) {
        const std::size_t begin = out.buffer().size();
        append_failure(each, &nodes, &out.buffer());
        static_cast<void>(out.end_object(begin));
    }
    out.flush();
    *problem = out.error() != 0 && out.error() != EPIPE
                   ? std::string("cannot write to standard output: ") + std::strerror(out.error())
                   : "";
    return failures;
}

}  // namespace perf_measure
