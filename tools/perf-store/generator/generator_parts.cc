// SPDX-License-Identifier: Apache-2.0
// Parts of records that several kinds of objects share.
#include "perf-store/generator/generator_parts.h"

namespace perf_store {

namespace {

constexpr std::uint32_t NSEC_PER_USEC = 1000;

// The counters that delay and liveness records have in common.
template <class Counters>
Counters liveness_counters(const session_state &session) {
    const pm_querier_delay_counters_parcel &from = session.counters;
    Counters to{};
    to.QueryPacketsSent = from.QueryPacketsSent;
    to.QueryPacketSentErrors = from.QueryPacketSentErrors;
    to.QueryPacketsReceived = from.QueryPacketsReceived;
    to.ReceivedPacketErrorNegativeDelay = from.ReceivedPacketErrorNegativeDelay;
    to.ReceivedPacketErrorDelayExceedsThreshold = from.ReceivedPacketErrorDelayExceedsThreshold;
    to.ProbesStarted = from.ProbesStarted;
    to.ProbesComplete = from.ProbesComplete;
    to.ProbesIncomplete = from.ProbesIncomplete;
    to.Advertisement = from.Advertisement;
    to.LivenessDetectionMissedCount = session.missed;
    return to;
}

}  // namespace

const char *gen_profile_name(const session_state &session) { return session.named_profile ? "gold" : ""; }

pm_profile_key_parcel gen_profile_key(const session_state &session) {
    pm_profile_key_parcel key{};
    key.ProfileIsSet = session.named_profile ? 1 : 0;
    key.MeasurementType = session.kind;
    key.Transport_type = session.transport;
    key.Name = session.named_profile ? "gold" : "default";
    return key;
}

pm_scb_probe_parcel gen_current_probe(const session_state &session) {
    pm_scb_probe_parcel probe{};
    probe.BurstInterval = GEN_BURST_INTERVAL_MSEC;
    probe.TXInterval = GEN_TX_INTERVAL_USEC;
    probe.ProbeNotRunningReason = session.reason;
    if (session.running()) {
        probe.ProbeStartTimeStamp = GEN_BASE_MSEC + GEN_PROBE_INTERVAL_MSEC;
        probe.NextProbeStartTimeRemainingInMillisec = 18250;
        probe.NextPacketSentTimeRemainingInMillisec = 250;
        probe.NumberOfPacketsSent = session.current_sent;
        probe.NumberOfPacketsReceived = session.current_received;
        probe.ProbeResults = session.current;
    }
    return probe;
}

pm_scb_probe_results_parcel gen_current_results(const session_state &session) {
    return {session.current, session.current_sent, session.current_received};
}

pm_scb_probe_results_parcel gen_last_results(const session_state &session) {
    return {session.last, session.last_sent, session.last_received};
}

parcel_array<pm_scb_sample_parcel> gen_samples(const session_state &session, item_memory *memory) {
    const bool measures = session.kind != PM_MEASUREMENT_LOSS;
    auto samples = memory->array<pm_scb_sample_parcel>(measures ? session.current_received : 0);
    random_source random = session.random;
    const std::uint64_t least = std::uint64_t{session.current.Minimum} * NSEC_PER_USEC;
    const std::uint32_t range = (session.current.Maximum - session.current.Minimum) * NSEC_PER_USEC;
    for (std::uint32_t i = 0; i < samples.count; ++i) {
        samples.elements[i].MeasurementValue = least + random.below(range + 1);
        samples.elements[i].QueryTimestamp =
            GEN_BASE_MSEC + GEN_PROBE_INTERVAL_MSEC + std::uint64_t{i} * GEN_BURST_INTERVAL_MSEC;
    }
    return samples;
}

pm_scb_last_advert_parcel gen_last_advertisement(const session_state &session) {
    pm_scb_last_advert_parcel last{};
    last.TimeOfAdvertisement = session.advertised_msec;
    last.AdvertisementReason = session.advertisement_reason;
    last.AdvertisedValues = session.advertised;
    return last;
}

pm_scb_next_advert_parcel gen_next_advertisement(const session_state &session) {
    pm_scb_next_advert_parcel next{};
    if (session.running() && session.kind == PM_MEASUREMENT_DELAY) {
        next.AdvertisementIntervalProbesRemaining = 2;
        next.AdvertisementIntervalValues = session.last;
        next.RollingAverage = session.last.Average;
    }
    return next;
}

pm_liveness_state_info_parcel gen_liveness(const session_state &session) {
    pm_liveness_state_info_parcel state{};
    state.SessionIsUp = session.is_up ? 1 : 0;
    state.MissCount = session.running() && session.is_liveness() && !session.is_up ? GEN_LIVENESS_MULTIPLIER : 0;
    state.LastSessionStateChangeTimestamp = session.changed_msec;
    return state;
}

pm_delay_counters_info_parcel gen_delay_counters(const session_state &session) {
    pm_delay_counters_info_parcel counters{};
    counters.GenericCounters = session.counters;
    pm_exclusive_counters &own = counters.ExclusiveCounters;
    own.TransportType = session.transport;
    switch (session.transport) {
    case PM_TRANSPORT_INTERFACE: own.InterfaceExclusiveCounters = session.interface_errors; break;
    case PM_TRANSPORT_SR_POLICY: own.SRPolicyExclusiveCounters = {session.missed}; break;
    case PM_TRANSPORT_ENDPOINT: own.EndpointExclusiveCounters = {session.label_missing, session.missed}; break;
    case PM_TRANSPORT_RSVP_TE:
    case PM_TRANSPORT_GENERIC: break;
    }
    return counters;
}

pm_srpolicy_liveness_counters_info_parcel gen_srpolicy_liveness_counters(const session_state &session) {
    return liveness_counters<pm_srpolicy_liveness_counters_info_parcel>(session);
}

pm_endpoint_liveness_counters_info_parcel gen_endpoint_liveness_counters(const session_state &session) {
    auto counters = liveness_counters<pm_endpoint_liveness_counters_info_parcel>(session);
    counters.QueryPacketsSentErrorSlLabelMissing = session.label_missing;
    return counters;
}

pm_scb_parcel gen_control_block(const session_state &session, item_memory *memory) {
    pm_scb_parcel block{};
    block.SessionId = session.id;
    block.TraceId = gen_trace_id(session);
    block.TransportType = session.transport;
    block.MeasurementType = session.kind;
    block.ProfileName = gen_profile_name(session);
    block.ProfileKey = gen_profile_key(session);
    block.CurrentProbe = gen_current_probe(session);
    block.ProbeHistory = gen_samples(session, memory);
    block.SessionCounters = gen_delay_counters(session);
    block.PeriodicAdvertisementIntervalInSec = gen_advertisement_interval(session);
    block.LastAdvertisementInformation = gen_last_advertisement(session);
    block.NextAdvertisementInformation = gen_next_advertisement(session);
    block.IsSrv6 = session.family == session_family::srv6 ? 1 : 0;
    return block;
}

std::uint32_t gen_trace_id(const session_state &session) { return session.id * 7; }

std::uint32_t gen_advertisement_interval(const session_state &session) {
    return session.is_liveness() ? 0 : GEN_ADVERTISEMENT_INTERVAL_SEC;
}

}  // namespace perf_store
