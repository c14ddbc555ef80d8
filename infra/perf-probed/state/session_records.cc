// SPDX-License-Identifier: Apache-2.0
// Sessions into records, field by field.
#include "perf-probed/state/session_records.h"

#include <algorithm>
#include <cstring>

namespace probed {
namespace {

pm_measurement_type_e measurement_of(session_kind kind) {
    switch (kind) {
    case session_kind::delay: return PM_MEASUREMENT_DELAY;
    case session_kind::loss: return PM_MEASUREMENT_LOSS;
    case session_kind::liveness: return PM_MEASUREMENT_LIVENESS;
    case session_kind::probe: return PM_MEASUREMENT_PROBE;
    }
    return PM_MEASUREMENT_DELAY;
}

pm_scb_probe_parcel record_current_probe(const session_entry &entry, const moment &now) {
    const delay_session &session = delay_of(entry);
    pm_scb_probe_parcel probe{};
    probe.ProbeStartTimeStamp = session.current().start_msec;
    probe.NextProbeStartTimeRemainingInMillisec = msec_until(session.computation_end(), now);
    probe.NextPacketSentTimeRemainingInMillisec = msec_until(session.next_send(), now);
    probe.TXInterval = session.tx_interval_usec();
    probe.TXIntervalIsStretched = entry.plan.stretched;
    probe.BurstInterval = session.tx_interval_usec() / 1000;
    probe.BurstIntervalIsStretched = entry.plan.stretched;
    probe.NumberOfPacketsSent = session.current().sent;
    probe.NumberOfPacketsReceived = session.current().received;
    probe.ProbeResults = record_values(session.current().delays.values());
    probe.ProbeNotRunningReason = entry.shown_reason();
    return probe;
}

pm_scb_last_advert_parcel record_last_advertisement(const advertisement &last) {
    pm_scb_last_advert_parcel record{};
    record.TimeOfAdvertisement = last.time_msec;
    record.AdvertisementReason = last.reason;
    record.AdvertisedValues = record_values(last.values);
    record.AFlagSet = last.a_flag;
    return record;
}

}  // namespace

pm_record_address record_address(const ip_address &address) {
    pm_record_address record{};
    switch (address.family) {
    case ip_family::ipv4:
        record.IPAddressType = PM_RECORD_ADDRESS_IPV4;
        record.IPv4 = record_ipv4(address);
        break;
    case ip_family::ipv6:
        record.IPAddressType = PM_RECORD_ADDRESS_IPV6;
        std::memcpy(record.IPv6.octets, address.octets.data(), address.octets.size());
        break;
    case ip_family::none: record.IPAddressType = PM_RECORD_ADDRESS_NONE; break;
    }
    return record;
}

std::uint32_t record_ipv4(const ip_address &address) {
    std::uint32_t network_order = 0;
    if (address.family == ip_family::ipv4) {
        std::memcpy(&network_order, address.octets.data(), sizeof network_order);
    }
    return network_order;
}

parcel_ipv6 record_ipv6(const ip_address &address) {
    parcel_ipv6 record{};
    if (address.family == ip_family::ipv6) {
        std::memcpy(record.octets, address.octets.data(), sizeof record.octets);
    }
    return record;
}

parcel_mac record_mac(const mac_address &address) {
    parcel_mac record{};
    std::memcpy(record.octets, address.data(), sizeof record.octets);
    return record;
}

pm_values_parcel record_values(const delay_values &values) {
    return {values.average, values.minimum, values.maximum, values.variance};
}

std::uint32_t msec_until(mono_nsec when, const moment &now) {
    constexpr mono_nsec MOST = 0xFFFFFFFF;
    return when == NEVER || when <= now.mono
               ? 0
               : static_cast<std::uint32_t>(std::min((when - now.mono) / NSEC_PER_MSEC, MOST));
}

pm_profile_key_parcel record_profile_key(const session_plan &plan, record_arena *arena) {
    pm_profile_key_parcel key{};
    key.ProfileIsSet = plan.has_profile && !plan.profile_name.empty();
    key.MeasurementType = measurement_of(plan.kind);
    key.Transport_type = plan.kind == session_kind::probe ? PM_TRANSPORT_ENDPOINT : PM_TRANSPORT_GENERIC;
    key.Name = arena->text(plan.profile_name);
    return key;
}

pm_delay_counters_info_parcel record_delay_counters(const session_entry &entry) {
    const session_counters &counters = entry.run->counters();
    pm_delay_counters_info_parcel record{};
    pm_querier_delay_counters_parcel &generic = record.GenericCounters;
    generic.QueryPacketsSent = counters.sent;
    generic.QueryPacketSentErrors = counters.errors(send_failure::other);
    generic.QueryPacketSentErrorNoIPAddress = counters.errors(send_failure::no_address);
    generic.QueryPacketsReceived = counters.received;
    generic.ReceivedPacketErrorNegativeDelay = counters.negative_delay;
    generic.ReceivedPacketErrorDelayExceedsThreshold = counters.late;
    generic.ReceivedPacketErrorMissingTxTimestamp = counters.missing_tx_stamp;
    generic.ReceivedPacketErrorMissingRxTimestamp = counters.missing_rx_stamp;
    generic.ReceivedPacketErrorProbeFull = counters.duplicate;
    generic.ReceivedPacketErrorProbeNotStarted = counters.unknown;
    generic.ProbesStarted = counters.probes_started;
    generic.ProbesComplete = counters.probes_complete;
    generic.ProbesIncomplete = counters.probes_incomplete;
    if (entry.plan.kind == session_kind::delay) {
        generic.Advertisement = delay_of(entry).advertiser().advertisements();
    }
    record.ExclusiveCounters.TransportType = entry.plan.transport();
    if (entry.plan.of_interface()) {
        pm_intf_exclusive_delay_counters_info_parcel &own = record.ExclusiveCounters.InterfaceExclusiveCounters;
        own.QueryPacketSentErrorInterfaceDown = counters.errors(send_failure::interface_down);
        own.QueryPacketSentErrorIPv4DownWithV4NextHop = counters.errors(send_failure::ipv4_down);
        own.QueryPacketSentErrorIPv6DownWithV6NextHop = counters.errors(send_failure::ipv6_down);
        own.QueryPacketSentErrorNextHopMACMissing = counters.errors(send_failure::next_hop_missing);
        return record;
    }
    for (const send_failure reason : {send_failure::interface_down, send_failure::ipv4_down, send_failure::ipv6_down,
                                      send_failure::next_hop_missing}) {
        generic.QueryPacketSentErrors += counters.errors(reason);
    }
    return record;
}

pm_endpoint_liveness_counters_info_parcel record_liveness_counters(const session_entry &entry) {
    const session_counters &counters = entry.run->counters();
    pm_endpoint_liveness_counters_info_parcel record{};
    record.QueryPacketsSent = counters.sent;
    for (const std::uint64_t errors : counters.send_errors) {
        record.QueryPacketSentErrors += errors;
    }
    record.QueryPacketsReceived = counters.received;
    record.ReceivedPacketErrorDelayExceedsThreshold = counters.late;
    record.ReceivedPacketErrorProbeFull = counters.duplicate;
    record.ReceivedPacketErrorProbeNotStarted = counters.unknown;
    record.LivenessDetectionMissedCount = counters.liveness_missed;
    return record;
}

namespace {

// Records that are nothing but 64-bit counters.
template <class Counters>
void add_all(const Counters &from, Counters *to) {
    static_assert(sizeof(Counters) % sizeof(std::uint64_t) == 0 && std::is_trivially_copyable_v<Counters>);
    constexpr std::size_t COUNT = sizeof(Counters) / sizeof(std::uint64_t);
    std::uint64_t terms[COUNT];
    std::uint64_t sums[COUNT];
    std::memcpy(terms, &from, sizeof from);
    std::memcpy(sums, to, sizeof *to);
    for (std::size_t index = 0; index < COUNT; ++index) {
        sums[index] += terms[index];
    }
    std::memcpy(to, sums, sizeof *to);
}

}  // namespace

void add_counters(const pm_delay_counters_info_parcel &from, pm_delay_counters_info_parcel *to) {
    add_all(from.GenericCounters, &to->GenericCounters);
    if (from.ExclusiveCounters.TransportType == PM_TRANSPORT_INTERFACE) {
        add_all(from.ExclusiveCounters.InterfaceExclusiveCounters, &to->ExclusiveCounters.InterfaceExclusiveCounters);
    } else {
        add_all(from.ExclusiveCounters.EndpointExclusiveCounters, &to->ExclusiveCounters.EndpointExclusiveCounters);
    }
}

void add_counters(const pm_endpoint_liveness_counters_info_parcel &from,
                  pm_endpoint_liveness_counters_info_parcel *to) {
    add_all(from, to);
}

pm_scb_parcel record_delay_session(const session_entry &entry, const moment &now, record_arena *arena) {
    const delay_session &session = delay_of(entry);
    const advertiser &adverts = session.advertiser();
    pm_scb_parcel record{};
    record.SessionId = entry.id();
    record.TraceId = entry.id();
    record.TransportType = entry.plan.transport();
    record.MeasurementType = PM_MEASUREMENT_DELAY;
    record.ProfileName = arena->text(entry.plan.profile_name);
    record.ProfileKey = record_profile_key(entry.plan, arena);
    record.CurrentProbe = record_current_probe(entry, now);
    record.ProbeHistory = record_list<pm_scb_sample_parcel>(session.samples(), arena, [](const delay_sample &sample) {
        return pm_scb_sample_parcel{sample.delay_nsec, sample.arrival_msec};
    });
    record.SessionCounters = record_delay_counters(entry);
    record.PeriodicAdvertisementIntervalInSec = session.profile().effective_periodic_interval_sec();
    record.LastAdvertisementInformation = record_last_advertisement(adverts.last());
    record.NextAdvertisementInformation = {adverts.computations_left(), record_values(adverts.interval_values()),
                                           adverts.rolling_average()};
    if (entry.request_ttl != 0) {
        record.ResponderAddress = arena->make<pm_record_address>();
        *record.ResponderAddress = record_address(entry.plan.address());
        record.QueryNumberOfHops = arena->make<std::uint8_t>();
        *record.QueryNumberOfHops = static_cast<std::uint8_t>(255 - entry.request_ttl);
    }
    return record;
}

pm_liveness_state_info_parcel record_liveness_state(const session_entry &entry) {
    const liveness_session &session = liveness_of(entry);
    return {session.is_up(), session.missed_in_a_row(), session.last_change_msec()};
}

pm_scb_probe_session_parcel record_probe_session(const session_entry &entry, const moment &now, record_arena *arena) {
    pm_scb_probe_session_parcel record{};
    record.SessionId = entry.id();
    record.TraceId = entry.id();
    record.ProfileName = arena->text(entry.plan.profile_name);
    record.ProfileKey = record_profile_key(entry.plan, arena);
    record.ProbeType = PM_PROBE_PATH_ASSURANCE;
    record.ProbeNotRunningReason = entry.shown_reason();
    record.TXInterval = entry.plan.tx_interval_usec;
    record.TXIntervalIsStretched = entry.plan.stretched;
    record.NextPacketSentTimeRemainingInMillisec = msec_until(entry.run->next_send(), now);
    return record;
}

pm_history_info record_probe_history(const session_entry &entry, record_arena *arena) {
    pm_history_info info{};
    info.HistoryType = PM_HISTORY_DM_PROBE;
    info.ProbeHistory.ProbeHistoryList =
        record_list<pm_probe_sample_parcel>(delay_of(entry).probes(), arena, [](const probe_sample &probe) {
            return pm_probe_sample_parcel{probe.start_msec, probe.sent, probe.received, record_values(probe.values)};
        });
    return info;
}

pm_history_info record_aggregated_history(const session_entry &entry, record_arena *arena) {
    pm_history_info info{};
    info.HistoryType = PM_HISTORY_DM_AGGREGATION;
    info.AggregatedHistory.AggregatedHistoryList =
        record_list<pm_aggr_sample_parcel>(delay_of(entry).advertiser().aggregated(), arena, [](const aggregate &each) {
            return pm_aggr_sample_parcel{each.time_msec, record_values(each.values)};
        });
    return info;
}

pm_history_info record_advertisement_history(const session_entry &entry, record_arena *arena) {
    pm_history_info info{};
    info.HistoryType = PM_HISTORY_DM_ADVERTISEMENT;
    info.AdvertisementHistory.AdvertisementHistoryList = record_list<pm_adv_sample_parcel>(
        delay_of(entry).advertiser().advertised(), arena, [](const advertisement &each) {
            return pm_adv_sample_parcel{each.time_msec, each.reason, record_values(each.values)};
        });
    return info;
}

pm_history_info record_liveness_history(const session_entry &entry, record_arena *arena) {
    pm_history_info info{};
    info.HistoryType = PM_HISTORY_LIVENESS;
    info.LivenessHistory.LivenessHisotryList =
        record_list<pm_live_sample_parcel>(liveness_of(entry).changes(), arena, [](const liveness_change &each) {
            return pm_live_sample_parcel{each.time_msec, each.is_up, 0, 0};
        });
    return info;
}

}  // namespace probed
