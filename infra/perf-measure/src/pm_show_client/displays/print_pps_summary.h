// SPDX-License-Identifier: Apache-2.0
// How the packets per second of the service are divided between the kinds of sessions, on the route
// processor and on each NPU.
#pragma once

// Prints a pm_pps_summary_parcel; `detail` adds the guaranteed minimum, the threshold of rebalancing
// and the dampened usage. Unlike other displays it aborts without a record.
[[nodiscard]] int print_pps_summary(const void *decoded_parcel);
