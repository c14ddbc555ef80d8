// Probe profiles. See profile_blocks.h.
#include "pm_show_client/blocks/profile_blocks.h"
#include "pm_show_client/blocks/profile_lines.h"

void pm_show_probe_profile(const pm_probe_transport_profile_parcel &profile) {
    pm_profile_heading();
    if (profile.TXInterval != nullptr && profile.TXIntervalEndpointEffective != nullptr) {
        pm_print_column_unit(4, "Tx interval", *profile.TXInterval, "uSec");
        pm_print_column_unit(6, "Effective for Endpoint", *profile.TXIntervalEndpointEffective, "uSec");
    }
    pm_print_column_u32(4, "Hop Limit", profile.HopLimit);
    pm_profile_flow_labels(profile.FlowLabel);
    // The lines after the first stand three to the left of its values.
    pm_profile_list("Traffic Class Count", "Traffic Classes", 20, profile.TrafficClass);
}
