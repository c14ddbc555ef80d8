// SPDX-License-Identifier: Apache-2.0
// Words for measurement sessions that are offloaded to a network processor (NPU). More are in
// unshown_npu_names.h.
//
// A routine takes any value and returns constant text, never null; a value without a word of
// its own gives the word stated as "else".
#pragma once

#include "schema/pm_enums.h"

// Else "Unknown".
[[nodiscard]] const char *pm_npu_session_state_str(pm_npu_session_running_state_e state);
