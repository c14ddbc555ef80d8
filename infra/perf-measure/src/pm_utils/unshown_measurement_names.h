// SPDX-License-Identifier: Apache-2.0
// Called by no show: more words for what is measured and how.
//
// Every routine takes any value and returns constant text, never null; a value without a word of
// its own gives the word stated as "else".
#pragma once

#include <cstdint>

#include "schema/pm_enums.h"

// "DM" and "LM"; else, liveness and probe included, "Measurement Type Unknown".
[[nodiscard]] const char *pm_measurement_type_short_str(pm_measurement_type_e type);

// Else "".
[[nodiscard]] const char *pm_history_type_str(pm_history_type_e type);

// 0 "PM DM", 1 "TWAMP-light", 2 "PM LM"; else "Unknown".
[[nodiscard]] const char *pm_probe_protocol_str(std::int32_t protocol);

// Packet classes of the rate limiter, 0 "IPv4-T1" to 5 "MPLS-T2"; else "Unknown".
[[nodiscard]] const char *pm_pps_class_str(std::int32_t pps_class);

// 0 "Up", 1 "Down", 2 "Error"; else "Unknown".
[[nodiscard]] const char *pm_up_down_error_str(std::int32_t state);

// 0 "Querier Prefix DB", 1 "Responder Prefix DB"; else "Unknown Prefix DB".
[[nodiscard]] const char *pm_prefix_db_str(std::int32_t db);

// Who asked for a prefix: 0 "Prefix-CFG", 1 "SR-Policy", 2 "Endpoint-CFG"; else "INVALID".
[[nodiscard]] const char *pm_prefix_source_str(std::int32_t source);
