// Interfaces that are measured: a table, their detail, and their counters.
#pragma once

// Prints a pm_intf_parcel. Type 2 prints the counters, type 1 the detail, or with `brief` and without
// `loss_kind` a row of the table; no other type prints anything. With `loss_kind` the detail shows the loss
// session instead of the delay sessions.
int pm_show_intf(const void *decoded_parcel);
