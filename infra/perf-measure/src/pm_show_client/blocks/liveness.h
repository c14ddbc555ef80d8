// SPDX-License-Identifier: Apache-2.0
// Liveness detection of a session.
#pragma once

#include "schema/pm_records.h"

// "Liveness Detection: Enabled" or "Disabled".
void pm_show_liveness_detection(bool is_enabled, int indent);

// State of a liveness session: lines at `indent`, without a heading. `needs_ipinip` tells why a session to an
// endpoint may be down. `state` is never null.
void pm_show_liveness_state(const pm_liveness_state_info_parcel *state, int indent, bool needs_ipinip);

// Whether an endpoint's liveness session needs IP-in-IP: one without a segment list does. The name is null,
// empty or "None" then.
[[nodiscard]] bool pm_needs_ipinip(const char *segment_list_name);
