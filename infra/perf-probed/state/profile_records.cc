// SPDX-License-Identifier: Apache-2.0
// Profiles, and who may send what to whom.
#include <cstdlib>

#include "perf-probed/service/session_plan.h"
#include "perf-probed/state/node_records.h"
#include "perf-probed/state/session_records.h"
#include "platform/opstore.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace probed {
namespace {

template <class T>
T *optional(T value, record_arena *arena) {
    T *const kept = arena->make<T>();
    *kept = value;
    return kept;
}

void fill_checks(const advertisement_settings &from, pm_delay_advertisement_threshold_crossing_check_parcel *to) {
    *to = {from.check_average, from.check_minimum, from.check_maximum};
}

// When values are advertised, which profiles of delay and of loss have alike.
template <class Profile>
void fill_changes(const advertisement_settings &settings, Profile *to) {
    to->PeriodicAdvertisementEnabled = settings.periodic_enabled;
    to->PeriodicAdvertisementInterval = settings.periodic_interval_sec;
    to->PeriodicAdvertisementThreshold = settings.periodic_threshold_percent;
    to->PeriodicAdvertisementMinimumChange = settings.periodic_minimum_change_usec;
    to->AcceleratedAdvertisementEnabled = settings.accelerated_enabled;
    to->AcceleratedAdvertisementThreshold = settings.accelerated_threshold_percent;
    to->AcceleratedAdvertisementMinimumChange = settings.accelerated_minimum_change_usec;
}

void fill_advertisement(const delay_profile &from, pm_delay_transport_profile_parcel *to) {
    const advertisement_settings &settings = from.advertisement;
    const std::uint32_t effective = from.effective_periodic_interval_sec();
    fill_changes(settings, to);
    to->PeriodicAdvertisementIntervalEffective = effective;
    to->PeriodicAdvertisementIntervalEffectiveEndpoint = effective;
    to->PeriodicAdvertisementIntervalEffectiveInterface = effective;
    to->AcceleratedAdvertisementUpperBound = settings.accelerated_upper_bound_usec;
    to->AdvertisementLoggingDelayExceededEnabled = settings.log_exceeded;
    to->AdvertisementThresholdCheckAverageDelay = settings.check_average;
    to->AdvertisementThresholdCheckMinimumDelay = settings.check_minimum;
    to->AdvertisementThresholdCheckMaximumDelay = settings.check_maximum;
    fill_checks(settings, &to->AdvertisementCheckEndpoint);
    fill_checks(settings, &to->AdvertisementCheckInterface);
    to->AnomalyCheckAdvertisementEnabled = settings.anomaly_enabled;
    to->AnomalyCheckAdvertisementUpperBound = settings.anomaly_upper_usec;
    to->AnomalyCheckAdvertisementLowerBound = settings.anomaly_lower_usec;
}

std::uint32_t stretched(std::uint32_t interval_usec, const node_view &of) {
    return static_cast<std::uint32_t>(std::uint64_t{interval_usec} * of.sender.budget().stretch_percent / 100);
}

void fill(const delay_profile &from, const node_view &of, record_arena *arena, pm_delay_transport_profile_parcel *to) {
    const std::uint32_t effective_usec = stretched(from.tx_interval_usec, of);
    const std::uint32_t packets = from.packets_per_computation(effective_usec);
    to->ProbeComputationInterval = from.computation_interval_sec;
    to->ProbeComputationIntervalEffective = from.computation_interval_sec;
    to->ProbeComputationIntervalEffectiveEndpoint = from.computation_interval_sec;
    to->ProbeComputationIntervalEffectiveInterface = from.computation_interval_sec;
    to->TOS_DSCPValue = from.dscp;
    to->BurstInterval = optional(from.tx_interval_usec / 1000, arena);
    to->BurstIntervalEffective = optional(effective_usec / 1000, arena);
    to->TXInterval = optional(from.tx_interval_usec, arena);
    to->TXIntervalEffectiveEndpoint = effective_usec;
    to->TXIntervalEffectiveInterface = effective_usec;
    to->BurstCount = packets;
    to->PacketsPerComputationIntervalEndpoint = packets;
    to->PacketsPerComputationIntervalInterface = packets;
    to->DelayMeasurementMode = from.mode;
    to->MeasurementModeEndpoint = from.mode;
    to->MeasurementModeInterface = from.mode;
    to->MeasurementModeSRPolicy = PM_DELAY_MODE_NOT_SET;
    to->MeasurementModeRSVP_TE = PM_DELAY_MODE_NOT_SET;
    to->EncapMode = PM_ENCAP_UDP;
    to->PayloadType = PM_PAYLOAD_TWAMP_LIGHT;
    to->DestinationSweepingAddress = record_address({});
    fill_advertisement(from, to);
}

void fill(const loss_profile &from, pm_loss_transport_profile_parcel *to) {
    to->ProbeInterval = from.computation_interval_sec;
    to->EncapMode = PM_ENCAP_UDP;
    fill_changes(from.advertisement, to);
    to->EffectivePeriodicAdvertisementInterval = from.effective_periodic_interval_sec();
}

void fill(const liveness_profile &from, const node_view &of, record_arena *arena,
          pm_liveness_transport_profile_parcel *to) {
    const std::uint32_t effective_usec = stretched(from.tx_interval_usec, of);
    to->TOS_DSCPValue = from.dscp;
    to->BurstInterval = optional(from.tx_interval_usec / 1000, arena);
    to->BurstIntervalEffective = optional(effective_usec / 1000, arena);
    to->TXInterval = optional(from.tx_interval_usec, arena);
    to->TXIntervalEffectiveEndpoint = effective_usec;
    to->DelayMeasurementMode = PM_DELAY_MODE_TWO_WAY;
    to->PayloadType = PM_PAYLOAD_TWAMP_LIGHT;
    to->EncapMode = PM_ENCAP_UDP;
    to->DestinationSweepingAddress = record_address({});
    to->LivenessDetection = {from.multiplier, from.log_state_change};
    to->LivenessDetectionConfig.TransportType = PM_TRANSPORT_ENDPOINT;
    to->LivenessDetectionConfig.EpLivenessDetection = to->LivenessDetection;
}

void fill(const probe_profile &from, const node_view &of, record_arena *arena, pm_probe_transport_profile_parcel *to) {
    to->TXInterval = optional(from.tx_interval_usec, arena);
    to->TXIntervalEndpointEffective = optional(stretched(from.tx_interval_usec, of), arena);
    to->HopLimit = from.hop_limit;
    to->TrafficClass = arena->array<std::uint32_t>(from.traffic_classes.size());
    for (std::size_t index = 0; index < from.traffic_classes.size(); ++index) {
        to->TrafficClass.elements[index] = from.traffic_classes[index];
    }
}

// Named profiles serve endpoints and interfaces, but for those of probes.
pm_named_profile *add_named(const std::string &name, pm_measurement_type_e kind, snapshot *out) {
    const pm_transport_type_e transport = kind == PM_MEASUREMENT_PROBE ? PM_TRANSPORT_ENDPOINT : PM_TRANSPORT_GENERIC;
    char *encoded = nullptr;
    std::size_t length = 0;
    std::string component = name;
    if (opstore_string_encode(name.c_str(), &encoded, &length) == ERRCODE_SUCCESS) {
        component = encoded;
    }
    std::free(encoded);
    auto *const record = out->add_main<pm_name_profile_parcel>(
        "name-profile/0x" + std::to_string(kind) + "/0x" + std::to_string(transport) + "/" + component,
        pm_name_profile_parcel_descriptor());
    record->Name = out->arena.text(name);
    record->TransportType = transport;
    record->Profile.MeasurementType = kind;
    return &record->Profile;
}

pm_prefixes_info record_prefixes(const std::vector<ip_prefix> &prefixes, ip_family family, record_arena *arena) {
    pm_prefixes_info info{};
    for (const ip_prefix &each : prefixes) {
        info.PrefixList.count += each.address.family == family ? 1 : 0;
    }
    info.PrefixList = arena->array<pm_prefix_entry_parcel>(info.PrefixList.count);
    std::size_t place = 0;
    for (const ip_prefix &each : prefixes) {
        if (each.address.family == family) {
            pm_prefix_entry_parcel &entry = info.PrefixList.elements[place++];
            entry.PrefixAddress = record_address(each.address);
            entry.PrefixLength = each.length;
            entry.Configured = true;
            entry.ReferenceCounters.ConfiguredCounter = 1;
        }
    }
    info.ReferenceCounters.ConfiguredCounter = info.PrefixList.count;
    return info;
}

// Null when no listener is of this kind.
pm_udp_port_rxpol_prefix_status *record_listeners(const node_view &of, bool by_default, record_arena *arena) {
    pm_udp_port_rxpol_prefix_status *status = nullptr;
    for (const open_listener &each : of.listeners) {
        if (each.by_default != by_default) {
            continue;
        }
        status = status != nullptr ? status : arena->make<pm_udp_port_rxpol_prefix_status>();
        status->PortNumber = each.port;
        (each.family == ip_family::ipv4 ? status->IPv4Status : status->IPv6Status) = {each.port, each.opened_msec};
    }
    return status;
}

pm_udp_port_rxpol_prefix_status *record_senders(const node_view &of, record_arena *arena) {
    pm_udp_port_rxpol_prefix_status *status = nullptr;
    for (const sender_socket &each : of.sender.sockets()) {
        if (!each.socket.is_open()) {
            continue;
        }
        status = status != nullptr ? status : arena->make<pm_udp_port_rxpol_prefix_status>();
        status->PortNumber = status->PortNumber != 0 ? status->PortNumber : each.socket.port();
        auto &family = each.family == ip_family::ipv4 ? status->IPv4Status : status->IPv6Status;
        if (family.PortNumber == 0) {
            family = {each.socket.port(), each.opened_msec};
        }
    }
    return status;
}

}  // namespace

