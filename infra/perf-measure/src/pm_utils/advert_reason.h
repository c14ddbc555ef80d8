// SPDX-License-Identifier: Apache-2.0
// Why values were advertised: the words, and what a reason says about the values.
#pragma once

#include "schema/pm_enums.h"

// A sentence for detail blocks, constant; "Invalid advertisement reason" for a value without one.
[[nodiscard]] const char *pm_advert_reason_str(pm_advert_reason_e reason);

// A code for the columns of a table, constant; "N/A" for a value without one.
[[nodiscard]] const char *pm_advert_reason_short_str(pm_advert_reason_e reason);

// Whether the advertisement took values back, so that the record's values mean nothing. Displays
// print advertised values only when this is false.
[[nodiscard]] bool pm_advert_reason_withdraws_values(pm_advert_reason_e reason);
