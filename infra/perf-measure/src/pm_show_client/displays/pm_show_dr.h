// SPDX-License-Identifier: Apache-2.0
// How the sessions of an SR policy are distributed: those on the route processor, those offloaded to
// NPUs, and which session measures which segment list.
#pragma once

// Prints a pm_dr_info; null prints that there is none. `internal` adds when the state of each segment
// list was sent.
[[nodiscard]] int pm_show_dr(const void *decoded_parcel);
