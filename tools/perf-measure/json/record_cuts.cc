// SPDX-License-Identifier: Apache-2.0
// The cuts of each record type.
#include "perf-measure/json/record_cuts.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "chkpt/chkpt.h"
#include "perf-measure/json/chkpt_memory.h"
#include "pm_show_client/blocks/segment_list_filter.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace perf_measure {

namespace {

template <class Row>
void limit_rows(const parcel_array<Row> &rows, record_cuts *cuts) {
    const std::uint32_t limit = pm_show_options.history_limit;  // 0: none
    if (limit != 0 && rows.count > limit) {
        cuts->change(rows.count) = limit;
    }
}

void cut(const pm_history_info &history, record_cuts *cuts) {
    switch (history.HistoryType) {
    case PM_HISTORY_DM_PROBE: limit_rows(history.ProbeHistory.ProbeHistoryList, cuts); break;
    case PM_HISTORY_DM_AGGREGATION: limit_rows(history.AggregatedHistory.AggregatedHistoryList, cuts); break;
    case PM_HISTORY_DM_ADVERTISEMENT: limit_rows(history.AdvertisementHistory.AdvertisementHistoryList, cuts); break;
    case PM_HISTORY_LIVENESS: limit_rows(history.LivenessHistory.LivenessHisotryList, cuts); break;
    case PM_HISTORY_LM_PROBE: limit_rows(history.LMProbeHistory.LMProbeHisotryList, cuts); break;
    case PM_HISTORY_LM_PACKET: limit_rows(history.LMPacketHistory.LMPacketHisotryList, cuts); break;
    case PM_HISTORY_LM_AGGREGATION: limit_rows(history.LMAggregatedHistory.LMAggregatedHisotryList, cuts); break;
    case PM_HISTORY_LM_ADVERTISEMENT:
        limit_rows(history.LMAdvertisementHistory.LMAdvertisementHistoryList, cuts);
        break;
    default: break;
    }
}

// Keeps the lists whose name the filter wants. The others go after them, so that all can be freed.
template <class List>
void keep_wanted(const parcel_array<List> &lists, record_cuts *cuts, bool nameless = false) {
    const auto is_wanted = [nameless](const List &list) {
        const bool has_name = list.SegmentListName != nullptr && *list.SegmentListName != '\0';
        return (nameless && !has_name) || pm_segment_list_is_wanted(list.SegmentListName);
    };
    if (!std::all_of(lists.begin(), lists.end(), is_wanted)) {
        const List *const end = std::stable_partition(lists.elements, lists.elements + lists.count, is_wanted);
        cuts->change(lists.count) = static_cast<std::uint32_t>(end - lists.elements);
    }
}

// Without a kind, or without this one, a section is empty.
template <class Endpoint>
void keep_section(pm_measurement_type_e kind, const parcel_array<Endpoint> &section, record_cuts *cuts) {
    const std::uint32_t wanted = pm_show_options.h_value;
    if (wanted != PM_SHOW_EVERY_KIND && wanted != static_cast<std::uint32_t>(kind)) {
        cuts->change(section.count) = 0;
    }
}

void cut(const pm_intf_history_parcel &interface, record_cuts *cuts) {
    cut(interface.HistoryInfo, cuts);
    for (const pm_intf_history_parcel &member : interface.BundleMembers) {
        cut(member.HistoryInfo, cuts);
    }
}

void cut(const pm_srpolicy_history_parcel &policy, record_cuts *cuts) {
    for (const pm_srpolicy_history_candidate_path_parcel &path : policy.CandidatePathsHistory) {
        cut(path.HistoryInfo, cuts);
        for (const pm_srpolicy_history_segment_list_parcel &list : path.SegmentListsHistory) {
            cut(list.HistoryInfo, cuts);
            for (const pm_srpolicy_history_atomic_path_parcel &atomic : list.AtomicPathsHistory) {
                cut(atomic.HistoryInfo, cuts);
            }
        }
    }
}

void cut(const pm_rsvpte_history_parcel &tunnel, record_cuts *cuts) {
    for (const pm_rsvpte_lsp_history_parcel &lsp : tunnel.LSPList) {
        cut(lsp.HistoryUnion, cuts);
    }
}

void cut(const pm_endpoint_history_parcel &endpoint, record_cuts *cuts) {
    for (const pm_endpoint_history_segment_list_parcel &list : endpoint.EP_SegmentListsHistory) {
        cut(list.HistoryInfo, cuts);
    }
    keep_wanted(endpoint.EP_SegmentListsHistory, cuts);
}

void cut(const pm_endpoint_common &endpoint, record_cuts *cuts) {
    for (const pm_endpoint_detail &delay : endpoint.EndpointDelay) {
        for (const pm_endpoint_consolidated_detail_parcel &profile : delay.EP_Consolidated_Detail) {
            keep_wanted(profile.EP_SegmentLists, cuts);
        }
    }
    for (const pm_endpoint_liveness &liveness : endpoint.EndpointLiveness) {
        for (const pm_endpoint_consolidated_liveness_parcel &profile : liveness.EP_Consolidated_Liveness) {
            keep_wanted(profile.EPLivenessSegmentLists, cuts);
        }
    }
    for (const pm_endpoint_probe &probe : endpoint.EndpointProbe) {
        keep_wanted(probe.Sessions, cuts);
    }
    keep_section(PM_MEASUREMENT_DELAY, endpoint.EndpointDelay, cuts);
    keep_section(PM_MEASUREMENT_LIVENESS, endpoint.EndpointLiveness, cuts);
    keep_section(PM_MEASUREMENT_PROBE, endpoint.EndpointProbe, cuts);
}

void cut(const pm_endpoint_counters_parcel &endpoint, record_cuts *cuts) {
    for (const pm_endpoint_consolidated_counters_data_parcel &profile : endpoint.ConsolidatedCountersData) {
        keep_wanted(profile.SegmentListCounters, cuts, true);
    }
}

template <class Part>
void keep_if(bool wanted, const Part &part, record_cuts *cuts) {
    if (!wanted) {
        std::memset(static_cast<void *>(&cuts->change(part)), 0, sizeof part);
    }
}

// The default profiles. Of several kinds the first in this order counts; loss has none.
void cut(const pm_profile_parcel &profiles, record_cuts *cuts) {
    const pm_show_options_record &o = pm_show_options;
    const bool any = !o.loss_kind && !o.delay_kind && !o.liveness_kind && !o.probe_kind;
    const bool delay = !o.loss_kind && o.delay_kind;
    const bool liveness = !o.loss_kind && !delay && o.liveness_kind;
    const bool probe = !o.loss_kind && !delay && !liveness && o.probe_kind;
    const auto is_for = [](pm_transport_type_e transport) {
        return !o.profile_type_set || o.profile_type == static_cast<std::uint32_t>(transport);
    };
    keep_if(any && !o.profile_type_set, profiles.LossProfile, cuts);
    const pm_delay_profile_parcel &delays = profiles.DelayProfile;
    keep_if((any || delay) && is_for(PM_TRANSPORT_INTERFACE), delays.InterfaceDelayProfile, cuts);
    keep_if((any || delay) && is_for(PM_TRANSPORT_RSVP_TE), delays.RSVP_TEDelayProfile, cuts);
    keep_if((any || delay) && is_for(PM_TRANSPORT_SR_POLICY), delays.SRPolicyDelayProfile, cuts);
    keep_if((any || delay) && is_for(PM_TRANSPORT_ENDPOINT), delays.Endpoint_DelayProfile, cuts);
    const pm_liveness_profile_parcel &states = profiles.LivenessProfile;
    keep_if((any || liveness) && is_for(PM_TRANSPORT_SR_POLICY), states.SRPolicyLivenessProfile, cuts);
    keep_if((any || liveness) && is_for(PM_TRANSPORT_ENDPOINT), states.EndpointLivenessProfile, cuts);
    keep_if((any || probe) && is_for(PM_TRANSPORT_ENDPOINT), profiles.ProbeProfile, cuts);
}

template <class Record>
void cut_as(const void *record, record_cuts *cuts) {
    cut(*static_cast<const Record *>(record), cuts);
}

struct cut_of_type {
    const parcel_descriptor *(*type)();
    void (*cut)(const void *record, record_cuts *cuts);
};
constexpr cut_of_type CUTS[] = {
    {pm_intf_history_parcel_descriptor, cut_as<pm_intf_history_parcel>},
    {pm_srpolicy_history_parcel_descriptor, cut_as<pm_srpolicy_history_parcel>},
    {pm_rsvpte_history_parcel_descriptor, cut_as<pm_rsvpte_history_parcel>},
    {pm_endpoint_history_parcel_descriptor, cut_as<pm_endpoint_history_parcel>},
    {pm_endpoint_common_descriptor, cut_as<pm_endpoint_common>},
    {pm_endpoint_counters_parcel_descriptor, cut_as<pm_endpoint_counters_parcel>},
    {pm_profile_parcel_descriptor, cut_as<pm_profile_parcel>},
};

}  // namespace

record_cuts::record_cuts(const item &whole) {
    for (const cut_of_type &each : CUTS) {
        if (each.type() == whole.type) {
            each.cut(whole.record, this);
        }
    }
}

record_cuts::~record_cuts() {
    for (const saved_part &part : saved_) {  // no part is saved twice
        std::memcpy(part.at, part.bytes.data(), part.bytes.size());
    }
}

void record_cuts::save(void *part, std::size_t size) {
    const auto *const bytes = static_cast<const unsigned char *>(part);
    saved_.push_back({part, {bytes, bytes + size}});
}

bool is_left_out(const item &read) {
    if (read.type != pm_chkpt_scb_parcel_descriptor() || pm_show_options.name == nullptr) {
        return false;
    }
    const auto &blob = static_cast<const pm_chkpt_scb_parcel *>(read.record)->buf;
    chkpt_memory memory;
    ChkptScb session;
    static_cast<void>(ChkptScb_decode(&session, blob.elements, blob.count, chkpt_memory::allocate, &memory));
    return session.interface_name == nullptr || std::strcmp(session.interface_name, pm_show_options.name) != 0;
}

}  // namespace perf_measure
