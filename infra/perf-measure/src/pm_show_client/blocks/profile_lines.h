// SPDX-License-Identifier: Apache-2.0
// The lines that profiles of all kinds are made of. The colons are in column PM_COLON whatever
// the indent; a profile's own lines are at indent 4, what belongs to one of them is further in.
#pragma once

#include "base/pm_text.h"
#include "pm_show_client/blocks/lines.h"
#include "schema/pm_records.h"

// "Profile configuration:", which every profile begins with.
void pm_profile_heading();

// "10 (effective: 12) uSec".
void pm_profile_interval(int indent, pm_text label, std::uint32_t value, std::uint32_t effective, pm_text unit);

// "SR Policy Delay Measurement (default)", the title of a profile without a name.
void pm_profile_default_title(pm_transport_type_e transport, const char *kind);

// "Enabled" or "Disabled (default)".
void pm_profile_enabled_default(int indent, pm_text label, bool enabled);

// A number that may be absent, which prints nothing.
void pm_profile_optional(int indent, pm_text label, const std::uint32_t *value);

// Whether accelerated advertisement is on; the two states have labels of different word order.
void pm_profile_accelerated(bool enabled);

// Destination sweeping, with its addresses when it is on.
void pm_profile_sweeping(bool enabled, const pm_record_address &start, std::uint32_t range);

// How many values there are, and then the values, fifteen to a line; lines after the first begin with
// `continuation` blanks.
void pm_profile_list(const char *count_label, const char *list_label, int continuation,
                     const parcel_array<std::uint32_t> &values);
void pm_profile_flow_labels(const parcel_array<std::uint32_t> &labels);

// The burst and TX intervals of one transport; a line whose configured value is absent is left out.
// `Profile` is any of the records that hold them.
template <class Profile>
void pm_profile_tx_intervals(const Profile &profile, std::uint32_t effective_tx_usec) {
    if (profile.BurstInterval != nullptr && profile.BurstIntervalEffective != nullptr) {
        pm_profile_interval(4, "Burst interval", *profile.BurstInterval, *profile.BurstIntervalEffective, "mSec");
    }
    if (profile.TXInterval != nullptr) {
        pm_profile_interval(4, "TX interval", *profile.TXInterval, effective_tx_usec, "uSec");
    }
}

// How many sessions the route processor runs: for SR policies a line, for a generic profile a heading
// that is printed also without a line, for other transports nothing.
template <class Profile>
void pm_profile_cpu_sessions(const Profile &profile, pm_transport_type_e transport) {
    if (transport == PM_TRANSPORT_SR_POLICY) {
        pm_profile_optional(4, "CPU session count", profile.SessionCount);
    } else if (transport == PM_TRANSPORT_GENERIC) {
        pm_print_heading(4, "CPU session count");
        pm_profile_optional(6, "SR Policy", profile.SessionCountSRPolicy);
        pm_profile_optional(6, "Endpoint", profile.SessionCountEndpoint);
    }
}
