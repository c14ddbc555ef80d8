// SPDX-License-Identifier: Apache-2.0
// The counters of the delay sessions of an interface.
#pragma once

// Prints a pm_intf_parcel.
[[nodiscard]] int pm_show_intf_counters(const void *decoded_parcel);
