// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_engine_names.h"

#include "pm_utils/name_table.h"

namespace {

constexpr pm_name BATCH_TYPES[] = {
    {0, "DM/LM attr publish"}, {1, "dm/lm attr unpublish"},  // lower case, unlike its counterpart
    {2, "pm caps create"},     {3, "pm caps delete"},       {4, "pm path tracing attr update"},
};

// The numbers named "UNKNOWN" belonged to timers that are gone; they are not given out again.
constexpr pm_name TIMER_TYPES[] = {
    {1, "Probe start"},
    {2, "Burst"},
    {3, "Probe end"},
    {4, "IM DM/LM attribute publish batch"},
    {5, "Collab timeout"},
    {6, "UNKNOWN"},
    {7, "UNKNOWN"},
    {8, "Process exit"},
    {9, "UNKNOWN"},
    {10, "UNKNOWN"},
    {11, "UNKNOWN"},
    {12, "VRF timeout"},
    {13, "KPKT retry timeout"},
    {14, "HWO sess create/delete retry timeout"},
    {15, "HA session state timeout"},
    {16, "UDP port failure recovery timeout"},
};

constexpr pm_name PUNT_TYPES[] = {
    {1, "RX punt"},
};

// Bits of a flag word, the first to be tested first.
constexpr pm_name CONFIG_OPERATIONS[] = {
    {1 << 0, "Create"},
    {1 << 1, "Set"},
    {1 << 2, "Delete"},
};

constexpr pm_name UDP_PORT_KINDS[] = {
    {0, "Twamp querier source"},
    {1, "PM UDP querier source"},
    {2, "Unknown"},
    {3, "Twamp querier destination"},
    {4, "PM UDP querier destination"},
    {5, "Unknown"},
    {6, "PM IANA"},
    {7, "TWAMP-Light querier destination default port"},
};

constexpr pm_name CHKPT_TYPES[] = {
    {0, "SCB_CHKPT"},
    {1, "DR_CHKPT"},
    {2, "DR_DB_SESSION_CHKPT"},
};

}  // namespace

const char *pm_batch_type_str(std::int32_t type) { return pm_name_of(BATCH_TYPES, type, "unknown batch type"); }

const char *pm_timer_type_str(std::int32_t type) { return pm_name_of(TIMER_TYPES, type, "UNKNOWN"); }

const char *pm_punt_type_str(std::int32_t type) { return pm_name_of(PUNT_TYPES, type, "UNKNOWN"); }

const char *pm_cfg_op_str(std::uint32_t flags) {
    const std::uint32_t lowest = flags & (~flags + 1);
    return pm_name_of(CONFIG_OPERATIONS, lowest, "Unknown");
}

const char *pm_udp_port_kind_str(std::int32_t kind) { return pm_name_of(UDP_PORT_KINDS, kind, "Unknown"); }

const char *pm_chkpt_type_str(std::int32_t type) { return pm_name_of(CHKPT_TYPES, type, "Unknown"); }
