// The distribution of SR policies' sessions: which run on the route processor, which were handed to
// network processors, and the sessions of their segment lists.
#pragma once

// Prints a pm_dr_info. `internal` adds when the liveness of each segment list was sent.
[[nodiscard]] int pm_show_dr(const void *decoded_parcel);
