// SPDX-License-Identifier: Apache-2.0
// Endpoints: a delay or a liveness session each.
#include "paths/item_paths.h"
#include "perf-store/generator/generator.h"
#include "perf-store/generator/generator_parts.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

using path_grammar::place;

namespace {

constexpr std::uint32_t ENDPOINT_IPV4 = 0x64400000;  // 100.64.0.0
constexpr std::uint64_t ENDPOINT_NETWORK = GEN_ROUTER_NETWORK + 0x4000000;
constexpr std::uint16_t TWAMP_PORT = 862;
constexpr char NO_LIST[] = "None";

struct endpoint_state {
    std::uint32_t index = 0;
    const char *name = nullptr;
    const char *vrf = nullptr;
    const char *list = NO_LIST;
    parcel_array<pm_segment_parcel> segments{};
    pm_record_address address{};
    pm_record_address source{};
    session_state session;
};

// Addresses in turn: IPv4, IPv6, SRv6 through a segment list, IPv4 in a VRF.
void choose_path(generation *set, endpoint_state *endpoint) {
    constexpr session_family FAMILIES[] = {session_family::ipv4, session_family::ipv6, session_family::srv6,
                                           session_family::ipv4};
    const std::uint32_t index = endpoint->index;
    const session_family family = FAMILIES[index % 4];
    endpoint->session.family = family;
    endpoint->vrf = index % 4 == 3 ? "blue" : "default";
    const bool is_ipv4 = family == session_family::ipv4;
    endpoint->address =
        is_ipv4 ? gen_address(ENDPOINT_IPV4 + index + 1) : gen_address(gen_ipv6(ENDPOINT_NETWORK, index + 1ULL));
    endpoint->source = is_ipv4 ? gen_address(GEN_ROUTER_IPV4) : gen_address(gen_ipv6(GEN_ROUTER_NETWORK, 1));
    if (family == session_family::srv6) {
        pm_segment_parcel segment{};
        segment.IPAddress = gen_no_address();
        segment.USIDInfo = set->memory.make<pm_usid_info>();
        segment.USIDInfo->SIDValue = gen_ipv6(GEN_SID_BLOCK + (std::uint64_t{index + 1} << 16U), 0);
        segment.USIDInfo->USIDLength = GEN_SID_LENGTH;
        endpoint->list = set->memory.text(gen_text("sl-endpoint-", index + 1));
        endpoint->segments = set->memory.array_of({segment});
    }
}

endpoint_state make_endpoint(generation *set, std::uint32_t index) {
    random_source random(set->options.seed, random_subject::endpoint, index);
    endpoint_state endpoint;
    endpoint.index = index;
    choose_path(set, &endpoint);
    endpoint.name = set->memory.text("ep-" + gen_address_text(endpoint.address));
    session_state &session = endpoint.session;
    session.kind = index % 3 == 2 ? PM_MEASUREMENT_LIVENESS : PM_MEASUREMENT_DELAY;
    session.transport = PM_TRANSPORT_ENDPOINT;
    session.named_profile = index % 2 == 0;
    session.reason = gen_reason(&random, PM_TRANSPORT_ENDPOINT);
    session.typical_usec = random.between(300, 18000);
    set->run(&set->route_processor(), &random, &session);
    ++set->route_processor().endpoints;
    return endpoint;
}

const char *profile_name(const session_state &session) { return session.named_profile ? "gold" : "default"; }

parcel_array<pm_endpoint_detail> delay_part(const endpoint_state &endpoint, item_memory *memory) {
    pm_endpoint_detail_segment_list_parcel list{};
    list.SegmentListName = endpoint.list;
    list.Segments = endpoint.segments;
    list.DelayMeasurementSessions = memory->array_of({gen_control_block(endpoint.session, memory)});
    pm_endpoint_consolidated_detail_parcel consolidated{};
    consolidated.EpConsProfileName = profile_name(endpoint.session);
    consolidated.EpConsProfileKey = gen_profile_key(endpoint.session);
    consolidated.EP_SegmentLists = memory->array_of({list});
    pm_endpoint_detail detail{};
    detail.EndpointName = endpoint.name;
    detail.EndPointAddress = endpoint.address;
    detail.EndPointSessionSourceAddress = endpoint.source;
    detail.DestinationUDPPort = TWAMP_PORT;
    detail.SourceUDPPort = TWAMP_PORT;
    detail.VRFName = endpoint.vrf;
    detail.EP_Consolidated_Detail = memory->array_of({consolidated});
    return memory->array_of({detail});
}

parcel_array<pm_endpoint_liveness> liveness_part(const endpoint_state &endpoint, item_memory *memory) {
    pm_endpoint_liveness_segment_list_parcel list{};
    list.SegmentListName = endpoint.list;
    list.Segments = endpoint.segments;
    list.SessionId = endpoint.session.id;
    list.LivenessDetectionEnabled = 1;
    list.EPLivenessInfo = gen_liveness(endpoint.session);
    list.ProbeNotRunningReason = endpoint.session.reason;
    pm_endpoint_consolidated_liveness_parcel consolidated{};
    consolidated.EpLiveProfileName = profile_name(endpoint.session);
    consolidated.EpLiveProfileKey = gen_profile_key(endpoint.session);
    consolidated.EPLivenessSegmentLists = memory->array_of({list});
    pm_endpoint_liveness liveness{};
    liveness.EndpointName = endpoint.name;
    liveness.EndPointAddress = endpoint.address;
    liveness.EndPointSessionSourceAddress = endpoint.source;
    liveness.VRFName = endpoint.vrf;
    liveness.EP_Consolidated_Liveness = memory->array_of({consolidated});
    return memory->array_of({liveness});
}

void write_item(generation *set, const endpoint_state &endpoint, std::string_view path, const parcel_descriptor *type,
                const void *record) {
    set->lines.item(set->route_processor().id, gen_text(path, endpoint.name), type, record);
}

void write_detail(generation *set, const endpoint_state &endpoint) {
    auto *record = set->memory.make<pm_endpoint_common>();
    record->EndpointName = endpoint.name;
    if (endpoint.session.is_liveness()) {
        record->EndpointLiveness = liveness_part(endpoint, &set->memory);
    } else {
        record->EndpointDelay = delay_part(endpoint, &set->memory);
    }
    write_item(set, endpoint, path_of(place::endpoint_detail), pm_endpoint_common_descriptor(), record);
}

void write_counters(generation *set, const endpoint_state &endpoint) {
    pm_endpoint_segment_list_counters_parcel list{};
    list.SegmentListName = endpoint.list;
    list.Segments = endpoint.segments;
    if (endpoint.session.is_liveness()) {
        list.LivenessCounters = set->memory.keep(gen_endpoint_liveness_counters(endpoint.session));
    } else {
        list.Counters = set->memory.keep(gen_delay_counters(endpoint.session));
    }
    pm_endpoint_consolidated_counters_data_parcel consolidated{};
    consolidated.SegmentListCounters = set->memory.array_of({list});
    auto *record = set->memory.make<pm_endpoint_counters_parcel>();
    record->EndpointName = endpoint.name;
    record->ConsolidatedCountersData = set->memory.array_of({consolidated});
    write_item(set, endpoint, path_of(place::endpoint_counters), pm_endpoint_counters_parcel_descriptor(), record);
}

void write_history(generation *set, const endpoint_state &endpoint, std::string_view path, pm_history_type_e type) {
    pm_endpoint_history_segment_list_parcel list{};
    list.SegmentListName = endpoint.list;
    list.Segments = endpoint.segments;
    list.HistoryInfo = gen_history(type, endpoint.session, &set->memory);
    auto *record = set->memory.make<pm_endpoint_history_parcel>();
    record->EndpointName = endpoint.name;
    record->EndPointAddress = endpoint.address;
    record->EndPointSessionSourceAddress = endpoint.source;
    record->VRFName = endpoint.vrf;
    record->EPLivenessDetectionEnabled = endpoint.session.is_liveness() ? 1 : 0;
    record->EP_SegmentListsHistory = set->memory.array_of({list});
    write_item(set, endpoint, path, pm_endpoint_history_parcel_descriptor(), record);
}

void write_histories(generation *set, const endpoint_state &endpoint) {
    if (endpoint.session.is_liveness()) {
        write_history(set, endpoint, path_of(place::endpoint_live_history), PM_HISTORY_LIVENESS);
        return;
    }
    write_history(set, endpoint, path_of(place::endpoint_probe_history), PM_HISTORY_DM_PROBE);
    write_history(set, endpoint, path_of(place::endpoint_aggr_history), PM_HISTORY_DM_AGGREGATION);
    write_history(set, endpoint, path_of(place::endpoint_adv_history), PM_HISTORY_DM_ADVERTISEMENT);
}

void write_session(generation *set, const endpoint_state &endpoint) {
    const session_state &session = endpoint.session;
    auto *record = set->memory.make<pm_session_parcel>();
    record->MeasurementType = session.kind;
    record->Session.type = PM_TRANSPORT_ENDPOINT;
    pm_session_endpoint_parcel &own = record->Session.EndpointSession;
    own.EndpointName = endpoint.name;
    own.EndPointDestAddress = endpoint.address;
    own.EndPointSrcAddress = endpoint.source;
    own.VrfName = endpoint.vrf;
    own.SegmentListName = endpoint.list;
    own.Session = gen_control_block(session, &set->memory);
    if (session.is_liveness()) {
        own.LivenessDetectionEnabled = 1;
        own.EPSessionLiveness =
            set->memory.keep(pm_endpoint_session_liveness{session.id, gen_trace_id(session), gen_profile_name(session),
                                                          gen_profile_key(session), gen_liveness(session)});
    }
    set->write_session(set->route_processor(), session, *record);
}

}  // namespace

void gen_endpoints(generation *set) {
    for (std::uint32_t index = 0; index < set->options.endpoints && set->lines.good(); ++index) {
        set->memory.reset();
        const endpoint_state endpoint = make_endpoint(set, index);
        write_detail(set, endpoint);
        write_counters(set, endpoint);
        write_histories(set, endpoint);
        write_session(set, endpoint);
    }
}

}  // namespace perf_store
