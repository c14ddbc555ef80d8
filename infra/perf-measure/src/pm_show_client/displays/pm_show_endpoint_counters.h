// SPDX-License-Identifier: Apache-2.0
// Counters of endpoints.
#pragma once

// Prints a pm_endpoint_counters_parcel: the segment lists that the filter wants. With `internal` the counters of
// a segment list are repeated for each of its atomic entries.
[[nodiscard]] int pm_show_endpoint_counters(const void *decoded_parcel);
