// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/delay_profile.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/profile_lines.h"
#include "pm_utils/measurement_names.h"

namespace {

// Numbers of pm_threshold_check_type_str().
constexpr std::int32_t CHECK_AVERAGE = 0;
constexpr std::int32_t CHECK_MINIMUM = 1;
constexpr std::int32_t CHECK_MAXIMUM = 2;

// Anomaly bounds, in microseconds, that mean bounds never set.
constexpr std::uint32_t UPPER_BOUND_NOT_SET = 200001;
constexpr std::uint32_t LOWER_BOUND_NOT_SET = 0;

// What a value of a generic profile comes to for three of its transports; RSVP-TE is not shown. The
// groups of lines differ in "SR policy" and "SR Policy", "interface" and "Interface", on purpose.
void print_effective(int indent, std::uint32_t srpolicy, std::uint32_t endpoint, std::uint32_t interface,
                     pm_text unit) {
    pm_lines_at(indent).unit("Effective for SR policy", srpolicy, unit);
    pm_lines_at(indent).unit("Effective for Endpoint", endpoint, unit);
    pm_lines_at(indent).unit("Effective for interface", interface, unit);
}

// How it is measured ------------------------------------------------------------------------------

void print_mode(const pm_delay_transport_profile_parcel &profile, bool generic) {
    if (!generic) {
        pm_lines_at(4).text("Measurement mode", pm_delay_mode_str(profile.DelayMeasurementMode));
        return;
    }
    pm_print_heading(4, "Measurement mode");
    pm_lines_at(6).text("SR Policy", pm_delay_mode_str(profile.MeasurementModeSRPolicy));
    pm_lines_at(6).text("Endpoint", pm_delay_mode_str(profile.MeasurementModeEndpoint));
    pm_lines_at(6).text("Interface", pm_delay_mode_str(profile.MeasurementModeInterface));
}

void print_protocol(const pm_delay_transport_profile_parcel &profile) {
    pm_lines_at(4).text("Protocol type", pm_protocol_name_str(profile.PayloadType, profile.EncapMode));
    pm_lines_at(4).text("Encap mode", pm_udp_mpls_str(profile.EncapMode));
    pm_print_heading(4, "Type of service");
    pm_lines_at(6).number("PM-MPLS traffic class", profile.TOSTrafficClassValue);
    pm_lines_at(6).number("TWAMP-light DSCP", profile.TOS_DSCPValue);
}

// Intervals ---------------------------------------------------------------------------------------

// 0 for a transport without a value of its own.
std::uint32_t effective_tx_interval(const pm_delay_transport_profile_parcel &profile, pm_transport_type_e transport) {
    switch (transport) {
    case PM_TRANSPORT_INTERFACE: return profile.TXIntervalEffectiveInterface;
    case PM_TRANSPORT_RSVP_TE: return profile.TXIntervalEffectiveRSVP_TE;
    case PM_TRANSPORT_SR_POLICY: return profile.TXIntervalEffectiveSRPolicy;
    case PM_TRANSPORT_ENDPOINT: return profile.TXIntervalEffectiveEndpoint;
    default: return 0;
    }
}

void print_intervals(const pm_delay_transport_profile_parcel &profile, pm_transport_type_e transport) {
    pm_profile_interval(4, "Probe computation interval", profile.ProbeComputationInterval,
                        profile.ProbeComputationIntervalEffective, "seconds");
    pm_profile_tx_intervals(profile, effective_tx_interval(profile, transport));
    pm_lines_at(4).number("Packets per computation interval", profile.BurstCount);
}

void print_generic_intervals(const pm_delay_transport_profile_parcel &profile) {
    pm_lines_at(4).unit("Probe computation interval", profile.ProbeComputationInterval, "seconds");
    print_effective(6, profile.ProbeComputationIntervalEffectiveSRPolicy,
                    profile.ProbeComputationIntervalEffectiveEndpoint,
                    profile.ProbeComputationIntervalEffectiveInterface, "seconds");
    if (profile.TXInterval != nullptr) {
        pm_lines_at(4).unit("Tx interval", *profile.TXInterval, "uSec");
        print_effective(6, profile.TXIntervalEffectiveSRPolicy, profile.TXIntervalEffectiveEndpoint,
                        profile.TXIntervalEffectiveInterface, "uSec");
    }
    pm_print_heading(4, "Packets per computation interval");
    pm_lines_at(6).number("SR policy", profile.PacketsPerComputationIntervalSRPolicy);
    pm_lines_at(6).number("Endpoint", profile.PacketsPerComputationIntervalEndpoint);
    pm_lines_at(6).number("Interface", profile.PacketsPerComputationIntervalInterface);
}

// Advertisement -----------------------------------------------------------------------------------

void print_changes(std::uint32_t threshold_percent, std::uint32_t minimum_change_usec) {
    pm_lines_at(6).percent("Threshold", threshold_percent);
    pm_lines_at(6).unit("Minimum-change", minimum_change_usec, "uSec");
}

void print_periodic(const pm_delay_transport_profile_parcel &profile, bool generic) {
    pm_lines_at(4).enabled("Periodic advertisement", profile.PeriodicAdvertisementEnabled);
    if (!profile.PeriodicAdvertisementEnabled) {
        return;
    }
    if (generic) {
        pm_lines_at(6).unit("Interval", profile.PeriodicAdvertisementInterval, "sec");
        print_effective(8, profile.PeriodicAdvertisementIntervalEffectiveSRPolicy,
                        profile.PeriodicAdvertisementIntervalEffectiveEndpoint,
                        profile.PeriodicAdvertisementIntervalEffectiveInterface, "sec");
    } else {
        pm_profile_interval(6, "Interval", profile.PeriodicAdvertisementInterval,
                            profile.PeriodicAdvertisementIntervalEffective, "sec");
    }
    print_changes(profile.PeriodicAdvertisementThreshold, profile.PeriodicAdvertisementMinimumChange);
}

void print_accelerated(const pm_delay_transport_profile_parcel &profile) {
    pm_profile_accelerated(profile.AcceleratedAdvertisementEnabled);
    if (profile.AcceleratedAdvertisementEnabled) {
        print_changes(profile.AcceleratedAdvertisementThreshold, profile.AcceleratedAdvertisementMinimumChange);
    }
}

void print_anomaly(const pm_delay_transport_profile_parcel &profile) {
    const std::uint32_t upper_usec = profile.AnomalyCheckAdvertisementUpperBound;
    const std::uint32_t lower_usec = profile.AnomalyCheckAdvertisementLowerBound;
    pm_lines_at(4).enabled("Anomaly advertisement", profile.AnomalyCheckAdvertisementEnabled);
    if (!profile.AnomalyCheckAdvertisementEnabled) {
        return;
    }
    if (upper_usec == UPPER_BOUND_NOT_SET && lower_usec == LOWER_BOUND_NOT_SET) {
        pm_lines_at(6).text("Upper Bound", "Not set");
        pm_lines_at(6).text("Lower Bound", "Not set");
    } else {
        pm_lines_at(6).unit("Upper Bound", upper_usec, "uSec");
        pm_lines_at(6).unit("Lower Bound", lower_usec, "uSec");
    }
}

// The names of the checks that are on, without anything between them. `Checks` is any record that
// holds the three flags.
template <class Checks>
void print_checks(int indent, pm_text label, const Checks &checks) {
    const auto name = [](bool on, std::int32_t check) { return on ? pm_threshold_check_type_str(check) : ""; };
    pm_print_indented<"%-*s: %s%s%s\n">(indent, PM_COLON - indent, label,
                                        name(checks.AdvertisementThresholdCheckAverageDelay, CHECK_AVERAGE),
                                        name(checks.AdvertisementThresholdCheckMinimumDelay, CHECK_MINIMUM),
                                        name(checks.AdvertisementThresholdCheckMaximumDelay, CHECK_MAXIMUM));
}

void print_threshold_checks(const pm_delay_transport_profile_parcel &profile, bool generic) {
    if (!generic) {
        print_checks(4, "Threshold crossing check", profile);
        return;
    }
    pm_print_heading(4, "Threshold crossing check");
    print_checks(6, "SR policy", profile.AdvertisementCheckSRPolicy);
    print_checks(6, "Endpoint", profile.AdvertisementCheckEndpoint);
    print_checks(6, "Interface", profile.AdvertisementCheckInterface);
}

void print_advertisement(const pm_delay_transport_profile_parcel &profile, bool generic) {
    print_periodic(profile, generic);
    print_accelerated(profile);
    print_anomaly(profile);
    pm_print_heading(4, "Advertisement logging");
    pm_profile_enabled_default(6, "Delay exceeded", profile.AdvertisementLoggingDelayExceededEnabled);
    print_threshold_checks(profile, generic);
}

// Sessions ----------------------------------------------------------------------------------------

void print_session_counts(const pm_delay_transport_profile_parcel &profile, pm_transport_type_e transport) {
    pm_profile_cpu_sessions(profile, transport);
    if (transport == PM_TRANSPORT_GENERIC) {
        pm_profile_optional(6, "Interface", profile.SessionCountInterface);
        pm_profile_optional(6, "RSVP TE", profile.SessionCountRSVP_TE);
    }
}

}  // namespace

void pm_show_delay_profile(const pm_delay_transport_profile_parcel &profile, pm_transport_type_e transport) {
    const bool generic = transport == PM_TRANSPORT_GENERIC;
    pm_profile_heading();
    print_mode(profile, generic);
    print_protocol(profile);
    if (generic) {
        print_generic_intervals(profile);
    } else {
        print_intervals(profile, transport);
    }
    print_advertisement(profile, generic);
    pm_profile_enabled_default(4, "Router alert", profile.RouterAlert);
    pm_profile_sweeping(profile.DestinationSweepingModeEnabled, profile.DestinationSweepingAddress,
                        profile.DestinationSweepingRange);
    print_session_counts(profile, transport);
}
