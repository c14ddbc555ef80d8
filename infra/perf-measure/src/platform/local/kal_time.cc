// Clocks and the texts of points in time. See platform/kal_time.h.
#include "platform/kal_time.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace {

constexpr std::uint64_t MSEC_PER_SEC = 1000;
constexpr long NSEC_PER_MSEC = 1000000;
constexpr long NSEC_PER_SEC = 1000000000;

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
    return msec;
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
    if (size == 0) {
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
