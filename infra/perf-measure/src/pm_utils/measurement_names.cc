// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/measurement_names.h"

#include "pm_utils/name_table.h"

namespace {

constexpr pm_name TRANSPORT_TYPES[] = {
    {PM_TRANSPORT_INTERFACE, "Interface"}, {PM_TRANSPORT_RSVP_TE, "RSVP-TE"}, {PM_TRANSPORT_SR_POLICY, "SR Policy"},
    {PM_TRANSPORT_ENDPOINT, "Endpoint"},   {PM_TRANSPORT_GENERIC, "Generic"},
};

constexpr pm_name MEASUREMENT_TYPES[] = {
    {PM_MEASUREMENT_DELAY, "Delay Measurement"},
    {PM_MEASUREMENT_LOSS, "Loss Measurement"},
    {PM_MEASUREMENT_LIVENESS, "Liveness Detection"},
    {PM_MEASUREMENT_PROBE, "Probe"},
};

constexpr pm_name THRESHOLD_CHECK_TYPES[] = {
    {0, "Average-delay"},
    {1, "Minimum-delay"},
    {2, "Maximum-delay"},
};

constexpr pm_name DELAY_MODES[] = {
    {PM_DELAY_MODE_ONE_WAY, "One-way"},
    {PM_DELAY_MODE_TWO_WAY, "Two-way"},
    {PM_DELAY_MODE_LOOPBACK, "Loopback"},
    {PM_DELAY_MODE_NOT_SET, "Not-set"},
};

constexpr pm_name PROBE_TYPES[] = {
    {PM_PROBE_NOT_SET, "Probe Type Not Set"},
    {PM_PROBE_PATH_TRACING, "Path Tracing"},
    {PM_PROBE_PATH_ASSURANCE, "Path Assurance"},
};

constexpr pm_name SRPOLICY_ORIGINS[] = {
    {PM_SRPOLICY_ORIGIN_PCE, "PCE"},
    {PM_SRPOLICY_ORIGIN_BGP, "BGP"},
    {PM_SRPOLICY_ORIGIN_CONFIGURED, "Configured"},
};

constexpr pm_name ENCAP_MODES[] = {
    {PM_ENCAP_UDP, "UDP"},
};

constexpr pm_name PM_PROTOCOLS_BY_ENCAP[] = {
    {PM_ENCAP_UDP, "PM-UDP"},
};

constexpr pm_name PPS_POOL_TYPES[] = {
    {PM_PPS_POOL_SINGLE, "Single PPS Pool"},
    {PM_PPS_POOL_MULTIPLE, "Multiple PPS Pool"},
};

}  // namespace

const char *pm_transport_type_str(pm_transport_type_e type) {
    return pm_name_of(TRANSPORT_TYPES, type, "Transport Type Unknown");
}

const char *pm_measurement_type_str(pm_measurement_type_e type) {
    return pm_name_of(MEASUREMENT_TYPES, type, "Measurement Type Unknown");
}

const char *pm_threshold_check_type_str(std::int32_t type) {
    return pm_name_of(THRESHOLD_CHECK_TYPES, type, "Threshold-check Type Unknown");
}

const char *pm_delay_mode_str(pm_delay_mode_e mode) { return pm_name_of(DELAY_MODES, mode, "Unknown"); }

const char *pm_probe_type_str(pm_probe_type_e type) {
    return pm_name_of(PROBE_TYPES, type, "Probe Type Not Initialized");
}

const char *pm_srpolicy_origin_str(pm_tectl_srpolicy_origin_e origin) {
    return pm_name_of(SRPOLICY_ORIGINS, origin, "");
}

const char *pm_udp_mpls_str(std::int32_t encap) { return pm_name_of(ENCAP_MODES, encap, "MPLS"); }

const char *pm_protocol_name_str(std::int32_t protocol, std::int32_t encap) {
    switch (protocol) {
    case PM_PAYLOAD_PM: return pm_name_of(PM_PROTOCOLS_BY_ENCAP, encap, "PM-MPLS");
    case PM_PAYLOAD_TWAMP_LIGHT: return "TWAMP-light";
    default: return "Unknown";
    }
}

const char *pm_pps_pool_type_str(pm_rl_pps_pool_type_e type) { return pm_name_of(PPS_POOL_TYPES, type, ""); }
