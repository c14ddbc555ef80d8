// SPDX-License-Identifier: Apache-2.0
// An interface of the responder: its attributes and its reply rate.
#pragma once

// Prints a pm_resp_intf_parcel. `internal` adds the bundle's interfaces.
[[nodiscard]] int pm_show_resp_intf(const void *decoded_parcel);
