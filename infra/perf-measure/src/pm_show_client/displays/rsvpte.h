// RSVP-TE tunnels: their delay sessions as detail or as a table, and their counters.
#pragma once

// Prints a pm_rsvpte_parcel: its detail, or with `brief` a row for each LSP.
int pm_show_rsvpte(const void *decoded_parcel);

// Prints a pm_rsvpte_counters_parcel.
int pm_show_rsvpte_counters(const void *decoded_parcel);
