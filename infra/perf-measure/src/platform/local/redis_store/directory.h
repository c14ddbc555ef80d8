// SPDX-License-Identifier: Apache-2.0
// What a store keeps of the router as a whole: its marks, the inventory and the list of branches.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/local/redis_store/client.h"
#include "platform/local/redis_store/redis_key.h"
#include "platform/local/store/reader.h"

namespace redis_store {

struct known_branch {
    store::branch named;
    std::optional<std::uint64_t> items;  // none: to be counted
};

class directory {
public:
    directory(client *server, const key_names *names) : client_(*server), names_(*names) {}

    // Reads everything, in one round trip. OPSTORE_DAMAGED for a store of another format.
    [[nodiscard]] pm_error read();

    // What read() found.
    [[nodiscard]] bool is_store() const { return is_store_; }
    [[nodiscard]] const std::optional<std::string> &platform() const { return platform_; }  // sealed
    [[nodiscard]] const std::vector<std::string> &nodes() const { return nodes_; }          // sealed
    [[nodiscard]] std::uint64_t version() const { return version_; }          // changes with every change of the store
    [[nodiscard]] std::uint64_t noted_nodes() const { return noted_nodes_; }  // how many there are, by the marks
    [[nodiscard]] std::uint64_t noted_interfaces() const { return noted_interfaces_; }
    // By root in the order of ROOTS, and node.
    [[nodiscard]] const std::vector<known_branch> &branches() const { return branches_; }

    // That there is no store, for a person.
    [[nodiscard]] std::string missing() const;
    // Whether no writer has changed the store since read().
    [[nodiscard]] bool is_current();
    // Finds the branches by their keys, for a store whose directory cannot be read. In a cluster only those of the
    // server that was asked last.
    [[nodiscard]] pm_error find_branches();
    // Counts the items of branches that are unsettled.
    [[nodiscard]] pm_error settle();
    // The handles of all interfaces, ascending.
    [[nodiscard]] pm_error read_handles(std::vector<std::uint32_t> *handles);
    // Counts what is there, for reader::count.
    [[nodiscard]] pm_error count(store::census *out);

private:
    [[nodiscard]] pm_error damaged(const std::string &what) const { return {OPSTORE_DAMAGED, client_.describe(what)}; }
    [[nodiscard]] pm_error read_branches(const plain_answer &names);

    client &client_;
    const key_names &names_;
    bool is_store_ = false;
    std::optional<std::string> platform_;
    std::uint64_t version_ = 0;
    std::uint64_t noted_nodes_ = 0;
    std::uint64_t noted_interfaces_ = 0;
    std::vector<std::string> nodes_;
    std::vector<known_branch> branches_;
};

}  // namespace redis_store
