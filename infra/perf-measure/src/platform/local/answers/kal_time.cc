// SPDX-License-Identifier: Apache-2.0
// Clocks and the texts of points in time.
#include "platform/kal_time.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "base/pm_format.h"
#include "base/pm_output.h"

namespace {

constexpr std::uint64_t MSEC_PER_SEC = 1000;
constexpr long NSEC_PER_MSEC = 1000000;
constexpr long NSEC_PER_SEC = 1000000000;

// No moment that was captured: in milliseconds it is in 1973 at the latest, in seconds it is after 2001.
constexpr std::uint64_t EARLIEST_IN_SECONDS = 1'000'000'000;
constexpr std::uint64_t LATEST_IN_SECONDS = 99'999'999'999;

// Tells once that a moment is given in seconds.
void report_seconds(const char *text) {
    static bool reported = false;
    if (!reported) {
        reported = true;
        pm_print_error<"perf-show: PERF_SHOW_NOW=%s is in seconds; it is ignored, for it takes milliseconds\n">(text);
    }
}

// The moment that PERF_SHOW_NOW sets, in milliseconds since the epoch; none unless it is such a number.
std::optional<std::uint64_t> replayed_moment() {
    const char *const text = std::getenv("PERF_SHOW_NOW");
    if (text == nullptr) {
        return std::nullopt;
    }
    const char *const end = text + std::strlen(text);
    std::uint64_t msec = 0;
    const auto [stop, error] = std::from_chars(text, end, msec);
    if (error != std::errc() || stop != end) {
        return std::nullopt;
    }
    if (msec >= EARLIEST_IN_SECONDS && msec <= LATEST_IN_SECONDS) {
        report_seconds(text);
        return std::nullopt;
    }
    return msec;
}

constexpr std::time_t SEC_PER_DAY = 24 * 60 * 60;

// A day of local time during which the zone's offset does not change, so that the time of day is arithmetic.
struct local_day {
    std::time_t begin = 0;
    std::time_t end = 0;  // none yet
    long zone = 0;        // of the C library, when the day was looked up
    char date[24] = {};   // "%b %d %Y "
    std::size_t date_length = 0;
};

// Whether another time has the date and the offset from UTC of `day`.
bool is_same_offset(std::time_t other, const std::tm &day) {
    std::tm local{};
    return localtime_r(&other, &local) != nullptr && local.tm_gmtoff == day.tm_gmtoff && local.tm_mday == day.tm_mday;
}

// The day of `time`; null when it has no such day. The day before it is forgotten.
const local_day *day_of(std::time_t time) {
    static local_day day;
    if (time >= day.begin && time < day.end && day.zone == timezone) {
        return &day;
    }
    day.end = day.begin;
    std::tm local{};
    if (localtime_r(&time, &local) == nullptr) {
        return nullptr;
    }
    const std::time_t begin = time - local.tm_hour * 3600 - local.tm_min * 60 - local.tm_sec;
    const std::time_t end = begin + SEC_PER_DAY;
    if (!is_same_offset(begin, local) || !is_same_offset(end - 1, local)) {
        return nullptr;
    }
    day.date_length = std::strftime(day.date, sizeof day.date, "%b %d %Y ", &local);
    if (day.date_length == 0) {
        return nullptr;
    }
    day.begin = begin;
    day.end = end;
    day.zone = timezone;
    return &day;
}

char *write_two_digits(char *to, std::uint32_t value) {
    to[0] = static_cast<char>('0' + value / 10);
    to[1] = static_cast<char>('0' + value % 10);
    return to + 2;
}

// Writes the calendar format without strftime, which costs more than all else of a line. False when it cannot.
bool format_calendar(std::time_t time, char *buffer, std::size_t size) {
    constexpr std::size_t CLOCK_SIZE = sizeof "00:00:00";
    const local_day *const day = day_of(time);
    if (day == nullptr || day->date_length + CLOCK_SIZE > size) {
        return false;
    }
    const auto second = static_cast<std::uint32_t>(time - day->begin);
    std::memcpy(buffer, day->date, day->date_length);
    char *at = write_two_digits(buffer + day->date_length, second / 3600);
    *at++ = ':';
    at = write_two_digits(at, second / 60 % 60);
    *at++ = ':';
    *write_two_digits(at, second % 60) = '\0';
    return true;
}

}  // namespace

void kal_time_get_timespec_realtime(std::timespec *now) {
    if (const std::optional<std::uint64_t> moment = replayed_moment()) {
        kal_time_msec64_to_timespec(*moment, now);
    } else {
        clock_gettime(CLOCK_REALTIME, now);
    }
}

std::uint64_t kal_timespec_to_msec64(const std::timespec *time) {
    return static_cast<std::uint64_t>(time->tv_sec) * MSEC_PER_SEC +
           static_cast<std::uint64_t>(time->tv_nsec / NSEC_PER_MSEC);
}

void kal_time_msec64_to_timespec(std::uint64_t msec, std::timespec *time) {
    time->tv_sec = static_cast<std::time_t>(msec / MSEC_PER_SEC);
    time->tv_nsec = static_cast<long>(msec % MSEC_PER_SEC) * NSEC_PER_MSEC;
}

void kal_time_format_timespec2(const std::timespec *time, const char *format, int /*mode*/, char *buffer,
                               std::size_t size) {
    std::tm local{};
    if (size == 0 ||
        (std::strcmp(format, KAL_TIME_CALENDAR_FORMAT) == 0 && format_calendar(time->tv_sec, buffer, size))) {
        return;
    }
    if (localtime_r(&time->tv_sec, &local) == nullptr || std::strftime(buffer, size, format, &local) == 0) {
        buffer[0] = '\0';
    }
}

void kal_time_diff(const std::timespec *earlier, const std::timespec *later, std::timespec *difference) {
    difference->tv_sec = later->tv_sec - earlier->tv_sec;
    difference->tv_nsec = later->tv_nsec - earlier->tv_nsec;
    if (difference->tv_nsec < 0) {
        difference->tv_nsec += NSEC_PER_SEC;
        --difference->tv_sec;
    }
}

const char *sprint_dhms(std::uint32_t seconds) {
    static char text[32];
    const std::uint32_t minutes = seconds / 60;
    const std::uint32_t hours = minutes / 60;
    std::snprintf(text, sizeof text, "%ud %02u:%02u:%02u", hours / 24, hours % 24, minutes % 60, seconds % 60);
    return text;
}
