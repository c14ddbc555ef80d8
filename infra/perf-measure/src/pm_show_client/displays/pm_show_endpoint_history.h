// SPDX-License-Identifier: Apache-2.0
// The histories of an endpoint's segment lists.
#pragma once

// Prints a pm_endpoint_history_parcel: the segment lists that the filter wants.
[[nodiscard]] int pm_show_endpoint_history(const void *decoded_parcel);
