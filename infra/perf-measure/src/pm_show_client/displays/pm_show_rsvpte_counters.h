// SPDX-License-Identifier: Apache-2.0
// Counters of an RSVP-TE tunnel's LSPs.
#pragma once

// Prints a pm_rsvpte_counters_parcel.
[[nodiscard]] int pm_show_rsvpte_counters(const void *decoded_parcel);
