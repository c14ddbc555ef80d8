// SPDX-License-Identifier: Apache-2.0
// The reply counters of an interface of the responder.
#pragma once

// Prints a pm_resp_intf_parcel.
[[nodiscard]] int pm_show_resp_intf_counters(const void *decoded_parcel);
