// SPDX-License-Identifier: Apache-2.0
// Texts of points in time, and durations and ages as the displays print them.
#pragma once

#include <cstdint>

#include "pm_show_client/pm_show_clock.h"

// Text of a time stamp in milliseconds since the epoch, "Mar 05 2024 14:03:07.042" in the local
// time zone; "N/A" for 0, which means never. Each of the two routines has one static buffer, which
// its next text overwrites (0 leaves it alone): one of each may be live in a statement.
[[nodiscard]] const char *pm_time_str(std::uint64_t msec);

// Text of a hop's time stamp. The date reads the value as milliseconds, the fraction of nine digits
// reads it as nanoseconds.
[[nodiscard]] const char *pm_time_nsec_str(std::uint64_t value);

// A duration as the displays print it, "%u.%u" of the two: seconds and milliseconds without padding,
// so that 1005 ms reads 1.5 and 1050 ms reads 1.50.
struct pm_duration {
    std::uint64_t seconds;
    std::uint64_t msec;
};

[[nodiscard]] constexpr pm_duration pm_duration_of(std::uint64_t msec) { return {msec / 1000, msec % 1000}; }

// The age of a time stamp in milliseconds since the epoch. One in the future wraps around.
[[nodiscard]] inline pm_duration pm_age_of(std::uint64_t timestamp_msec) {
    return pm_duration_of(pm_show_now_msec - timestamp_msec);
}
