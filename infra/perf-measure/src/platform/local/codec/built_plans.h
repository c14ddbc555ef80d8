// SPDX-License-Identifier: Apache-2.0
// The plans that are made while the program is built: a list for each catalogue, written by schema_compiler. Making one
// from its schema text takes longer than all else that a short show does.
#pragma once

#include <cstdint>
#include <span>

#include "platform/local/codec/parcel_plan.h"

namespace parcel_plan {

// The plans of one catalogue's record types. Lists are chained to each other.
struct built_plans {
    std::span<const record_plan> plans;
    const built_plans *next = nullptr;
};

// Makes a list known, which must stay as long as the process. For static initialisers, hence the result: true.
bool add_built_plans(built_plans *list);

// The plan for reading records of a schema into the descriptor's structure; null for records of the descriptor's own
// schema. Null when none was built.
[[nodiscard]] const record_plan *find_built_plan(const parcel_descriptor *descriptor, const std::uint64_t *fingerprint);

// Whether a plan is the one asked for as above.
[[nodiscard]] inline bool is_plan_for(const record_plan &plan, const parcel_descriptor *descriptor,
                                      const std::uint64_t *fingerprint) {
    return plan.descriptor == descriptor && (fingerprint != nullptr ? plan.fingerprint == *fingerprint : plan.native);
}

}  // namespace parcel_plan