void add_profiles(const node_view &of, snapshot *out) {
    const config &settings = of.settings;
    record_arena *const arena = &out->arena;
    auto *const defaults = out->add_main<pm_profile_parcel>("profile", pm_profile_parcel_descriptor());
    fill(settings.interface_delay, of, arena, &defaults->DelayProfile.InterfaceDelayProfile);
    fill(settings.interface_loss, &defaults->LossProfile.InterfaceDelayProfile);
    fill(settings.endpoint_delay, of, arena, &defaults->DelayProfile.Endpoint_DelayProfile);
    fill(settings.endpoint_liveness, of, arena, &defaults->LivenessProfile.EndpointLivenessProfile);
    fill(settings.endpoint_probe, of, arena, &defaults->ProbeProfile.EndpointProbeProfile);
    defaults->DelayProfile.SRPolicyDelayProfile.DestinationSweepingAddress = record_address({});
    defaults->DelayProfile.RSVP_TEDelayProfile.DestinationSweepingAddress = record_address({});
    defaults->LivenessProfile.SRPolicyLivenessProfile.DestinationSweepingAddress = record_address({});
    for (const delay_profile &each : settings.delay_profiles) {
        fill(each, of, arena, &add_named(each.name, PM_MEASUREMENT_DELAY, out)->Delay);
    }
    for (const loss_profile &each : settings.loss_profiles) {
        fill(each, &add_named(each.name, PM_MEASUREMENT_LOSS, out)->Loss);
    }
    for (const liveness_profile &each : settings.liveness_profiles) {
        fill(each, of, arena, &add_named(each.name, PM_MEASUREMENT_LIVENESS, out)->Liveness);
    }
    for (const probe_profile &each : settings.probe_profiles) {
        fill(each, of, arena, &add_named(each.name, PM_MEASUREMENT_PROBE, out)->Probe);
    }
}

