// SPDX-License-Identifier: Apache-2.0
// Words for what is measured and how: transports, measurements, modes, protocols, pools. More are in
// unshown_measurement_names.h.
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

// Which delay a threshold check compares: 0 average, 1 minimum, 2 maximum; else "Threshold-check
// Type Unknown".
[[nodiscard]] const char *pm_threshold_check_type_str(std::int32_t type);

// Else "Unknown".
[[nodiscard]] const char *pm_delay_mode_str(pm_delay_mode_e mode);

// Else "Probe Type Not Initialized".
[[nodiscard]] const char *pm_probe_type_str(pm_probe_type_e type);

// Else "".
[[nodiscard]] const char *pm_srpolicy_origin_str(pm_tectl_srpolicy_origin_e origin);

// Encapsulation (pm_encap_mode_e): 1 "UDP"; else "MPLS".
[[nodiscard]] const char *pm_udp_mpls_str(std::int32_t encap);

// Probe protocol (pm_payload_type_e) with its encapsulation (pm_encap_mode_e): "TWAMP-light",
// whatever the encapsulation, "PM-UDP" or "PM-MPLS"; else "Unknown".
[[nodiscard]] const char *pm_protocol_name_str(std::int32_t protocol, std::int32_t encap);

// Else "".
[[nodiscard]] const char *pm_pps_pool_type_str(pm_rl_pps_pool_type_e type);
