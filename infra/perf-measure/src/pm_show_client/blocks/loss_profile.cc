// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/loss_profile.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/profile_lines.h"
#include "pm_utils/measurement_names.h"

namespace {

// Not as delay profiles have it: another spelling, and no unit.
void print_changes(std::uint32_t threshold_percent, std::uint32_t minimum_change) {
    pm_lines_at(6).percent("Threshold", threshold_percent);
    pm_lines_at(6).number("Minimum-Change", minimum_change);
}

}  // namespace

void pm_show_loss_profile(const pm_loss_transport_profile_parcel &profile) {
    pm_profile_heading();
    pm_lines_at(4).unit("Probe interval", profile.ProbeInterval, "seconds");
    pm_lines_at(4).text("Encap mode", pm_udp_mpls_str(profile.EncapMode));
    pm_lines_at(4).enabled("Periodic advertisement", profile.PeriodicAdvertisementEnabled);
    if (profile.PeriodicAdvertisementEnabled) {
        pm_profile_interval(6, "Interval", profile.PeriodicAdvertisementInterval,
                            profile.EffectivePeriodicAdvertisementInterval, "sec");
        print_changes(profile.PeriodicAdvertisementThreshold, profile.PeriodicAdvertisementMinimumChange);
    }
    pm_profile_accelerated(profile.AcceleratedAdvertisementEnabled);
    if (profile.AcceleratedAdvertisementEnabled) {
        print_changes(profile.AcceleratedAdvertisementThreshold, profile.AcceleratedAdvertisementMinimumChange);
    }
}
