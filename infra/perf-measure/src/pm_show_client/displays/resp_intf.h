// An interface of the responder: its attributes and reply rate, or its reply counters.
#pragma once

// Prints a pm_resp_intf_parcel: attributes for command type 7, where `internal` adds the bundle's
// interfaces, counters for 8, and the name alone for any other type.
[[nodiscard]] int pm_show_resp_intf(const void *decoded_parcel);
