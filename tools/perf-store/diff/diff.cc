// SPDX-License-Identifier: Apache-2.0
// Merges the objects of two states.
#include "perf-store/diff/diff.h"

#include <algorithm>
#include <cstdio>
#include <unordered_map>

#include "perf-store/datasets/dataset_dumper.h"
#include "perf-store/datasets/decoded_record.h"
#include "perf-store/diff/line_differences.h"
#include "perf-store/diff/object_key.h"

namespace perf_store {

namespace {

// The ids of `of` that `in` has too, as a text.
std::string common_nodes(const std::vector<std::uint32_t> &of, const std::vector<std::uint32_t> &in) {
    std::vector<std::uint32_t> sorted = in;
    std::sort(sorted.begin(), sorted.end());
    std::string text;
    for (const std::uint32_t node : of) {
        if (std::binary_search(sorted.begin(), sorted.end(), node)) {
            char id[16];
            std::snprintf(id, sizeof id, "%s%#x", text.empty() ? "" : " ", node);
            text += id;
        }
    }
    return text;
}

class merge {
public:
    merge(diff_side *from, diff_side *to, comparison_options options, output_file *out)
        : from_(*from), to_(*to), options_(std::move(options)), out_(out), lines_(&options_.ignored, &out_) {}

    [[nodiscard]] pm_error run() {
        bool in_from = false;
        bool in_to = false;
        if (pm_error error = next(&from_, &in_from)) {
            return error;
        }
        if (pm_error error = next(&to_, &in_to)) {
            return error;
        }
        while (in_from || in_to) {
            const int order = !in_to ? -1 : !in_from ? 1 : from_.objects.key().compare(to_.objects.key());
            if (pm_error error = tell(order)) {
                return error;
            }
            if (pm_error error = order <= 0 ? next(&from_, &in_from) : pm_error()) {
                return error;
            }
            if (pm_error error = order >= 0 ? next(&to_, &in_to) : pm_error()) {
                return error;
            }
        }
        tell_order();  // unless an object came that is after the nodes
        return {};
    }
    [[nodiscard]] bool any() const { return out_.any(); }

private:
    static pm_error next(diff_side *side, bool *found) { return side->objects.next(found); }

    // The object in front: of one side, when its key comes before that of the other, or of both.
    [[nodiscard]] pm_error tell(int order) {
        const std::string_view key = order <= 0 ? from_.objects.key() : to_.objects.key();
        if (kind_of(key) > object_kind::node) {
            tell_order();
        }
        if (order == 0 && from_.objects.value() == to_.objects.value()) {
            return {};
        }
        out_.begin_object(describe_object(key));
        if (order != 0) {
            out_.object(order < 0 ? REMOVED : ADDED);
        } else if (kind_of(key) == object_kind::item) {
            if (pm_error error = tell_item(key)) {
                return error;
            }
        } else {
            lines_.compare(from_.objects.value(), to_.objects.value());
        }
        return out_.flush_when_full();
    }

    // The order of the nodes that both have, after the nodes.
    void tell_order() {
        if (order_told_) {
            return;
        }
        order_told_ = true;
        member_path path;
        path.enter(ORDER_MEMBER);
        const std::string from = common_nodes(from_.inventory, to_.inventory);
        const std::string to = common_nodes(to_.inventory, from_.inventory);
        if (from != to && !options_.ignored.cover(path)) {
            out_.begin_object("nodes");
            out_.changed(path, from, to);
        }
    }

    [[nodiscard]] pm_error tell_item(std::string_view key) {
        const std::string what = describe_object(key);
        const parcel_descriptor *from_type = nullptr;
        const parcel_descriptor *to_type = nullptr;
        if (pm_error error = find_stored_type(what, from_.objects.value(), &from_type)) {
            return error;
        }
        if (pm_error error = find_stored_type(what, to_.objects.value(), &to_type)) {
            return error;
        }
        if (from_type != to_type) {
            member_path path;
            path.enter(TYPE_MEMBER);
            if (!options_.ignored.cover(path)) {
                out_.changed(path, from_type->name, to_type->name);
            }
            return {};
        }
        const decoded_record from(from_.objects.value(), from_type);
        const decoded_record to(to_.objects.value(), to_type);
        for (const errcode code : {from.code(), to.code()}) {
            if (code != ERRCODE_SUCCESS) {
                return pm_error(code, what + ": " + errcode_strerror(code));
            }
        }
        set_interval(key);
        const pm_error error = compare_records(from.data(), to.data(), from_type, options_, &out_);
        return error ? pm_error(what + " " + error.text()) : error;
    }

    // The time between the newest time stamps of the item's node.
    void set_interval(std::string_view key) {
        if (!options_.counters || options_.interval_given) {
            return;
        }
        const std::uint32_t node = *node_of(key);
        const std::uint64_t from = from_.newest[node];
        const std::uint64_t to = to_.newest[node];
        options_.interval_msec = from != 0 && to > from ? to - from : 0;
    }

    diff_side &from_;
    diff_side &to_;
    comparison_options options_;
    differences out_;
    line_comparison lines_;
    bool order_told_ = false;
};

}  // namespace

pm_error write_differences(diff_side *from, diff_side *to, comparison_options options, output_file *out, bool *same) {
    merge both(from, to, std::move(options), out);
    if (pm_error error = both.run()) {
        return error;
    }
    *same = !both.any();
    return out->flush();
}

}  // namespace perf_store