void add_prefixes(const node_view &of, snapshot *out) {
    record_arena *const arena = &out->arena;
    auto *const queriers =
        out->add_main<pm_querier_prefixes_summary>("allowed-querier/summary", pm_querier_prefixes_summary_descriptor());
    const std::vector<ip_prefix> &allowed = of.settings.reflector.allowed_queriers;
    queriers->IPv4PrefixInfo = record_prefixes(allowed, ip_family::ipv4, arena);
    queriers->IPv6PrefixInfo = record_prefixes(allowed, ip_family::ipv6, arena);
    queriers->ResponderUnAuthenticatedTwampDelayMeasurementDefaultPortStatus = record_listeners(of, true, arena);
    queriers->ResponderUnAuthenticatedTwampDelayMeasurementConfiguredPortStatus = record_listeners(of, false, arena);
    auto *const responders = out->add_main<pm_responder_prefixes_summary>("allowed-responder/summary",
                                                                          pm_responder_prefixes_summary_descriptor());
    responders->IPv4PrefixInfo = record_prefixes(of.settings.allowed_responders, ip_family::ipv4, arena);
    responders->IPv6PrefixInfo = record_prefixes(of.settings.allowed_responders, ip_family::ipv6, arena);
    responders->QuerierUnauthenticatedTwampDelayMeasurementPortStatus = record_senders(of, arena);
}

}  // namespace probed
