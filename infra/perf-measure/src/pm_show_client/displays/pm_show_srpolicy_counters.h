// SPDX-License-Identifier: Apache-2.0
// Counters of SR policies: those of the sessions on the CPU, then of those offloaded to network processors.
#pragma once

// Prints a pm_srpolicy_counters_parcel. Atomic paths are shown with `verbose` or `internal`.
[[nodiscard]] int pm_show_srpolicy_counters(const void *decoded_parcel);
