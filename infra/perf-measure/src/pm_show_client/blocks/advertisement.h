// SPDX-License-Identifier: Apache-2.0
// What a delay session has advertised, and when it looks for something to advertise again.
#pragma once

#include <cstdint>

#include "schema/pm_records.h"

// Argument of pm_show_next_advertisement for what has no interval of its own.
inline constexpr std::uint32_t PM_NO_ADVERTISEMENT_INTERVAL = 0xFFFFFFFF;

// Each block is a heading at `indent` and lines indented by two more. The records are never null.

// What was advertised last. A reason is shown when it withdraws values, or else with `always_show_reason`.
void pm_show_last_advertisement(const pm_scb_last_advert_parcel *advertisement, int indent, bool always_show_reason);

// When the next check for an advertisement comes, and what has been measured for it. `interval_sec` is the
// length of the advertisement interval in seconds, 0 when there is no periodic advertisement.
void pm_show_next_advertisement(const pm_scb_next_advert_parcel *advertisement, std::uint32_t interval_sec, int indent);

// The same for what `probe` measures: while it does not run, no advertisement is scheduled.
void pm_show_next_advertisement_of_probe(const pm_scb_probe_parcel *probe,
                                         const pm_scb_next_advert_parcel *advertisement, std::uint32_t interval_sec,
                                         int indent);
