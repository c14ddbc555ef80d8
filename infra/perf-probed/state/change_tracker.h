// What changed since the last snapshot: of thousands of sessions only those that did something are published again.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "perf-probed/state/entity_records.h"
#include "perf-probed/state/node_records.h"
#include "perf-probed/state/snapshot.h"

namespace probed {

class change_tracker {
public:
    // Adds the items of endpoints and interfaces that changed, and removals of those that are gone, to `out`.
    void collect(const prober &sender, const moment &now, snapshot *out);
    // Everything is to be published again: the store lost it, or nobody knows what it holds.
    void forget() { known_.clear(); }

private:
    struct published {
        std::uint64_t revision = 0;
        std::uint64_t history_revision = 0;
        std::vector<std::uint32_t> sessions;
        bool seen = false;
    };
    using key = std::pair<bool, std::string>;  // is an interface, name

    std::map<key, published> known_;
};

}  // namespace probed
