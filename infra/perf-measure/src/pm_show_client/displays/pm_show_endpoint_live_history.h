// SPDX-License-Identifier: Apache-2.0
// The liveness histories of an endpoint's segment lists.
#pragma once

// Prints a pm_endpoint_history_parcel as pm_show_endpoint_history does when the endpoint has liveness detection;
// else nothing, and PM_SHOW_NOTHING.
[[nodiscard]] int pm_show_endpoint_live_history(const void *decoded_parcel);
