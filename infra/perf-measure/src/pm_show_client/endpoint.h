// Endpoints: delay, liveness and probe measurement, each as detail and as a table.
#pragma once

// Prints a pm_endpoint_common: of its three sections those that `h_value` asks for and that hold something.
// PM_SHOW_NOTHING when there is none.
int pm_show_endpoint(const void *decoded_parcel);
