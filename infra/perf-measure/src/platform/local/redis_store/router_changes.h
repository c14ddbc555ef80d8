// SPDX-License-Identifier: Apache-2.0
// The records beside the items, as a writer collects them: sealed, until its commit puts them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/local/redis_store/commit_plan.h"
#include "platform/local/redis_store/directory.h"
#include "platform/local/redis_store/redis_key.h"

namespace redis_store {

class router_changes {
public:
    explicit router_changes(const key_names *names) : names_(*names) {}

    // Begins with the nodes of the store as it is; `server` is for the text of the error.
    [[nodiscard]] pm_error read_inventory(const directory &known, const client &server);
    // Begins with an empty store.
    void clear();

    // Places for sealed values.
    [[nodiscard]] std::string *platform() { return &platform_.emplace(); }
    [[nodiscard]] std::string *node(std::uint32_t position) { return &nodes_[position]; }
    [[nodiscard]] std::string *interface(std::uint32_t handle) { return &interfaces_[hexadecimal(handle, 8)]; }
    void put_schema(std::uint64_t fingerprint, const char *text) { schemas_[hexadecimal(fingerprint, 16)] = text; }
    void put_publisher(const store::branch &served, std::string sealed, std::uint32_t lease_msec);
    // Where a node stands in the inventory: a new one after the others.
    [[nodiscard]] std::uint32_t position_of(std::uint32_t node);

    // Adds what changes in the store that `known` describes. `token` is kept in leases.
    void add_to(commit_plan *plan, const directory &known, const std::string &token) const;

private:
    struct sealed_publisher {
        std::string value;
        std::uint32_t lease_msec;  // 0: none
    };

    void add_cleared(commit_plan *plan, const directory &known) const;
    void add_nodes(command_list *changes, std::size_t length) const;
    void add_publishers(commit_plan *plan, const std::string &token) const;
    void add_hash(state_part part, const std::map<std::string, std::string> &fields, command_list *changes) const;

    const key_names &names_;
    bool cleared_ = false;
    std::optional<std::string> platform_;
    std::vector<std::uint32_t> node_ids_;         // by position
    std::map<std::uint32_t, std::string> nodes_;  // to put, by position
    std::map<std::string, std::string> interfaces_;
    std::map<std::string, std::string> schemas_;
    std::map<store::branch, sealed_publisher> publishers_;
};

}  // namespace redis_store
