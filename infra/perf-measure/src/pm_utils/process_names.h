// SPDX-License-Identifier: Apache-2.0
// Words for the measurement process's own life: its redundancy role, the states and events of its
// state machine, and the processes that it works with.
//
// Every routine takes any value and returns constant text, never null; a value without a word of
// its own gives "Unknown".
#pragma once

#include <cstdint>

inline constexpr std::uint32_t PM_PROCESS_PRIMARY_ACTIVE = 1;  // the role of the process that is master

[[nodiscard]] const char *pm_process_role_str(std::uint32_t role);
[[nodiscard]] const char *pm_process_state_str(std::uint32_t state);

// Events 1 to 4 share one name.
[[nodiscard]] const char *pm_process_event_str(std::uint32_t event);

// 0, no collaborator, is "N/A".
[[nodiscard]] const char *pm_process_collaborator_str(std::uint32_t collaborator);
