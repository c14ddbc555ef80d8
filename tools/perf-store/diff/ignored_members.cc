// SPDX-License-Identifier: Apache-2.0
// Reads and matches the members that are passed over.
#include "perf-store/diff/ignored_members.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <string_view>

#include "perf-store/datasets/message_text.h"
#include "perf-store/datasets/nearest_word.h"
#include "perf-store/datasets/record_shape.h"
#include "perf-store/datasets/value_text.h"
#include "perf-store/diff/differences.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

namespace {

// Of the objects beside the items, and what differences say of items and of the inventory.
constexpr const char *OTHER_MEMBERS[] = {
    "my_node",
    "router_type",
    "rp_plus_datapath",
    "active_rp",
    "process_group_partners",
    "central-services",
    "name",
    "sw_state",
    "location",
    "processor",
    "state",
    TYPE_MEMBER,
    ORDER_MEMBER,
};

const std::set<std::string_view> &member_names() {
    static const std::set<std::string_view> names = [] {
        std::set<std::string_view> result(std::begin(OTHER_MEMBERS), std::end(OTHER_MEMBERS));
        for (const parcel_descriptor *type : pm_descriptors()) {
            const record_shape &record = shape_of(type).record();
            result.insert(record.discriminator);
            for (const field_shape &each : record.fields) {
                result.insert(each.name);
            }
        }
        return result;
    }();
    return names;
}

}  // namespace

pm_error ignored_members::add(const std::string &member) {
    wanted_path path;
    std::istringstream steps(member);
    for (std::string text; std::getline(steps, text, '.');) {
        wanted_step step{text};
        if (const std::size_t bracket = text.find('['); bracket != std::string::npos && text.back() == ']') {
            std::uint64_t index = 0;
            bool negative = false;
            const std::string digits = text.substr(bracket + 1, text.size() - bracket - 2);
            if (parse_integer(digits, &index, &negative) != number_result::ok || negative || index > UINT32_MAX) {
                return pm_error(on_one_line(excerpt(member)) + ": " + on_one_line(excerpt(digits)) + " is no index");
            }
            step = {text.substr(0, bracket), false, static_cast<std::uint32_t>(index)};
        }
        if (!member_names().contains(step.name)) {
            return pm_error("nothing has a member " + on_one_line(excerpt(step.name)) +
                            did_you_mean(step.name, member_names(), [](std::string_view name) { return name; }));
        }
        path.push_back(step);
    }
    if (path.empty()) {
        return pm_error("an empty member");
    }
    paths_.push_back(path);
    return {};
}

bool ignored_members::cover(const member_path &path) const {
    return std::ranges::any_of(paths_, [&](const wanted_path &wanted) { return ends_with(path.steps(), wanted); });
}

// Both are read from their ends. An index is a step of its own in a path, after the member that it belongs to.
bool ignored_members::ends_with(const std::vector<member_path::step> &path, const wanted_path &wanted) {
    auto at = path.rbegin();
    for (auto each = wanted.rbegin(); each != wanted.rend(); ++each) {
        if (at == path.rend()) {
            return false;
        }
        // The last step may be the array itself, all of whose elements are meant.
        if (at->is_element) {
            if (!each->any_index && at->index != each->index) {
                return false;
            }
            ++at;
        } else if (!each->any_index) {
            return false;
        }
        if (at == path.rend() || at->is_element || at->name != each->name) {
            return false;
        }
        ++at;
    }
    return true;
}

}  // namespace perf_store
