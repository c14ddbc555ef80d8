// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_measurement_names.h"

#include "pm_utils/name_table.h"

namespace {

// Liveness and probe have no short form.
constexpr pm_name SHORT_MEASUREMENT_TYPES[] = {
    {PM_MEASUREMENT_DELAY, "DM"},
    {PM_MEASUREMENT_LOSS, "LM"},
};

constexpr pm_name HISTORY_TYPES[] = {
    {PM_HISTORY_DM_PROBE, "DM PROBE"},       {PM_HISTORY_DM_PACKET, "DM PKT"},
    {PM_HISTORY_DM_AGGREGATION, "DM AGGR"},  {PM_HISTORY_DM_ADVERTISEMENT, "DM ADV"},
    {PM_HISTORY_LIVENESS, "LIVE"},           {PM_HISTORY_LM_PROBE, "LM PROBE"},
    {PM_HISTORY_LM_PACKET, "LM PKT"},        {PM_HISTORY_LM_AGGREGATION, "LM AGGR"},
    {PM_HISTORY_LM_ADVERTISEMENT, "LM ADV"},
};

constexpr pm_name PROBE_PROTOCOLS[] = {
    {0, "PM DM"},
    {1, "TWAMP-light"},
    {2, "PM LM"},
};

constexpr pm_name PPS_CLASSES[] = {
    {0, "IPv4-T1"}, {1, "IPv4-T2"}, {2, "IPv6-T1"}, {3, "IPv6-T2"}, {4, "MPLS-T1"}, {5, "MPLS-T2"},
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

const char *pm_measurement_type_short_str(pm_measurement_type_e type) {
    return pm_name_of(SHORT_MEASUREMENT_TYPES, type, "Measurement Type Unknown");
}

const char *pm_history_type_str(pm_history_type_e type) { return pm_name_of(HISTORY_TYPES, type, ""); }

const char *pm_probe_protocol_str(std::int32_t protocol) { return pm_name_of(PROBE_PROTOCOLS, protocol, "Unknown"); }

const char *pm_pps_class_str(std::int32_t pps_class) { return pm_name_of(PPS_CLASSES, pps_class, "Unknown"); }

const char *pm_up_down_error_str(std::int32_t state) { return pm_name_of(UP_DOWN_ERROR_STATES, state, "Unknown"); }

const char *pm_prefix_db_str(std::int32_t db) { return pm_name_of(PREFIX_DBS, db, "Unknown Prefix DB"); }

const char *pm_prefix_source_str(std::int32_t source) { return pm_name_of(PREFIX_SOURCES, source, "INVALID"); }
