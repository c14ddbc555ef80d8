// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_event_time.h"

#include "base/pm_assert.h"
#include "platform/kal_time.h"

std::uint64_t pm_get_epoch_time_in_msec_and_timespec(std::timespec *current_time) {
    PM_ASSERT(current_time != nullptr, "NULL != current_time", "pm_utils",
              "uint64_t pm_get_epoch_time_in_msec_and_timespec(struct timespec *)");
    kal_time_get_timespec_realtime(current_time);
    return kal_timespec_to_msec64(current_time);
}

std::uint32_t pm_get_event_to_now_delay_in_usec(std::timespec *event_time) {
    PM_ASSERT(event_time != nullptr, "NULL != event_time", "pm_utils",
              "uint32_t pm_get_event_to_now_delay_in_usec(struct timespec *)");
    std::timespec now{};
    kal_time_get_timespec_realtime(&now);
    std::timespec delay{};
    kal_time_diff(event_time, &now, &delay);
    // Unsigned, because an event ahead of the clock has a negative delay.
    const auto seconds = static_cast<std::uint64_t>(delay.tv_sec);
    const auto nanoseconds = static_cast<std::uint64_t>(delay.tv_nsec);
    const std::uint64_t half_up = nanoseconds % 1000 >= 500 ? 1 : 0;
    return static_cast<std::uint32_t>(seconds * 1000000 + nanoseconds / 1000 + half_up);
}

std::uint64_t pm_utils_timespec_to_nsec(const std::timespec *time) {
    PM_ASSERT(time != nullptr, "NULL != time", "pm_utils",
              "uint64_t pm_utils_timespec_to_nsec(const struct timespec *)");
    return static_cast<std::uint64_t>(time->tv_sec) * 1000000000 + static_cast<std::uint64_t>(time->tv_nsec);
}
