// SPDX-License-Identifier: Apache-2.0
// Counter blocks: packets, errors and probes of a measurement session, in one shape for all
// displays. With `detail` the errors are listed by reason, sent and received apart.
#pragma once

#include "schema/pm_records.h"

// Which reasons to list; any other direction lists nothing.
enum pm_direction : int { PM_DIRECTION_TX = 0, PM_DIRECTION_RX = 1 };

// The groups "Packets:", "Errors:" and "Probes:" at `indent`, their lines indented by two more.
void pm_show_session_counters(const pm_delay_counters_info_parcel *counters, int indent);
void pm_show_srpolicy_liveness_counters(const pm_srpolicy_liveness_counters_info_parcel *counters, int indent);
void pm_show_endpoint_liveness_counters(const pm_endpoint_liveness_counters_info_parcel *counters, int indent);

// The reasons of one direction: a heading at `indent`, the lines indented by two more. Nothing for null
// counters.
void pm_show_error_reasons(const pm_delay_counters_info_parcel *counters, int direction, int indent);
void pm_show_srpolicy_liveness_reasons(const pm_srpolicy_liveness_counters_info_parcel *counters, int direction,
                                       int indent);
void pm_show_endpoint_liveness_reasons(const pm_endpoint_liveness_counters_info_parcel *counters, int direction,
                                       int indent);
