// SPDX-License-Identifier: Apache-2.0
// RSVP-TE tunnels: their delay sessions as detail or as a table.
#pragma once

// Prints a pm_rsvpte_parcel: its detail, or with `brief` a row for each LSP.
[[nodiscard]] int pm_show_rsvpte(const void *decoded_parcel);
