// SPDX-License-Identifier: Apache-2.0
// One item for each path of an endpoint or interface.
#include "perf-probed/state/entity_records.h"

#include <algorithm>

#include "perf-probed/state/session_records.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace probed {
namespace {

constexpr const char *ENDPOINT_PATHS[] = {"endpoint/detail/",
                                          "endpoint/counters/",
                                          "endpoint/delay/probe-history/",
                                          "endpoint/delay/aggr-history/",
                                          "endpoint/delay/adv-history/",
                                          "endpoint/delay/live-history/"};
constexpr const char *INTERFACE_PATHS[] = {"intf/detail/",
                                           "intf/delay/probe-history/",
                                           "intf/delay/aggr-history/",
                                           "intf/delay/adv-history/",
                                           "intf/loss/probe-history/",
                                           "intf/loss/aggr-history/",
                                           "intf/loss/adv-history/",
                                           "intf/loss/pkt-history/"};

std::string session_path(const char *prefix, std::uint32_t id) {
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string digits;
    do {
        digits.insert(digits.begin(), DIGITS[id % 16]);
        id /= 16;
    } while (id != 0);
    return prefix + digits;
}

const char *vrf_of(const session_entry &entry, record_arena *arena) {
    const std::string &vrf = entry.plan.endpoint->vrf;
    return arena->text(vrf.empty() ? "default" : vrf);
}

// The configured source, or the one that the system chose for packets that were answered.
pm_record_address source_of(const session_entry &entry) {
    return record_address(entry.plan.endpoint->source ? entry.plan.endpoint->source : entry.used_source);
}

void fill_delay(const session_entry &entry, const moment &now, record_arena *arena, pm_endpoint_detail *to) {
    const endpoint_config &endpoint = *entry.plan.endpoint;
    to->EndpointName = arena->text(endpoint.name);
    to->EndPointAddress = record_address(endpoint.address);
    to->EndPointSessionSourceAddress = source_of(entry);
    to->DestinationUDPPort = endpoint.port;
    to->SourceUDPPort = entry.source_port;
    to->VRFName = vrf_of(entry, arena);
    to->Description = endpoint.description.empty() ? nullptr : arena->text(endpoint.description);
    to->IsStale = entry.removed_at.has_value();
    to->EP_Consolidated_Detail = arena->array<pm_endpoint_consolidated_detail_parcel>(1);
    pm_endpoint_consolidated_detail_parcel &consolidated = to->EP_Consolidated_Detail.elements[0];
    consolidated.EpConsProfileName = arena->text(entry.plan.profile_name);
    consolidated.EpConsProfileKey = record_profile_key(entry.plan, arena);
    consolidated.EP_SegmentLists = arena->array<pm_endpoint_detail_segment_list_parcel>(1);
    pm_endpoint_detail_segment_list_parcel &list = consolidated.EP_SegmentLists.elements[0];
    list.SegmentListName = NO_SEGMENT_LIST;
    list.DelayMeasurementSessions = arena->array<pm_scb_parcel>(1);
    list.DelayMeasurementSessions.elements[0] = record_delay_session(entry, now, arena);
}

void fill_liveness(const session_entry &entry, record_arena *arena, pm_endpoint_liveness *to) {
    to->EndpointName = arena->text(entry.plan.name());
    to->EndPointAddress = record_address(entry.plan.address());
    to->EndPointSessionSourceAddress = source_of(entry);
    to->VRFName = vrf_of(entry, arena);
    to->EP_Consolidated_Liveness = arena->array<pm_endpoint_consolidated_liveness_parcel>(1);
    pm_endpoint_consolidated_liveness_parcel &consolidated = to->EP_Consolidated_Liveness.elements[0];
    consolidated.EpLiveProfileName = arena->text(entry.plan.profile_name);
    consolidated.EpLiveProfileKey = record_profile_key(entry.plan, arena);
    consolidated.EPLivenessSegmentLists = arena->array<pm_endpoint_liveness_segment_list_parcel>(1);
    pm_endpoint_liveness_segment_list_parcel &list = consolidated.EPLivenessSegmentLists.elements[0];
    list.SegmentListName = NO_SEGMENT_LIST;
    list.SessionId = entry.id();
    list.LivenessDetectionEnabled = true;
    list.EPLivenessInfo = record_liveness_state(entry);
    list.ProbeNotRunningReason = entry.shown_reason();
}

void fill_probe(const session_entry &entry, const moment &now, record_arena *arena, pm_endpoint_probe *to) {
    to->EndpointName = arena->text(entry.plan.name());
    to->EndPointAddress = record_address(entry.plan.address());
    to->EndPointSessionSourceAddress = source_of(entry);
    to->VRFName = vrf_of(entry, arena);
    to->Sessions = arena->array<pm_endpoint_probe_session_parcel>(1);
    to->Sessions.elements[0].SegmentListName = NO_SEGMENT_LIST;
    to->Sessions.elements[0].Session = record_probe_session(entry, now, arena);
}

void add_endpoint_detail(const entity &of, const moment &now, snapshot *out) {
    auto *const record =
        out->add_main<pm_endpoint_common>("endpoint/detail/" + of.name(), pm_endpoint_common_descriptor());
    record_arena *const arena = &out->arena;
    record->EndpointName = arena->text(of.name());
    if (of.delay != nullptr) {
        record->EndpointDelay = arena->array<pm_endpoint_detail>(1);
        fill_delay(*of.delay, now, arena, record->EndpointDelay.elements);
    }
    if (of.liveness != nullptr) {
        record->EndpointLiveness = arena->array<pm_endpoint_liveness>(1);
        fill_liveness(*of.liveness, arena, record->EndpointLiveness.elements);
    }
    if (of.probe != nullptr) {
        record->EndpointProbe = arena->array<pm_endpoint_probe>(1);
        fill_probe(*of.probe, now, arena, record->EndpointProbe.elements);
    }
}

void add_endpoint_counters(const entity &of, snapshot *out) {
    auto *const record = out->add_main<pm_endpoint_counters_parcel>("endpoint/counters/" + of.name(),
                                                                    pm_endpoint_counters_parcel_descriptor());
    record_arena *const arena = &out->arena;
    record->EndpointName = arena->text(of.name());
    if (of.delay == nullptr && of.liveness == nullptr) {
        return;
    }
    record->ConsolidatedCountersData = arena->array<pm_endpoint_consolidated_counters_data_parcel>(1);
    auto &consolidated = record->ConsolidatedCountersData.elements[0];
    consolidated.SegmentListCounters = arena->array<pm_endpoint_segment_list_counters_parcel>(1);
    pm_endpoint_segment_list_counters_parcel &list = consolidated.SegmentListCounters.elements[0];
    list.SegmentListName = NO_SEGMENT_LIST;
    if (of.delay != nullptr) {
        list.Counters = arena->make<pm_delay_counters_info_parcel>();
        *list.Counters = record_delay_counters(*of.delay);
    }
    if (of.liveness != nullptr) {
        list.LivenessCounters = arena->make<pm_endpoint_liveness_counters_info_parcel>();
        *list.LivenessCounters = record_liveness_counters(*of.liveness);
    }
}

void add_endpoint_session(const session_entry &entry, const moment &now, snapshot *out) {
    const bool is_probe = entry.plan.kind == session_kind::probe;
    auto *const record = out->add_main<pm_session_parcel>(
        session_path(is_probe ? "probe-session/" : "session/", entry.id()), pm_session_parcel_descriptor());
    record_arena *const arena = &out->arena;
    record->Session.type = PM_TRANSPORT_ENDPOINT;
    pm_session_endpoint_parcel &session = record->Session.EndpointSession;
    session.EndpointName = arena->text(entry.plan.name());
    session.EndPointDestAddress = record_address(entry.plan.address());
    session.EndPointSrcAddress = source_of(entry);
    session.VrfName = vrf_of(entry, arena);
    session.SegmentListName = NO_SEGMENT_LIST;
    switch (entry.plan.kind) {
    case session_kind::delay:
        record->MeasurementType = PM_MEASUREMENT_DELAY;
        session.Session = record_delay_session(entry, now, arena);
        break;
    case session_kind::liveness:
        record->MeasurementType = PM_MEASUREMENT_LIVENESS;
        session.LivenessDetectionEnabled = true;
        session.EPSessionLiveness = arena->make<pm_endpoint_session_liveness>();
        *session.EPSessionLiveness = {entry.id(), entry.id(), arena->text(entry.plan.profile_name),
                                      record_profile_key(entry.plan, arena), record_liveness_state(entry)};
        break;
    case session_kind::loss: break;  // of interfaces only
    case session_kind::probe:
        record->MeasurementType = PM_MEASUREMENT_PROBE;
        session.IsProbeSession = true;
        session.ProbeSession = arena->make<pm_scb_probe_session_parcel>();
        *session.ProbeSession = record_probe_session(entry, now, arena);
        break;
    }
}

void fill_link(const host_interface &link, pm_intf_parcel *to) {
    to->InterfaceHandle = link.index;
    to->InterfaceState = link.admin_up && link.is_running;
    const ip_address ipv4 = link.first(ip_family::ipv4);
    const ip_address ipv6 = link.first(ip_family::ipv6);
    const ip_address link_local = link.first(ip_family::ipv6, true);
    to->IPv4ProtocolState = static_cast<bool>(ipv4);
    to->IPv6ProtocolState = ipv6 || link_local;
    to->SourceAddress = record_ipv4(ipv4);
    to->SourceV6Address = record_ipv6(ipv6.is_link_local() ? ip_address{} : ipv6);
    to->LinkLocalIV6Address = record_ipv6(link_local);
    to->SourceMacAddress = record_mac(link.mac);
}

void add_interface_detail(const entity &of, const host_state &host, const moment &now, snapshot *out) {
    const session_entry &entry = of.any();
    auto *const record = out->add_main<pm_intf_parcel>("intf/detail/" + of.name(), pm_intf_parcel_descriptor());
    record->InterfaceName = out->arena.text(of.name());
    const host_interface *const link = host.find(of.name());
    if (link != nullptr) {
        fill_link(*link, record);
        if (const auto *const neighbour = host.find_neighbour(link->index, entry.plan.address())) {
            record->NextHopMacAddress = record_mac(neighbour->mac);
        }
    }
    record->NextHop = record_address(entry.plan.address());
    record->InUseSourceIPAddress = record_address(entry.from.source);
    record->InUseDestinationIPAddress = record_address(entry.run->is_running() ? entry.plan.address() : ip_address{});
    record->AIBNexthopIPv4Address = record_address({});
    record->AIBNexthopIPv6Address = record_address({});
    record->IsStale = entry.removed_at.has_value();
    if (of.loss != nullptr) {
        record->LossMeasurementSession = out->arena.make<pm_intf_loss_session_parcel>();
        *record->LossMeasurementSession = record_loss_session(*of.loss, now);
    }
    if (of.delay == nullptr) {
        return;
    }
    record->DelayMeasurementSessions = out->arena.array<pm_scb_parcel>(1);
    record->DelayMeasurementSessions.elements[0] = record_delay_session(entry, now, &out->arena);

    auto *const item =
        out->add_main<pm_session_parcel>(session_path("session/", entry.id()), pm_session_parcel_descriptor());
    item->Session.type = PM_TRANSPORT_INTERFACE;
    item->MeasurementType = PM_MEASUREMENT_DELAY;
    pm_session_intf_parcel &session = item->Session.InterfaceSession;
    session.InterfaceName = record->InterfaceName;
    session.InterfaceHandle = record->InterfaceHandle;
    session.NextHop = record->NextHop;
    session.Session = record->DelayMeasurementSessions.elements[0];
}

void add_endpoint_history(const session_entry &entry, const char *prefix, const pm_history_info &history,
                          snapshot *out) {
    auto *const record =
        out->add_main<pm_endpoint_history_parcel>(prefix + entry.plan.name(), pm_endpoint_history_parcel_descriptor());
    record_arena *const arena = &out->arena;
    record->EndpointName = arena->text(entry.plan.name());
    record->EndPointAddress = record_address(entry.plan.address());
    record->EndPointSessionSourceAddress = source_of(entry);
    record->VRFName = vrf_of(entry, arena);
    record->EPLivenessDetectionEnabled = entry.plan.kind == session_kind::liveness;
    record->EP_SegmentListsHistory = arena->array<pm_endpoint_history_segment_list_parcel>(1);
    record->EP_SegmentListsHistory.elements[0].SegmentListName = NO_SEGMENT_LIST;
    record->EP_SegmentListsHistory.elements[0].HistoryInfo = history;
}

void add_interface_history(const session_entry &entry, const char *prefix, const pm_history_info &history,
                           snapshot *out) {
    auto *const record =
        out->add_main<pm_intf_history_parcel>(prefix + entry.plan.name(), pm_intf_history_parcel_descriptor());
    record->InterfaceName = out->arena.text(entry.plan.name());
    record->InterfaceHandle = entry.from.interface;
    record->HistoryInfo = history;
}

}  // namespace

