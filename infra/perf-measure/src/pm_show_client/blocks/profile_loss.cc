// Loss profiles. See profile_blocks.h.
#include "pm_show_client/blocks/profile_blocks.h"
#include "pm_show_client/blocks/profile_lines.h"
#include "pm_utils/measurement_names.h"

namespace {

// Not as delay profiles have it: another spelling, and no unit.
void print_changes(std::uint32_t threshold_percent, std::uint32_t minimum_change) {
    pm_print_column_percent(6, "Threshold", threshold_percent);
    pm_print_column_u32(6, "Minimum-Change", minimum_change);
}

}  // namespace

void pm_show_loss_profile(const pm_loss_transport_profile_parcel &profile) {
    pm_profile_heading();
    pm_print_column_unit(4, "Probe interval", profile.ProbeInterval, "seconds");
    pm_print_column_str(4, "Encap mode", pm_udp_mpls_str(profile.EncapMode));
    pm_profile_enabled(4, "Periodic advertisement", profile.PeriodicAdvertisementEnabled);
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
