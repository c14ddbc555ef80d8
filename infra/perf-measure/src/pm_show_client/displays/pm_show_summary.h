// SPDX-License-Identifier: Apache-2.0
// The infrastructure summary: how many interfaces, SR policies, endpoints and RSVP-TE tunnels have
// measurement sessions, the session totals of each transport and measurement kind, the global
// counters, the probe sessions and the sessions offloaded to each NPU.
#pragma once

// Prints a pm_summary_parcel. `internal` adds the state of queue and timers; `delay_kind` and
// `liveness_kind` select the blocks of one kind.
[[nodiscard]] int pm_show_summary(const void *decoded_parcel);