std::uint64_t entity::revision() const {
    std::uint64_t sum = 0;
    for (const session_entry *const each : all()) {
        sum += each != nullptr ? each->revision + 1 : 0;
    }
    return sum;
}

std::uint64_t entity::history_revision() const {
    std::uint64_t sum = 0;
    if (delay != nullptr) {
        const session_counters &counters = delay->run->counters();
        sum +=
            1 + counters.probes_complete + counters.probes_incomplete + delay_of(*delay).advertiser().advertisements();
    }
    if (loss != nullptr) {
        sum += 1 + loss->run->counters().received + loss->run->counters().probes_complete +
               loss->run->counters().probes_incomplete + loss_of(*loss).advertiser().advertisements();
    }
    if (liveness != nullptr) {
        sum += 1 + liveness_of(*liveness).change_count();
    }
    return sum;
}

void add_state_items(const entity &of, const host_state &host, const moment &now, snapshot *out) {
    if (of.is_interface()) {
        add_interface_detail(of, host, now, out);
        return;
    }
    add_endpoint_detail(of, now, out);
    add_endpoint_counters(of, out);
    for (const session_entry *const each : of.all()) {
        if (each != nullptr) {
            add_endpoint_session(*each, now, out);
        }
    }
}

void add_history_items(const entity &of, snapshot *out) {
    record_arena *const arena = &out->arena;
    if (of.is_interface()) {
        if (of.delay != nullptr) {
            add_interface_history(*of.delay, INTERFACE_PATHS[1], record_probe_history(*of.delay, arena), out);
            add_interface_history(*of.delay, INTERFACE_PATHS[2], record_aggregated_history(*of.delay, arena), out);
            add_interface_history(*of.delay, INTERFACE_PATHS[3], record_advertisement_history(*of.delay, arena), out);
        }
        if (of.loss != nullptr) {
            add_interface_history(*of.loss, INTERFACE_PATHS[4], record_loss_probe_history(*of.loss, arena), out);
            add_interface_history(*of.loss, INTERFACE_PATHS[5], record_loss_aggregated_history(*of.loss, arena), out);
            add_interface_history(*of.loss, INTERFACE_PATHS[6], record_loss_advertisement_history(*of.loss, arena),
                                  out);
            add_interface_history(*of.loss, INTERFACE_PATHS[7], record_loss_packet_history(*of.loss, arena), out);
        }
        return;
    }
    if (of.delay != nullptr) {
        add_endpoint_history(*of.delay, ENDPOINT_PATHS[2], record_probe_history(*of.delay, arena), out);
        add_endpoint_history(*of.delay, ENDPOINT_PATHS[3], record_aggregated_history(*of.delay, arena), out);
        add_endpoint_history(*of.delay, ENDPOINT_PATHS[4], record_advertisement_history(*of.delay, arena), out);
    }
    if (of.liveness != nullptr) {
        add_endpoint_history(*of.liveness, ENDPOINT_PATHS[5], record_liveness_history(*of.liveness, arena), out);
    }
}

void add_removals(bool is_interface, const std::string &name, const std::vector<std::uint32_t> &sessions,
                  snapshot *out) {
    const auto add = [&](const char *prefix) { out->removed.push_back({store::root::main, prefix + name}); };
    if (is_interface) {
        std::ranges::for_each(INTERFACE_PATHS, add);
    } else {
        std::ranges::for_each(ENDPOINT_PATHS, add);
    }
    for (const std::uint32_t id : sessions) {
        out->removed.push_back({store::root::main, session_path("session/", id)});
        out->removed.push_back({store::root::main, session_path("probe-session/", id)});
    }
}

}  // namespace probed
