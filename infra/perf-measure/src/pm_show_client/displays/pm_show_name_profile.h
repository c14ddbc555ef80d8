// SPDX-License-Identifier: Apache-2.0
// One measurement profile: how probes of a kind are sent, measured and advertised on a transport.
#pragma once

// Prints a pm_name_profile_parcel, one profile of any kind; one without a name is a default profile.
[[nodiscard]] int pm_show_name_profile(const void *decoded_parcel);
