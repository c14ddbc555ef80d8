// SPDX-License-Identifier: Apache-2.0
// The prefixes of allowed responders, and the ports on which the querier receives their packets, on
// the CPU and on NPUs.
#pragma once

// Prints a pm_responder_prefixes_summary. Without an open port the prefixes are not shown either.
// `internal` adds the reference counters.
[[nodiscard]] int pm_show_allowed_responders(const void *decoded_parcel);
