// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/process_names.h"

#include "pm_utils/name_table.h"

namespace {

constexpr char UNKNOWN[] = "Unknown";

constexpr pm_name ROLES[] = {
    {PM_PROCESS_PRIMARY_ACTIVE, "Primary Active"},
    {2, "Primary Standby"},
    {3, "Secondary Active"},
    {4, "Secondary Standby"},
    {5, "Tertiary Active"},
    {6, "Tertiary Standby"},
};

constexpr pm_name STATES[] = {
    {0, "Process-Start"}, {1, "Process-Init"}, {2, "Role-based Init"}, {3, "Wait-Collab-Conn"}, {4, "Run"},
};

// The four kinds of role based init are told apart by number only.
constexpr pm_name EVENTS[] = {
    {0, "Process Init"},        {1, "Role Based Init"},
    {2, "Role Based Init"},     {3, "Role Based Init"},
    {4, "Role Based Init"},     {5, "Collab Wait Phase"},
    {6, "Collab Conn UP"},      {7, "Collab Conn DOWN"},
    {8, "Collab Conn TIMEOUT"}, {9, "Collab IDT DONE"},
    {10, "Start Run Phase"},    {11, "Process Exit"},
    {12, "NSR Role Change"},    {13, "ISSU Role Change"},
    {14, "Process Terminate"},  {15, "HA Liveness State Replay Needed"},
};

constexpr pm_name COLLABORATORS[] = {
    {0, "N/A"},   {1, "IM"},    {2, "UDP V4 SOCKET"}, {3, "UDP V6 SOCKET"}, {4, "OPSTORE"}, {5, "SWFWD"}, {6, "TE"},
    {7, "TECTL"}, {8, "PM_RP"}, {9, "PM_LC"},         {10, "RIB V4"},       {11, "RIB V6"}, {12, "RSI"},  {13, "LSD"},
};

}  // namespace

const char *pm_process_role_str(std::uint32_t role) { return pm_name_of(ROLES, role, UNKNOWN); }

const char *pm_process_state_str(std::uint32_t state) { return pm_name_of(STATES, state, UNKNOWN); }

const char *pm_process_event_str(std::uint32_t event) { return pm_name_of(EVENTS, event, UNKNOWN); }

const char *pm_process_collaborator_str(std::uint32_t collaborator) {
    return pm_name_of(COLLABORATORS, collaborator, UNKNOWN);
}
