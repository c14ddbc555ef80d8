// SPDX-License-Identifier: Apache-2.0
// Called by no show: points in time of the realtime clock, and the time since an event.
#pragma once

#include <cstdint>
#include <ctime>

// Milliseconds since the epoch, now, with the time itself left in `*current_time`. Null aborts.
std::uint64_t pm_get_epoch_time_in_msec_and_timespec(std::timespec *current_time);

// Microseconds from an event to now, rounded half up and cut to 32 bits (about 71 minutes). Null
// aborts.
[[nodiscard]] std::uint32_t pm_get_event_to_now_delay_in_usec(std::timespec *event_time);

// Nanoseconds of a point in time or of a duration. Null aborts.
[[nodiscard]] std::uint64_t pm_utils_timespec_to_nsec(const std::timespec *time);
