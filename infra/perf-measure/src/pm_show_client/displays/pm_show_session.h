// SPDX-License-Identifier: Apache-2.0
// One measurement session of any transport.
#pragma once

// Prints a pm_session_parcel. `internal` adds what the engine keeps for itself, `detail` the packets of a probe.
[[nodiscard]] int pm_show_session(const void *decoded_parcel);
