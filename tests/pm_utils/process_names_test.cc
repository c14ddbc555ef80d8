// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/process_names.h.
#include "pm_utils/process_names.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(ProcessNames, RolesHaveTheirNames) {
    expect_names(pm_process_role_str,
                 {{0, "Unknown"},
                  {1, "Primary Active"},
                  {2, "Primary Standby"},
                  {3, "Secondary Active"},
                  {4, "Secondary Standby"},
                  {5, "Tertiary Active"},
                  {6, "Tertiary Standby"},
                  {7, "Unknown"}},
                 "Unknown");
}

TEST(ProcessNames, StatesHaveTheirNames) {
    expect_names(pm_process_state_str,
                 {{0, "Process-Start"},
                  {1, "Process-Init"},
                  {2, "Role-based Init"},
                  {3, "Wait-Collab-Conn"},
                  {4, "Run"},
                  {5, "Unknown"}},
                 "Unknown");
}

TEST(ProcessNames, TheFourRoleBasedEventsShareOneName) {
    expect_names(pm_process_event_str,
                 {{0, "Process Init"},
                  {1, "Role Based Init"},
                  {2, "Role Based Init"},
                  {3, "Role Based Init"},
                  {4, "Role Based Init"},
                  {5, "Collab Wait Phase"},
                  {6, "Collab Conn UP"},
                  {7, "Collab Conn DOWN"},
                  {8, "Collab Conn TIMEOUT"},
                  {9, "Collab IDT DONE"},
                  {10, "Start Run Phase"},
                  {11, "Process Exit"},
                  {12, "NSR Role Change"},
                  {13, "ISSU Role Change"},
                  {14, "Process Terminate"},
                  {15, "HA Liveness State Replay Needed"},
                  {16, "Unknown"}},
                 "Unknown");
}

TEST(ProcessNames, CollaboratorsHaveTheirNames) {
    expect_names(pm_process_collaborator_str,
                 {{0, "N/A"},
                  {1, "IM"},
                  {2, "UDP V4 SOCKET"},
                  {3, "UDP V6 SOCKET"},
                  {4, "OPSTORE"},
                  {5, "SWFWD"},
                  {6, "TE"},
                  {7, "TECTL"},
                  {8, "PM_RP"},
                  {9, "PM_LC"},
                  {10, "RIB V4"},
                  {11, "RIB V6"},
                  {12, "RSI"},
                  {13, "LSD"},
                  {14, "Unknown"}},
                 "Unknown");
}

}  // namespace
