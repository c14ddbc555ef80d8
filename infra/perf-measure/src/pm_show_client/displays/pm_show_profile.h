// SPDX-License-Identifier: Apache-2.0
// The default measurement profiles: how probes of each kind are sent, measured and advertised on each transport.
#pragma once

// Prints a pm_profile_parcel, the default profiles of every transport, in sections for delay, liveness
// and probes. `loss_kind`, `delay_kind`, `liveness_kind` and `probe_kind`, the first of them in this order
// that is set, leave one section, for loss none at all; `profile_type` leaves one transport.
[[nodiscard]] int pm_show_profile(const void *decoded_parcel);
