// SPDX-License-Identifier: Apache-2.0
// Endpoints: delay, liveness and probe measurement, each as detail and as a table.
#pragma once

// Prints a pm_endpoint_common: of its three sections those that `h_value` asks for and that hold something, as
// tables with `brief`. `n_text` chooses segment lists by name. In the detail `detail` adds the segments, `internal`
// the identifiers, and `loss_kind` leaves the sessions of delay and liveness out.
// PM_SHOW_NOTHING when there is no section to show.
[[nodiscard]] int pm_show_endpoint(const void *decoded_parcel);
