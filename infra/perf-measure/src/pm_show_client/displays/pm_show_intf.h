// SPDX-License-Identifier: Apache-2.0
// Interfaces that are measured: a table, or their detail.
#pragma once

// Prints a pm_intf_parcel: its detail, or with `brief` and without `loss_kind` a row of the table. With `loss_kind`
// the detail shows the loss session instead of the delay sessions.
[[nodiscard]] int pm_show_intf(const void *decoded_parcel);
