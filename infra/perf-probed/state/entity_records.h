// SPDX-License-Identifier: Apache-2.0
// The items of endpoints, interfaces and sessions.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "perf-probed/service/prober.h"
#include "perf-probed/state/snapshot.h"

namespace probed {

// The sessions of one endpoint or one interface. A session of a kind that is not measured is null.
struct entity {
    const session_entry *delay = nullptr;
    const session_entry *liveness = nullptr;
    const session_entry *probe = nullptr;
    const session_entry *loss = nullptr;

    [[nodiscard]] std::array<const session_entry *, 4> all() const { return {delay, liveness, probe, loss}; }

    [[nodiscard]] const session_entry &any() const {
        return delay != nullptr ? *delay : liveness != nullptr ? *liveness : probe != nullptr ? *probe : *loss;
    }
    [[nodiscard]] bool is_interface() const { return any().plan.of_interface(); }
    [[nodiscard]] const std::string &name() const { return any().plan.name(); }
    [[nodiscard]] std::uint64_t revision() const;
    // Grows when one of the histories does.
    [[nodiscard]] std::uint64_t history_revision() const;
};

// What the shows of details, counters and sessions need.
void add_state_items(const entity &of, const host_state &host, const moment &now, snapshot *out);
// What the shows of histories need.
void add_history_items(const entity &of, snapshot *out);
// Removes all items of an endpoint or interface, and those of its sessions.
void add_removals(bool is_interface, const std::string &name, const std::vector<std::uint32_t> &sessions,
                  snapshot *out);

}  // namespace probed
