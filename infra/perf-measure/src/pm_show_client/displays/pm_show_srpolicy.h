// SPDX-License-Identifier: Apache-2.0
// SR policies: their detail, a table of delays and a table of liveness states.
#pragma once

// Prints a pm_srpolicy_parcel: its detail, or with `brief` a row for each candidate path, of delays when
// `h_value` is 0 or 4, of liveness when it is 2; nothing when it is another. In the detail `detail` adds the
// segment lists, `verbose` the atomic paths in them, and `internal` what the engine keeps for itself.
[[nodiscard]] int pm_show_srpolicy(const void *decoded_parcel);
