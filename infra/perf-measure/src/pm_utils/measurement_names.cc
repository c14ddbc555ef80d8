// Words for what is measured and how. See measurement_names.h.
#include "pm_utils/measurement_names.h"

#include "pm_utils/name_table.h"

namespace {

constexpr char MEASUREMENT_UNKNOWN[] = "Measurement Type Unknown";

constexpr pm_name TRANSPORT_TYPES[] = {
    {PM_TRANSPORT_INTERFACE, "Interface"}, {PM_TRANSPORT_RSVP_TE, "RSVP-TE"}, {PM_TRANSPORT_SR_POLICY, "SR Policy"},
    {PM_TRANSPORT_ENDPOINT, "Endpoint"},   {PM_TRANSPORT_GENERIC, "Generic"},
};

constexpr pm_long_and_short_name MEASUREMENT_TYPES[] = {
    {PM_MEASUREMENT_DELAY, "Delay Measurement", "DM"},
    {PM_MEASUREMENT_LOSS, "Loss Measurement", "LM"},
    {PM_MEASUREMENT_LIVENESS, "Liveness Detection", MEASUREMENT_UNKNOWN},  // has no short form
    {PM_MEASUREMENT_PROBE, "Probe", MEASUREMENT_UNKNOWN},                  // nor has this
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

constexpr pm_name HISTORY_TYPES[] = {
    {PM_HISTORY_DM_PROBE, "DM PROBE"},       {PM_HISTORY_DM_PACKET, "DM PKT"},
    {PM_HISTORY_DM_AGGREGATION, "DM AGGR"},  {PM_HISTORY_DM_ADVERTISEMENT, "DM ADV"},
    {PM_HISTORY_LIVENESS, "LIVE"},           {PM_HISTORY_LM_PROBE, "LM PROBE"},
    {PM_HISTORY_LM_PACKET, "LM PKT"},        {PM_HISTORY_LM_AGGREGATION, "LM AGGR"},
    {PM_HISTORY_LM_ADVERTISEMENT, "LM ADV"},
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

constexpr pm_name PROBE_PROTOCOLS[] = {
    {0, "PM DM"},
    {1, "TWAMP-light"},
    {2, "PM LM"},
};

constexpr pm_name PPS_CLASSES[] = {
    {0, "IPv4-T1"}, {1, "IPv4-T2"}, {2, "IPv6-T1"}, {3, "IPv6-T2"}, {4, "MPLS-T1"}, {5, "MPLS-T2"},
};

constexpr pm_name PPS_POOL_TYPES[] = {
    {PM_PPS_POOL_SINGLE, "Single PPS Pool"},
    {PM_PPS_POOL_MULTIPLE, "Multiple PPS Pool"},
};

constexpr pm_name UP_DOWN_ERROR_STATES[] = {
    {0, "Up"},
    {1, "Down"},
    {2, "Error"},
};

constexpr pm_name PREFIX_DBS[] = {
    {0, "Querier Prefix DB"},
    {1, "Responder Prefix DB"},
};

constexpr pm_name PREFIX_SOURCES[] = {
    {0, "Prefix-CFG"},
    {1, "SR-Policy"},
    {2, "Endpoint-CFG"},
};

}  // namespace

const char *pm_transport_type_str(pm_transport_type_e type) {
    return pm_name_of(TRANSPORT_TYPES, type, "Transport Type Unknown");
}

const char *pm_measurement_type_str(pm_measurement_type_e type) {
    return pm_name_of(MEASUREMENT_TYPES, type, MEASUREMENT_UNKNOWN);
}

const char *pm_measurement_type_short_str(pm_measurement_type_e type) {
    return pm_name_of(MEASUREMENT_TYPES, type, MEASUREMENT_UNKNOWN, &pm_long_and_short_name::short_text);
}

const char *pm_threshold_check_type_str(std::int32_t type) {
    return pm_name_of(THRESHOLD_CHECK_TYPES, type, "Threshold-check Type Unknown");
}

const char *pm_delay_mode_str(pm_delay_mode_e mode) { return pm_name_of(DELAY_MODES, mode, "Unknown"); }

const char *pm_probe_type_str(pm_probe_type_e type) {
    return pm_name_of(PROBE_TYPES, type, "Probe Type Not Initialized");
}

const char *pm_history_type_str(pm_history_type_e type) { return pm_name_of(HISTORY_TYPES, type, ""); }

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

const char *pm_probe_protocol_str(std::int32_t protocol) { return pm_name_of(PROBE_PROTOCOLS, protocol, "Unknown"); }

const char *pm_pps_class_str(std::int32_t pps_class) { return pm_name_of(PPS_CLASSES, pps_class, "Unknown"); }

const char *pm_pps_pool_type_str(pm_rl_pps_pool_type_e type) { return pm_name_of(PPS_POOL_TYPES, type, ""); }

const char *pm_up_down_error_str(std::int32_t state) { return pm_name_of(UP_DOWN_ERROR_STATES, state, "Unknown"); }

const char *pm_prefix_db_str(std::int32_t db) { return pm_name_of(PREFIX_DBS, db, "Unknown Prefix DB"); }

const char *pm_prefix_source_str(std::int32_t source) { return pm_name_of(PREFIX_SOURCES, source, "INVALID"); }
