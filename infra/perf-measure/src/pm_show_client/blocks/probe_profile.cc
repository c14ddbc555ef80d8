// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/probe_profile.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/profile_lines.h"

void pm_show_probe_profile(const pm_probe_transport_profile_parcel &profile) {
    pm_profile_heading();
    if (profile.TXInterval != nullptr && profile.TXIntervalEndpointEffective != nullptr) {
        pm_lines_at(4).unit("Tx interval", *profile.TXInterval, "uSec");
        pm_lines_at(6).unit("Effective for Endpoint", *profile.TXIntervalEndpointEffective, "uSec");
    }
    pm_lines_at(4).number("Hop Limit", profile.HopLimit);
    pm_profile_flow_labels(profile.FlowLabel);
    // The lines after the first begin three columns to the left of its values.
    pm_profile_list("Traffic Class Count", "Traffic Classes", 20, profile.TrafficClass);
}
