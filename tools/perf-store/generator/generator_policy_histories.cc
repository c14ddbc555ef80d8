// SPDX-License-Identifier: Apache-2.0
// The histories of an SR policy: of delays, or of liveness.
#include "paths/item_paths.h"
#include "perf-store/generator/generator_parts.h"
#include "perf-store/generator/generator_policies.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

using path_grammar::place;

namespace {

void fill_list(pm_history_type_e type, const policy_state &policy, const policy_list &list,
               pm_srpolicy_history_segment_list_parcel *record, item_memory *memory) {
    record->SegmentListName = list.name;
    record->Segments = list.segments;
    record->HistoryInfo = gen_history(type, list.combined, memory);
    record->AtomicPathsHistory =
        memory->array<pm_srpolicy_history_atomic_path_parcel>(static_cast<std::uint32_t>(list.sessions.size()));
    for (std::uint32_t i = 0; i < record->AtomicPathsHistory.count; ++i) {
        pm_srpolicy_history_atomic_path_parcel &path = record->AtomicPathsHistory.elements[i];
        path.HopAddress = memory->array_of({policy.endpoint});
        path.HistoryInfo = gen_history(type, list.sessions[i], memory);
    }
}

void fill_candidate(pm_history_type_e type, const policy_state &policy, const policy_candidate &candidate,
                    pm_srpolicy_history_candidate_path_parcel *record, item_memory *memory) {
    record->Preference = candidate.preference;
    record->Origin = candidate.origin;
    record->Discriminator = candidate.discriminator;
    record->HistoryInfo = gen_history(type, candidate.combined, memory);
    record->SegmentListsHistory =
        memory->array<pm_srpolicy_history_segment_list_parcel>(static_cast<std::uint32_t>(candidate.lists.size()));
    for (std::uint32_t i = 0; i < record->SegmentListsHistory.count; ++i) {
        fill_list(type, policy, candidate.lists[i], &record->SegmentListsHistory.elements[i], memory);
    }
}

void write_history(generation *set, const policy_state &policy, std::string_view path, pm_history_type_e type) {
    auto *record = set->memory.make<pm_srpolicy_history_parcel>();
    record->Color = policy.color;
    record->EndPointAddress = policy.endpoint;
    record->PolicyName = policy.name;
    record->CandidatePathsHistory = set->memory.array<pm_srpolicy_history_candidate_path_parcel>(
        static_cast<std::uint32_t>(policy.candidates.size()));
    for (std::uint32_t i = 0; i < record->CandidatePathsHistory.count; ++i) {
        fill_candidate(type, policy, policy.candidates[i], &record->CandidatePathsHistory.elements[i], &set->memory);
    }
    set->lines.item(set->route_processor().id, gen_text(path, policy.name), pm_srpolicy_history_parcel_descriptor(),
                    record);
}

}  // namespace

void gen_policy_histories(generation *set, const policy_state &policy) {
    if (policy.is_liveness) {
        write_history(set, policy, path_of(place::srpolicy_live_history), PM_HISTORY_LIVENESS);
        return;
    }
    write_history(set, policy, path_of(place::srpolicy_probe_history), PM_HISTORY_DM_PROBE);
    write_history(set, policy, path_of(place::srpolicy_aggr_history), PM_HISTORY_DM_AGGREGATION);
    write_history(set, policy, path_of(place::srpolicy_adv_history), PM_HISTORY_DM_ADVERTISEMENT);
}

}  // namespace perf_store
