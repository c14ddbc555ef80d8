// SPDX-License-Identifier: Apache-2.0
// Called by no show: words for the batches, timers, operations, ports and checkpoints of the measurement engine.
//
// Every routine takes any value and returns constant text, never null; a value without a word of
// its own gives the word stated as "else".
#pragma once

#include <cstdint>

// Batches of work towards the interface manager, from 0; else "unknown batch type".
[[nodiscard]] const char *pm_batch_type_str(std::int32_t type);

// From 1; else "UNKNOWN".
[[nodiscard]] const char *pm_timer_type_str(std::int32_t type);

// 1 "RX punt"; else "UNKNOWN".
[[nodiscard]] const char *pm_punt_type_str(std::int32_t type);

// Configuration operation of a flag word: bit 0 "Create", bit 1 "Set", bit 2 "Delete"; the lowest
// of several set bits counts. Else "Unknown".
[[nodiscard]] const char *pm_cfg_op_str(std::uint32_t flags);

// What a UDP port is open for, from 0; else "Unknown".
[[nodiscard]] const char *pm_udp_port_kind_str(std::int32_t kind);

// 0 "SCB_CHKPT", 1 "DR_CHKPT", 2 "DR_DB_SESSION_CHKPT"; else "Unknown".
[[nodiscard]] const char *pm_chkpt_type_str(std::int32_t type);
