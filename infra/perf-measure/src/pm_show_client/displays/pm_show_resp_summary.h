// SPDX-License-Identifier: Apache-2.0
// The responder's summary: its interfaces, reply counters and reply rate.
#pragma once

// Prints a pm_resp_summary_parcel.
[[nodiscard]] int pm_show_resp_summary(const void *decoded_parcel);
