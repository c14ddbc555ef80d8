// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/time_text.h"

#include <ctime>

#include "base/pm_format.h"
#include "platform/kal_time.h"

namespace {

constexpr std::size_t TIME_TEXT_SIZE = 64;
constexpr std::size_t CALENDAR_SIZE = 32;

// The calendar part of a time stamp, without its fraction.
void calendar_text(std::uint64_t msec, char (&text)[CALENDAR_SIZE]) {
    std::timespec time{};
    kal_time_msec64_to_timespec(msec, &time);
    kal_time_format_timespec2(&time, KAL_TIME_CALENDAR_FORMAT, KAL_TIME_LOCAL_ZONE, text, sizeof text);
}

}  // namespace

const char *pm_time_str(std::uint64_t msec) {
    static char text[TIME_TEXT_SIZE];
    if (msec == 0) {
        return "N/A";
    }
    char calendar[CALENDAR_SIZE];
    calendar_text(msec, calendar);
    pm_format_text<"%s.%03d">(text, sizeof text, static_cast<const char *>(calendar), msec % 1000);
    return text;
}

const char *pm_time_nsec_str(std::uint64_t value) {
    static char text[TIME_TEXT_SIZE];
    if (value == 0) {
        return "N/A";
    }
    char calendar[CALENDAR_SIZE];
    calendar_text(value, calendar);
    pm_format_text<"%s.%09d">(text, sizeof text, static_cast<const char *>(calendar), value % 1000000000);
    return text;
}
