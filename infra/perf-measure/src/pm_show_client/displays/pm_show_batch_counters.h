// SPDX-License-Identifier: Apache-2.0
// The counters of batched messages: how many messages and batches of each kind, their sizes and
// latencies.
#pragma once

// Prints a pm_stats_batch_t: a table with one row for each kind, whatever its counts.
[[nodiscard]] int pm_show_batch_counters(const void *decoded_parcel);
