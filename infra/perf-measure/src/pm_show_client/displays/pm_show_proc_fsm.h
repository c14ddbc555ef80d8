// SPDX-License-Identifier: Apache-2.0
// The state machine of the measurement process: its role and state, role changes, when it entered each
// state, its connections to other processes, and the events so far.
#pragma once

// Prints a pm_mgmt_proc_fsm. Times are ages in seconds, counted from the clock's time now.
[[nodiscard]] int pm_show_proc_fsm(const void *decoded_parcel);
