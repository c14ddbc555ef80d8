// SPDX-License-Identifier: Apache-2.0
// The history of an interface and of its bundle members.
#pragma once

// Prints a pm_intf_history_parcel.
[[nodiscard]] int pm_show_intf_history(const void *decoded_parcel);
