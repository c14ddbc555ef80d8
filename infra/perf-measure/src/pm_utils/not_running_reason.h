// SPDX-License-Identifier: Apache-2.0
// Why a probe is not running. How serious a reason is, unshown_not_running_reason.h tells.
#pragma once

#include "schema/pm_enums.h"

// A few words for the columns of a table, and a sentence for detail blocks. Constant; "Unknown" for
// a value without a text.
[[nodiscard]] const char *pm_not_running_reason_short_str(pm_probe_running_error_reason reason);
[[nodiscard]] const char *pm_not_running_reason_str(pm_probe_running_error_reason reason);
