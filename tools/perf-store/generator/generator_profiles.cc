// SPDX-License-Identifier: Apache-2.0
// Profiles of every node: the default ones in one record, the named ones in a record each.
#include "paths/item_paths.h"
#include "perf-store/generator/generator.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

using path_grammar::place;

namespace {

constexpr std::uint8_t EXPEDITED_DSCP = 48;
constexpr std::uint32_t PROBE_INTERVAL_SEC = GEN_PROBE_INTERVAL_MSEC / 1000;
constexpr std::uint32_t THRESHOLD_PERCENT = 10;
constexpr std::uint32_t MINIMUM_CHANGE_USEC = 500;
constexpr std::uint32_t ACCELERATED_THRESHOLD_PERCENT = 20;

// A named profile and the sessions that use it.
struct named_profile {
    const char *name;
    pm_measurement_type_e kind;
    pm_transport_type_e transport;
};
constexpr named_profile NAMED_PROFILES[] = {
    {"gold", PM_MEASUREMENT_DELAY, PM_TRANSPORT_INTERFACE},   {"gold", PM_MEASUREMENT_DELAY, PM_TRANSPORT_RSVP_TE},
    {"gold", PM_MEASUREMENT_DELAY, PM_TRANSPORT_SR_POLICY},   {"gold", PM_MEASUREMENT_DELAY, PM_TRANSPORT_ENDPOINT},
    {"silver", PM_MEASUREMENT_DELAY, PM_TRANSPORT_SR_POLICY}, {"gold", PM_MEASUREMENT_LIVENESS, PM_TRANSPORT_SR_POLICY},
    {"gold", PM_MEASUREMENT_LIVENESS, PM_TRANSPORT_ENDPOINT},
};
constexpr std::string_view USED_PROFILE = "gold";

template <class Checks>
void check_average(Checks *checks) {
    checks->AdvertisementThresholdCheckAverageDelay = 1;
}

void fill_intervals(pm_delay_transport_profile_parcel *profile, item_memory *memory) {
    profile->ProbeComputationInterval = PROBE_INTERVAL_SEC;
    profile->ProbeComputationIntervalEffective = PROBE_INTERVAL_SEC;
    profile->ProbeComputationIntervalEffectiveSRPolicy = PROBE_INTERVAL_SEC;
    profile->ProbeComputationIntervalEffectiveEndpoint = PROBE_INTERVAL_SEC;
    profile->ProbeComputationIntervalEffectiveInterface = PROBE_INTERVAL_SEC;
    profile->ProbeComputationIntervalEffectiveRSVP_TE = PROBE_INTERVAL_SEC;
    profile->BurstInterval = memory->keep(GEN_BURST_INTERVAL_MSEC);
    profile->BurstIntervalEffective = memory->keep(GEN_BURST_INTERVAL_MSEC);
    profile->TXInterval = memory->keep(GEN_TX_INTERVAL_USEC);
    profile->TXIntervalEffectiveSRPolicy = GEN_TX_INTERVAL_USEC;
    profile->TXIntervalEffectiveEndpoint = GEN_TX_INTERVAL_USEC;
    profile->TXIntervalEffectiveInterface = GEN_TX_INTERVAL_USEC;
    profile->TXIntervalEffectiveRSVP_TE = GEN_TX_INTERVAL_USEC;
    profile->BurstCount = GEN_PACKETS_PER_PROBE;
    profile->PacketsPerComputationIntervalSRPolicy = GEN_PACKETS_PER_PROBE;
    profile->PacketsPerComputationIntervalEndpoint = GEN_PACKETS_PER_PROBE;
    profile->PacketsPerComputationIntervalInterface = GEN_PACKETS_PER_PROBE;
    profile->PacketsPerComputationIntervalRSVP_TE = GEN_PACKETS_PER_PROBE;
}

void fill_advertisement(pm_delay_transport_profile_parcel *profile) {
    profile->PeriodicAdvertisementEnabled = 1;
    profile->PeriodicAdvertisementInterval = GEN_ADVERTISEMENT_INTERVAL_SEC;
    profile->PeriodicAdvertisementIntervalEffective = GEN_ADVERTISEMENT_INTERVAL_SEC;
    profile->PeriodicAdvertisementIntervalEffectiveSRPolicy = GEN_ADVERTISEMENT_INTERVAL_SEC;
    profile->PeriodicAdvertisementIntervalEffectiveEndpoint = GEN_ADVERTISEMENT_INTERVAL_SEC;
    profile->PeriodicAdvertisementIntervalEffectiveInterface = GEN_ADVERTISEMENT_INTERVAL_SEC;
    profile->PeriodicAdvertisementIntervalEffectiveRSVP_TE = GEN_ADVERTISEMENT_INTERVAL_SEC;
    profile->PeriodicAdvertisementThreshold = THRESHOLD_PERCENT;
    profile->PeriodicAdvertisementMinimumChange = MINIMUM_CHANGE_USEC;
    profile->AcceleratedAdvertisementEnabled = 1;
    profile->AcceleratedAdvertisementThreshold = ACCELERATED_THRESHOLD_PERCENT;
    profile->AcceleratedAdvertisementMinimumChange = MINIMUM_CHANGE_USEC;
    check_average(profile);
    check_average(&profile->AdvertisementCheckSRPolicy);
    check_average(&profile->AdvertisementCheckEndpoint);
    check_average(&profile->AdvertisementCheckInterface);
    check_average(&profile->AdvertisementCheckRSVP_TE);
}

std::uint32_t **delay_count(pm_delay_transport_profile_parcel *profile, pm_transport_type_e transport) {
    switch (transport) {
    case PM_TRANSPORT_RSVP_TE: return &profile->SessionCountRSVP_TE;
    case PM_TRANSPORT_SR_POLICY: return &profile->SessionCountSRPolicy;
    case PM_TRANSPORT_ENDPOINT: return &profile->SessionCountEndpoint;
    case PM_TRANSPORT_INTERFACE:
    case PM_TRANSPORT_GENERIC: break;
    }
    return &profile->SessionCountInterface;
}

pm_delay_transport_profile_parcel delay_profile(pm_transport_type_e transport, std::uint32_t sessions,
                                                item_memory *memory) {
    pm_delay_transport_profile_parcel profile{};
    fill_intervals(&profile, memory);
    fill_advertisement(&profile);
    profile.TOS_DSCPValue = EXPEDITED_DSCP;
    profile.DelayMeasurementMode = PM_DELAY_MODE_TWO_WAY;
    profile.MeasurementModeSRPolicy = PM_DELAY_MODE_TWO_WAY;
    profile.MeasurementModeEndpoint = PM_DELAY_MODE_TWO_WAY;
    profile.MeasurementModeInterface = PM_DELAY_MODE_TWO_WAY;
    profile.MeasurementModeRSVP_TE = PM_DELAY_MODE_TWO_WAY;
    profile.EncapMode = PM_ENCAP_UDP;
    profile.PayloadType = PM_PAYLOAD_TWAMP_LIGHT;
    profile.DestinationSweepingAddress = gen_no_address();
    profile.SessionCount = memory->keep(sessions);
    *delay_count(&profile, transport) = memory->keep(sessions);
    return profile;
}

pm_liveness_transport_profile_parcel liveness_profile(pm_transport_type_e transport, std::uint32_t sessions,
                                                      item_memory *memory) {
    const bool is_policy = transport == PM_TRANSPORT_SR_POLICY;
    pm_liveness_transport_profile_parcel profile{};
    profile.TOS_DSCPValue = EXPEDITED_DSCP;
    profile.BurstInterval = memory->keep(GEN_BURST_INTERVAL_MSEC);
    profile.BurstIntervalEffective = memory->keep(GEN_BURST_INTERVAL_MSEC);
    profile.TXInterval = memory->keep(GEN_TX_INTERVAL_USEC);
    profile.TXIntervalEffectiveSRPolicy = is_policy ? memory->keep(GEN_TX_INTERVAL_USEC) : nullptr;
    profile.TXIntervalEffectiveEndpoint = is_policy ? 0 : GEN_TX_INTERVAL_USEC;
    profile.DelayMeasurementMode = PM_DELAY_MODE_LOOPBACK;
    profile.PayloadType = PM_PAYLOAD_TWAMP_LIGHT;
    profile.EncapMode = PM_ENCAP_UDP;
    profile.DestinationSweepingAddress = gen_no_address();
    profile.LivenessDetection = {GEN_LIVENESS_MULTIPLIER, 1};
    profile.LivenessDetectionConfig.TransportType = transport;
    profile.LivenessDetectionConfig.SRPolicyLivenessDetection = profile.LivenessDetection;  // both arms look alike
    profile.SessionCount = memory->keep(sessions);
    (is_policy ? profile.SessionCountSRPolicy : profile.SessionCountEndpoint) = memory->keep(sessions);
    return profile;
}

pm_loss_transport_profile_parcel loss_profile() {
    pm_loss_transport_profile_parcel profile{};
    profile.ProbeInterval = PROBE_INTERVAL_SEC;
    profile.EncapMode = PM_ENCAP_UDP;
    profile.PeriodicAdvertisementEnabled = 1;
    profile.PeriodicAdvertisementInterval = GEN_ADVERTISEMENT_INTERVAL_SEC;
    profile.EffectivePeriodicAdvertisementInterval = GEN_ADVERTISEMENT_INTERVAL_SEC;
    profile.PeriodicAdvertisementThreshold = THRESHOLD_PERCENT;
    return profile;
}

// Sessions of a node that use the default profile.
std::uint32_t unnamed(const gen_node &node, pm_measurement_type_e kind, pm_transport_type_e transport) {
    const session_totals &totals = node.of(kind, transport);
    return totals.sessions - totals.named_profile;
}

void write_default(generation *set, const gen_node &node) {
    item_memory *memory = &set->memory;
    const auto delay = [&](pm_transport_type_e transport) {
        return delay_profile(transport, unnamed(node, PM_MEASUREMENT_DELAY, transport), memory);
    };
    const auto liveness = [&](pm_transport_type_e transport) {
        return liveness_profile(transport, unnamed(node, PM_MEASUREMENT_LIVENESS, transport), memory);
    };
    auto *record = memory->make<pm_profile_parcel>();
    record->DelayProfile.InterfaceDelayProfile = delay(PM_TRANSPORT_INTERFACE);
    record->DelayProfile.SRPolicyDelayProfile = delay(PM_TRANSPORT_SR_POLICY);
    record->DelayProfile.RSVP_TEDelayProfile = delay(PM_TRANSPORT_RSVP_TE);
    record->DelayProfile.Endpoint_DelayProfile = delay(PM_TRANSPORT_ENDPOINT);
    record->LossProfile.InterfaceDelayProfile = loss_profile();
    record->LivenessProfile.SRPolicyLivenessProfile = liveness(PM_TRANSPORT_SR_POLICY);
    record->LivenessProfile.EndpointLivenessProfile = liveness(PM_TRANSPORT_ENDPOINT);
    record->ProbeProfile.EndpointProbeProfile.TXInterval = memory->keep(GEN_TX_INTERVAL_USEC);
    record->ProbeProfile.EndpointProbeProfile.TXIntervalEndpointEffective = memory->keep(GEN_TX_INTERVAL_USEC);
    set->lines.item(node.id, path_of(place::profile), pm_profile_parcel_descriptor(), record);
}

void write_named(generation *set, const gen_node &node, const named_profile &profile) {
    const bool is_used = profile.name == USED_PROFILE;
    const std::uint32_t sessions = is_used ? node.of(profile.kind, profile.transport).named_profile : 0;
    auto *record = set->memory.make<pm_name_profile_parcel>();
    record->Name = profile.name;
    record->TransportType = profile.transport;
    record->Profile.MeasurementType = profile.kind;
    if (profile.kind == PM_MEASUREMENT_LIVENESS) {
        record->Profile.Liveness = liveness_profile(profile.transport, sessions, &set->memory);
    } else {
        record->Profile.Delay = delay_profile(profile.transport, sessions, &set->memory);
    }
    const std::string path =
        gen_text(path_of(place::name_profile), "0x", gen_hexadecimal(static_cast<std::uint32_t>(profile.kind)), "/0x",
                 gen_hexadecimal(static_cast<std::uint32_t>(profile.transport)), "/", profile.name);
    set->lines.item(node.id, path, pm_name_profile_parcel_descriptor(), record);
}

}  // namespace

void gen_profiles(generation *set) {
    for (const gen_node &node : set->nodes) {
        set->memory.reset();
        write_default(set, node);
        for (const named_profile &profile : NAMED_PROFILES) {
            write_named(set, node, profile);
        }
    }
}

}  // namespace perf_store
