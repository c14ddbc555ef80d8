// SPDX-License-Identifier: Apache-2.0
// The receive path's summary: packets, errors and punt rates, the queues between the receiving
// threads, and the UDP ports that are open for each use.
#pragma once

// Prints a pm_rx_summary_parcel.
[[nodiscard]] int pm_show_rx_summary(const void *decoded_parcel);
