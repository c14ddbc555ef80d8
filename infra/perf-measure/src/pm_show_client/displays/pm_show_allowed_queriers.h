// SPDX-License-Identifier: Apache-2.0
// The prefixes of allowed queriers, and the ports on which the responder receives their packets.
#pragma once

// Prints a pm_querier_prefixes_summary. Without an open port the prefixes are not shown either.
// `internal` adds the reference counters.
[[nodiscard]] int pm_show_allowed_queriers(const void *decoded_parcel);
