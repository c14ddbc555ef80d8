// SPDX-License-Identifier: Apache-2.0
// Collected records into commands.
#include "platform/local/redis_store/router_changes.h"

#include <algorithm>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"
#include "platform/local/store/record_key.h"
#include "platform/local/store/seal.h"

namespace redis_store {

namespace {

constexpr std::size_t FIELDS_AT_ONCE = 100;
constexpr state_part STATE_PARTS[] = {state_part::marks, state_part::nodes, state_part::branches,
                                      state_part::interfaces, state_part::schemas};

}  // namespace

pm_error router_changes::read_inventory(const directory &known, const client &server) {
    for (const std::string &each : known.nodes()) {
        const auto position = static_cast<std::uint32_t>(node_ids_.size());
        const std::string_view parcel = store::unseal(store::key(store::key_space::node, position), each);
        local_node node{};
        const errcode code =
            parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), &node, local_node_descriptor());
        if (code != ERRCODE_SUCCESS) {
            return {code, server.describe(std::string("the inventory cannot be read: ") + errcode_strerror(code))};
        }
        node_ids_.push_back(node.Id);
        parcel_free_indirections(&node, local_node_descriptor());
    }
    return {};
}

void router_changes::clear() {
    cleared_ = true;
    platform_.reset();
    node_ids_.clear();
    nodes_.clear();
    interfaces_.clear();
    schemas_.clear();
    publishers_.clear();
}

void router_changes::put_publisher(const store::branch &served, std::string sealed, std::uint32_t lease_msec) {
    publishers_[served] = {std::move(sealed), lease_msec};
}

std::uint32_t router_changes::position_of(std::uint32_t node) {
    const auto place = std::find(node_ids_.begin(), node_ids_.end(), node) - node_ids_.begin();
    if (static_cast<std::size_t>(place) == node_ids_.size()) {
        node_ids_.push_back(node);
    }
    return static_cast<std::uint32_t>(place);
}

// Before all else: what was there goes.
void router_changes::add_cleared(commit_plan *plan, const directory &known) const {
    for (const known_branch &each : known.branches()) {
        plan->branches[each.named].changes.commands.add({"UNLINK", names_.of(each.named, branch_part::items),
                                                         names_.of(each.named, branch_part::publisher),
                                                         names_.of(each.named, branch_part::lease)});
    }
    for (const state_part part : STATE_PARTS) {
        plan->state.commands.add({"UNLINK", names_.of(part)});
    }
}

void router_changes::add_hash(state_part part, const std::map<std::string, std::string> &fields,
                              command_list *changes) const {
    std::vector<std::string> words;
    for (const auto &[field, value] : fields) {
        if (words.empty()) {
            words = {"HSET", names_.of(part)};
        }
        words.insert(words.end(), {field, value});
        if (words.size() >= 2 * FIELDS_AT_ONCE) {
            changes->add(std::move(words));
            words.clear();
        }
    }
    if (!words.empty()) {
        changes->add(std::move(words));
    }
}

void router_changes::add_nodes(command_list *changes, std::size_t length) const {
    for (const auto &[position, value] : nodes_) {
        if (position < length) {
            changes->add({"LSET", names_.of(state_part::nodes), std::to_string(position), value});
        } else {
            changes->add({"RPUSH", names_.of(state_part::nodes), value});
            ++length;
        }
    }
}

void router_changes::add_publishers(commit_plan *plan, const std::string &token) const {
    for (const auto &[served, record] : publishers_) {
        branch_commit &into = plan->branches[served];
        into.is_listed = true;
        const std::string lease = names_.of(served, branch_part::lease);
        into.changes.commands.add({"SET", names_.of(served, branch_part::publisher), record.value});
        if (record.lease_msec > 0) {
            into.changes.commands.add({"SET", lease, token, "PX", std::to_string(record.lease_msec)});
        } else {
            into.changes.commands.add({"DEL", lease});
        }
    }
}

void router_changes::add_to(commit_plan *plan, const directory &known, const std::string &token) const {
    if (cleared_) {
        add_cleared(plan, known);
    } else {
        plan->state.typed = {{"HLEN", names_.of(state_part::marks)},
                             {"LLEN", names_.of(state_part::nodes)},
                             {"HLEN", names_.of(state_part::branches)},
                             {"HLEN", names_.of(state_part::interfaces)},
                             {"HLEN", names_.of(state_part::schemas)}};
    }
    command_list &changes = plan->state.commands;
    std::map<std::string, std::string> marks = {{"F", STORE_FORMAT}, {"V", std::to_string(known.version() + 1)}};
    if (platform_) {
        marks["P"] = *platform_;
    }
    add_hash(state_part::marks, marks, &changes);
    add_hash(state_part::schemas, schemas_, &plan->schemas);
    changes.append(plan->schemas);
    add_hash(state_part::interfaces, interfaces_, &changes);
    add_nodes(&changes, cleared_ ? 0 : known.nodes().size());
    if (!nodes_.empty()) {
        changes.add_note("LLEN", names_.of(state_part::nodes), names_.of(state_part::marks), "N");
    }
    if (!interfaces_.empty()) {
        changes.add_note("HLEN", names_.of(state_part::interfaces), names_.of(state_part::marks), "H");
    }
    add_publishers(plan, token);
}

}  // namespace redis_store
