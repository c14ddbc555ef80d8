// SPDX-License-Identifier: Apache-2.0
// Compares two objects that are no items, as lines of a data set: the platform, nodes, interfaces and publishers.
#pragma once

#include <string>
#include <string_view>

#include "perf-store/datasets/json_document.h"
#include "perf-store/diff/differences.h"
#include "perf-store/diff/ignored_members.h"

namespace perf_store {

class line_comparison {
public:
    line_comparison(const ignored_members *ignored, differences *out) : ignored_(*ignored), out_(*out) {}

    // Tells the differences of what begin_object named last. A member that only one of them has is null in the other.
    // Both are lines that dataset_lines.h writes.
    void compare(std::string_view from, std::string_view to);

private:
    template <class Step>
    void compare_at(Step step, const json_node *from, const json_node *to) {
        path_.enter(step);
        if (!ignored_.cover(path_)) {
            compare_nodes(from, to);
        }
        path_.leave();
    }
    // Null for a member that is not there.
    void compare_nodes(const json_node *from, const json_node *to);
    void compare_members(const json_node *from, const json_node *to);
    void compare_elements(const json_node *from, const json_node *to);

    const ignored_members &ignored_;
    differences &out_;
    member_path path_;
    std::string from_line_;
    std::string to_line_;
    json_document from_;
    json_document to_;
};

}  // namespace perf_store
