// SPDX-License-Identifier: Apache-2.0
// The detail record of an SR policy.
#include "paths/item_paths.h"
#include "perf-store/generator/generator_parts.h"
#include "perf-store/generator/generator_policies.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

using path_grammar::place;

namespace {

std::uint64_t probe_start(const session_state &session) { return gen_current_probe(session).ProbeStartTimeStamp; }

void fill_list(const policy_state &policy, const policy_list &list, pm_srpolicy_segment_list_parcel *record,
               item_memory *memory) {
    const session_state &state = list.combined;
    record->SegmentListName = list.name;
    record->SegmentListID = list.id;
    record->Segments = list.segments;
    record->LastAdvertisementInformation = gen_last_advertisement(state);
    record->NextAdvertisementInformation = gen_next_advertisement(state);
    record->CurrentProbeResults = gen_current_results(state);
    record->LastProbeResults = gen_last_results(state);
    record->LivenessDetectionEnabled = policy.is_liveness ? 1 : 0;
    record->LivenessDetectionInfo = gen_liveness(state);
    record->ProbeStartTimeStamp = probe_start(state);
    record->AtomicPaths =
        memory->array<pm_srpolicy_atomic_path_parcel>(static_cast<std::uint32_t>(list.sessions.size()));
    record->AtomicPathTotalCount = record->AtomicPaths.count;
    for (std::uint32_t i = 0; i < record->AtomicPaths.count; ++i) {
        record->AtomicPaths.elements[i] = gen_atomic_path(policy, list, list.sessions[i], memory);
    }
}

void fill_candidate(const policy_state &policy, const policy_candidate &candidate,
                    pm_srpolicy_candidate_path_parcel *record, item_memory *memory) {
    const session_state &state = candidate.combined;
    record->Instance = candidate.instance;
    record->Preference = candidate.preference;
    record->Origin = candidate.origin;
    record->Discriminator = candidate.discriminator;
    record->SourceAddressV4 = policy.is_srv6 ? 0 : gen_ipv4(GEN_ROUTER_IPV4);
    record->SourceAddressV6 = policy.is_srv6 ? gen_ipv6(GEN_ROUTER_NETWORK, 1) : pm_ipv6{};
    record->LocalLabel = candidate.local_label;
    record->NotificationToFIBEnabled = policy.is_liveness ? 1 : 0;
    record->LastNotificationToFIBTimestamp = state.changed_msec;
    record->ProfileName = gen_profile_name(state);
    record->ProfileKey = gen_profile_key(state);
    record->PeriodicAdvertisementIntervalInSec = gen_advertisement_interval(state);
    record->LastAdvertisementInformation = gen_last_advertisement(state);
    record->NextAdvertisementInformation = gen_next_advertisement(state);
    record->LastProbeResults = gen_last_results(state);
    record->CurrentProbe = gen_current_probe(state);
    record->LivenessDetectionEnabled = policy.is_liveness ? 1 : 0;
    record->LivenessDetectionInfo = gen_liveness(state);
    record->SegmentLists =
        memory->array<pm_srpolicy_segment_list_parcel>(static_cast<std::uint32_t>(candidate.lists.size()));
    record->SegmentListTotalCount = record->SegmentLists.count;
    for (std::uint32_t i = 0; i < record->SegmentLists.count; ++i) {
        fill_list(policy, candidate.lists[i], &record->SegmentLists.elements[i], memory);
    }
}

}  // namespace

pm_srpolicy_atomic_path_parcel gen_atomic_path(const policy_state &policy, const policy_list &list,
                                               const session_state &session, item_memory *memory) {
    pm_srpolicy_atomic_path_parcel path{};
    path.HopAddress = memory->array_of({policy.endpoint});
    path.Labels = list.labels;
    path.OutgoingInterface = policy.outgoing_interface;
    path.SessionId = session.id;
    path.TraceId = gen_trace_id(session);
    path.LastAdvertisementInformation = gen_last_advertisement(session);
    path.NextAdvertisementInformation = gen_next_advertisement(session);
    path.CurrentProbeHistory = gen_samples(session, memory);
    path.CurrentProbeResults = gen_current_results(session);
    path.LastProbeResults = gen_last_results(session);
    path.LivenessDetectionEnabled = policy.is_liveness ? 1 : 0;
    path.LivenessDetectionInfo = gen_liveness(session);
    path.ProbeStartTimeStamp = probe_start(session);
    return path;
}

void gen_policy_detail(generation *set, const policy_state &policy) {
    auto *record = set->memory.make<pm_srpolicy_parcel>();
    record->Color = policy.color;
    record->EndPointAddress = policy.endpoint;
    record->PolicyName = policy.name;
    record->InterfaceName = gen_policy_handle(policy.index);
    record->SRv6EncapsulationSourceAddress =
        policy.is_srv6 ? gen_address(gen_ipv6(GEN_ROUTER_NETWORK, 1)) : gen_no_address();
    record->CandidatePaths =
        set->memory.array<pm_srpolicy_candidate_path_parcel>(static_cast<std::uint32_t>(policy.candidates.size()));
    record->CandidatePathTotalCount = record->CandidatePaths.count;
    for (std::uint32_t i = 0; i < record->CandidatePaths.count; ++i) {
        fill_candidate(policy, policy.candidates[i], &record->CandidatePaths.elements[i], &set->memory);
    }
    set->lines.item(set->route_processor().id, gen_text(path_of(place::srpolicy_detail), policy.name),
                    pm_srpolicy_parcel_descriptor(), record);
}

}  // namespace perf_store
