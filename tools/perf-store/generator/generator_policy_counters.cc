// SPDX-License-Identifier: Apache-2.0
// The counters record of an SR policy.
#include "paths/item_paths.h"
#include "perf-store/generator/generator_parts.h"
#include "perf-store/generator/generator_policies.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

using path_grammar::place;

namespace {

// Delay or liveness counters, the other part absent.
template <class Record>
void fill_counters(const session_state &session, Record *record, item_memory *memory) {
    if (session.is_liveness()) {
        record->LivenessCounters = memory->keep(gen_srpolicy_liveness_counters(session));
    } else {
        record->Counters = memory->keep(gen_delay_counters(session));
    }
}

void fill_list(const policy_state &policy, const policy_list &list, pm_srpolicy_segment_list_counters_parcel *record,
               item_memory *memory) {
    record->SegmentListName = list.name;
    record->Segments = list.segments;
    fill_counters(list.combined, record, memory);
    record->AtomicPathCounters =
        memory->array<pm_srpolicy_atomic_path_counters_parcel>(static_cast<std::uint32_t>(list.sessions.size()));
    for (std::uint32_t i = 0; i < record->AtomicPathCounters.count; ++i) {
        pm_srpolicy_atomic_path_counters_parcel &path = record->AtomicPathCounters.elements[i];
        path.HopAddress = memory->array_of({policy.endpoint});
        path.Labels = list.labels;
        fill_counters(list.sessions[i], &path, memory);
    }
}

void fill_candidate(const policy_state &policy, const policy_candidate &candidate,
                    pm_srpolicy_candidate_path_counters_parcel *record, item_memory *memory) {
    record->Instance = candidate.instance;
    record->Preference = candidate.preference;
    record->Origin = candidate.origin;
    record->Discriminator = candidate.discriminator;
    fill_counters(candidate.combined, record, memory);
    record->SegmentListCounters =
        memory->array<pm_srpolicy_segment_list_counters_parcel>(static_cast<std::uint32_t>(candidate.lists.size()));
    for (std::uint32_t i = 0; i < record->SegmentListCounters.count; ++i) {
        fill_list(policy, candidate.lists[i], &record->SegmentListCounters.elements[i], memory);
    }
}

}  // namespace

void gen_policy_counters(generation *set, const policy_state &policy) {
    auto *record = set->memory.make<pm_srpolicy_counters_parcel>();
    record->PolicyName = policy.name;
    record->CandidateCounters = set->memory.array<pm_srpolicy_candidate_path_counters_parcel>(
        static_cast<std::uint32_t>(policy.candidates.size()));
    for (std::uint32_t i = 0; i < record->CandidateCounters.count; ++i) {
        fill_candidate(policy, policy.candidates[i], &record->CandidateCounters.elements[i], &set->memory);
    }
    set->lines.item(set->route_processor().id, gen_text(path_of(place::srpolicy_counters), policy.name),
                    pm_srpolicy_counters_parcel_descriptor(), record);
}

}  // namespace perf_store
