// SPDX-License-Identifier: Apache-2.0
// An SR policy of a synthetic data set, shared by the files that write its records.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "perf-store/generator/generator.h"

namespace perf_store {

struct policy_list {
    const char *name = nullptr;
    std::uint32_t id = 0;
    parcel_array<pm_segment_parcel> segments{};
    parcel_array<std::uint32_t> labels{};  // none over SRv6
    std::span<session_state> sessions;     // one an atomic path
    session_state combined;
};

struct policy_candidate {
    std::uint32_t instance = 0;
    std::uint32_t preference = 0;
    std::uint32_t discriminator = 0;
    pm_tectl_srpolicy_origin_e origin = PM_SRPOLICY_ORIGIN_CONFIGURED;
    std::uint32_t local_label = 0;
    std::vector<policy_list> lists;
    session_state combined;
};

struct policy_state {
    std::uint32_t index = 0;
    const char *name = nullptr;
    bool is_liveness = false;
    bool is_srv6 = false;
    std::uint32_t color = 0;
    pm_record_address endpoint{};
    std::uint32_t outgoing_interface = 0;  // handle; 0 on a router without interfaces
    std::vector<policy_candidate> candidates;
    std::vector<session_state> sessions;
};

// generator_policy_detail.cc
[[nodiscard]] pm_srpolicy_atomic_path_parcel gen_atomic_path(const policy_state &policy, const policy_list &list,
                                                             const session_state &session, item_memory *memory);
void gen_policy_detail(generation *set, const policy_state &policy);

// generator_policy_counters.cc and generator_policy_histories.cc
void gen_policy_counters(generation *set, const policy_state &policy);
void gen_policy_histories(generation *set, const policy_state &policy);

}  // namespace perf_store
