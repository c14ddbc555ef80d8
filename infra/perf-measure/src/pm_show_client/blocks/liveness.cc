// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/liveness.h"

#include <cstring>

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/blocks/time_text.h"

void pm_show_liveness_detection(bool is_enabled, int indent) {
    pm_plain_lines(indent).enabled("Liveness Detection", is_enabled);
}

void pm_show_liveness_state(const pm_liveness_state_info_parcel *state, int indent, bool needs_ipinip) {
    const char *const down = needs_ipinip ? "Down (Needs IPinIP support on endpoint)" : "Down";
    const pm_lines lines = pm_plain_lines(indent);
    lines.text("Session State", state->SessionIsUp != 0 ? "Up" : down);
    if (state->LastSessionStateChangeTimestamp != 0) {
        lines.text("Last State Change Timestamp", pm_time_str(state->LastSessionStateChangeTimestamp));
    }
    lines.number("Missed count", state->MissCount);
}

bool pm_needs_ipinip(const char *segment_list_name) {
    return pm_session_lines::is_empty(segment_list_name) || std::strcmp(segment_list_name, "None") == 0;
}
