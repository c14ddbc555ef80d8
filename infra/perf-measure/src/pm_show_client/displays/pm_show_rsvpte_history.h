// SPDX-License-Identifier: Apache-2.0
// The histories of an RSVP-TE tunnel's LSPs.
#pragma once

// Prints a pm_rsvpte_history_parcel.
[[nodiscard]] int pm_show_rsvpte_history(const void *decoded_parcel);
