// Words for what is measured and how: transports, measurements, modes, protocols, pools, prefixes.
//
// Every routine takes any value and returns constant text, never null; a value without a word of
// its own gives the word stated as "else".
#pragma once

#include <cstdint>

#include "schema/pm_enums.h"

// Else "Transport Type Unknown".
[[nodiscard]] const char *pm_transport_type_str(pm_transport_type_e type);

// "Delay Measurement" and so on; else "Measurement Type Unknown".
[[nodiscard]] const char *pm_measurement_type_str(pm_measurement_type_e type);
// "DM" and "LM"; else, liveness and probe included, "Measurement Type Unknown".
[[nodiscard]] const char *pm_measurement_type_short_str(pm_measurement_type_e type);

// Which delay a threshold check compares: 0 average, 1 minimum, 2 maximum; else "Threshold-check
// Type Unknown".
[[nodiscard]] const char *pm_threshold_check_type_str(std::int32_t type);

// Else "Unknown".
[[nodiscard]] const char *pm_delay_mode_str(pm_delay_mode_e mode);

// Else "Probe Type Not Initialized".
[[nodiscard]] const char *pm_probe_type_str(pm_probe_type_e type);

// Else "".
[[nodiscard]] const char *pm_history_type_str(pm_history_type_e type);

// Else "".
[[nodiscard]] const char *pm_srpolicy_origin_str(pm_tectl_srpolicy_origin_e origin);

// Encapsulation (pm_encap_mode_e): 1 "UDP"; else "MPLS".
[[nodiscard]] const char *pm_udp_mpls_str(std::int32_t encap);

// Probe protocol (pm_payload_type_e) with its encapsulation (pm_encap_mode_e): "TWAMP-light",
// whatever the encapsulation, "PM-UDP" or "PM-MPLS"; else "Unknown".
[[nodiscard]] const char *pm_protocol_name_str(std::int32_t protocol, std::int32_t encap);

// 0 "PM DM", 1 "TWAMP-light", 2 "PM LM"; else "Unknown".
[[nodiscard]] const char *pm_probe_protocol_str(std::int32_t protocol);

// Packet classes of the rate limiter, 0 "IPv4-T1" to 5 "MPLS-T2"; else "Unknown".
[[nodiscard]] const char *pm_pps_class_str(std::int32_t pps_class);

// Else "".
[[nodiscard]] const char *pm_pps_pool_type_str(pm_rl_pps_pool_type_e type);

// 0 "Up", 1 "Down", 2 "Error"; else "Unknown".
[[nodiscard]] const char *pm_up_down_error_str(std::int32_t state);

// 0 "Querier Prefix DB", 1 "Responder Prefix DB"; else "Unknown Prefix DB".
[[nodiscard]] const char *pm_prefix_db_str(std::int32_t db);

// Who asked for a prefix: 0 "Prefix-CFG", 1 "SR-Policy", 2 "Endpoint-CFG"; else "INVALID".
[[nodiscard]] const char *pm_prefix_source_str(std::int32_t source);
