// SPDX-License-Identifier: Apache-2.0
// Clocks and the texts of points in time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>

inline constexpr int KAL_TIME_LOCAL_ZONE = 2;  // mode of kal_time_format_timespec2

// The time now. On the local platform the moment in the environment variable PERF_SHOW_NOW, when that
// is a number of milliseconds since the epoch: so the ages of a captured state stay those of its capture.
void kal_time_get_timespec_realtime(std::timespec *now);
[[nodiscard]] std::uint64_t kal_timespec_to_msec64(const std::timespec *time);
void kal_time_msec64_to_timespec(std::uint64_t msec, std::timespec *time);

// The format of the displays' time stamps, the one that is fast on the local platform.
inline constexpr char KAL_TIME_CALENDAR_FORMAT[] = "%b %d %Y %T";

// Formats `time` with a strftime format in the local time zone. A text that does not fit leaves
// the empty text.
void kal_time_format_timespec2(const std::timespec *time, const char *format, int mode, char *buffer, std::size_t size);

// `*difference` = later - earlier, nanoseconds within 0 to 999999999.
void kal_time_diff(const std::timespec *earlier, const std::timespec *later, std::timespec *difference);

// "%ud %02u:%02u:%02u" of days, hours, minutes and seconds. Borrowed; valid until the next call.
[[nodiscard]] const char *sprint_dhms(std::uint32_t seconds);
