// SPDX-License-Identifier: Apache-2.0
// What changed since the last snapshot: of thousands of sessions only those that did something are published again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "perf-probed/state/entity_records.h"
#include "perf-probed/state/node_records.h"
#include "perf-probed/state/snapshot.h"

namespace probed {

class change_tracker {
public:
    // Adds items of endpoints and interfaces that changed to `out`, in parts, so that nothing waits for long: returns
    // whether the end was reached; else the next call goes on. Items of those that are gone are removed.
    [[nodiscard]] bool collect(const prober &sender, const moment &now, snapshot *out);
    // Everything is to be published again: the store lost it, or nobody knows what it holds.
    void forget();

    static constexpr std::size_t PART = 128;  // endpoints and interfaces at once

private:
    struct tracked {
        entity of;
        std::vector<std::uint32_t> sessions;
        std::uint64_t revision = 0;
        std::uint64_t history_revision = 0;
    };
    using key = std::pair<bool, std::string>;  // is an interface, name

    void regroup(const prober &sender, snapshot *out);

    std::map<key, tracked> known_;
    std::map<key, tracked>::iterator next_ = known_.end();
    std::uint64_t table_revision_ = 0;  // of the sessions that are grouped
};

}  // namespace probed
