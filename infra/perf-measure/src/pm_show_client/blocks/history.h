// SPDX-License-Identifier: Apache-2.0
// The histories of a measurement, as tables.
#pragma once

#include <cstdint>

#include "schema/pm_records.h"

// The variant of a liveness history that has columns for notifications and labels.
inline constexpr int PM_HISTORY_WITH_NOTIFICATIONS = 1;

// A title at `indent` and a row for each sample, at most `history_limit` of them, indented by two more. `variant`
// matters for liveness only. Delays are in microseconds, losses in percent. A kind that has no table aborts.
void print_history_sample_union(const pm_history_info *history, std::uint32_t indent, int variant);
