// SPDX-License-Identifier: Apache-2.0
// Objects of data sets as JSON; records are written by record_writer.cc.
#include "perf-store/datasets/dataset_lines.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "perf-store/datasets/dataset_names.h"
#include "perf-store/datasets/value_text.h"

namespace perf_store {

namespace {

constexpr char NOT_UTF8[] = "a text is not UTF-8";

// One line under way. The first error is remembered; `end` takes the line back when there is one.
class object_line {
public:
    object_line(const char *name, std::string *out) : out_(*out), begin_(out->size()) {
        out_ += "{\"";
        out_ += name;
        out_ += "\":{";
    }

    [[nodiscard]] std::string &member(const char *name) {
        out_ += first_ ? "\"" : ",\"";
        out_ += name;
        out_ += "\":";
        first_ = false;
        return out_;
    }
    void number(const char *name, std::uint32_t value) { append_number(value, &member(name)); }
    void boolean(const char *name, bool value) { member(name) += value ? "true" : "false"; }
    void text(const char *name, std::string_view value, const char *wrong = NOT_UTF8) {
        if (!append_json_text(value, &member(name))) {
            fail(pm_error(wrong));
        }
    }
    void fail(pm_error error) { error_ = error_ ? error_ : std::move(error); }

    [[nodiscard]] pm_error end() {
        if (error_) {
            out_.resize(begin_);
        } else {
            out_ += "}}\n";
        }
        return error_;
    }

private:
    std::string &out_;
    std::size_t begin_;
    bool first_ = true;
    pm_error error_;
};

std::string_view text_or_empty(const char *text) { return text != nullptr ? text : ""; }

void append_partners(const parcel_array<local_partner> &partners, object_line *line) {
    const auto *unknown = std::find_if(partners.begin(), partners.end(), [](const local_partner &each) {
        return each.Group == nullptr || std::strcmp(each.Group, CENTRAL_SERVICES) != 0;
    });
    if (unknown != partners.end()) {
        line->fail(pm_error("unknown process group"));
        return;
    }
    std::string &out = line->member("process_group_partners");
    out += '{';
    for (const local_partner &each : partners) {
        out += &each == partners.begin() ? "\"" : ",\"";
        out += CENTRAL_SERVICES;
        out += "\":";
        append_number(each.Node, &out);
    }
    out += '}';
}

void append_location(const local_location &location, object_line *line) {
    std::string &out = line->member("location");
    for (std::size_t i = 0; i < location.Numbers.size(); ++i) {
        out += i == 0 ? '[' : ',';
        append_number(location.Numbers[i], &out);
    }
    out += ']';
}

}  // namespace

void append_version_line(std::string *out) {
    object_line line("dataset", out);
    line.number("version", DATASET_VERSION);
    static_cast<void>(line.end());  // a number cannot fail
}

pm_error append_platform_line(const local_platform &record, std::string *out) {
    object_line line("platform", out);
    if (record.MyNode != nullptr) {
        line.number("my_node", *record.MyNode);
    }
    line.number("router_type", record.RouterType);
    line.boolean("rp_plus_datapath", record.RpPlusDatapath != 0);
    if (record.ActiveRp != nullptr) {
        line.number("active_rp", *record.ActiveRp);
    }
    if (record.Partners.count != 0) {
        append_partners(record.Partners, &line);
    }
    return line.end();
}

pm_error append_node_line(const local_node &record, std::string *out) {
    object_line line("node", out);
    line.number("id", record.Id);
    line.text("name", text_or_empty(record.Name));
    line.number("sw_state", record.SwState);
    if (record.Location != nullptr) {
        append_location(*record.Location, &line);
    }
    line.number("processor", record.Processor);
    return line.end();
}

pm_error append_interface_line(std::uint32_t handle, const local_interface &record, std::string *out) {
    object_line line("interface", out);
    line.number("handle", handle);
    line.text("name", text_or_empty(record.Name));
    return line.end();
}

pm_error append_publisher_line(std::string_view root, std::uint32_t node, store::publisher_state state,
                               std::string *out) {
    const auto *const known = std::ranges::find(PUBLISHER_STATES, state, &state_name::state);
    if (known == std::end(PUBLISHER_STATES)) {
        return pm_error("unknown state");
    }
    object_line line("publisher", out);
    line.text("root", root);
    line.number("node", node);
    line.text("state", known->word);
    return line.end();
}

pm_error append_item_line(std::string_view root, std::uint32_t node, std::string_view path,
                          const parcel_descriptor *type, const void *record, json_fields fields, std::string *out) {
    object_line line("item", out);
    line.text("root", root);
    line.number("node", node);
    line.text("path", path, "its path is not UTF-8");
    line.text("type", type->name);
    line.fail(append_record(record, type, fields, &line.member("record")));
    return line.end();
}

}  // namespace perf_store
