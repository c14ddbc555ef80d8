// Measurement profiles: how probes of a kind are sent, measured and advertised on a transport.
#pragma once

// Prints a pm_name_profile_parcel, one profile of any kind; one without a name is a default profile.
[[nodiscard]] int pm_show_name_profile(const void *decoded_parcel);

// Prints a pm_profile_parcel, the default profiles of every transport, in sections for delay, liveness
// and probes. `loss_kind`, `delay_kind`, `liveness_kind` and `probe_kind`, the first of them in this order
// that is set, leave one section, for loss none at all; `profile_type` leaves one transport.
[[nodiscard]] int pm_show_profile(const void *decoded_parcel);
