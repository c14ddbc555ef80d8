// See lines.h.
#include "pm_show_client/blocks/lines.h"

#include <cstring>
#include <ctime>

#include "platform/address.h"
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

void pm_print_heading(int indent, const char *heading) { pm_print<"%*s%s:\n">(indent, "", heading); }

void pm_print_label_str(int width, int indent, const char *label, const char *text) {
    pm_print_indented<"%-*s: %s\n">(indent, width - indent, label, text);
}

void pm_print_label_u32(int width, int indent, const char *label, std::uint32_t value, const char * /*unit*/) {
    pm_print_indented<"%-*s: %u\n">(indent, width - indent, label, value);
}

void pm_print_label_u64(int width, int indent, const char *label, std::uint64_t value, const char * /*unit*/) {
    pm_print_indented<"%-*s: %lu\n">(indent, width - indent, label, value);
}

void pm_print_counter(int indent, const char *label, std::uint64_t value) {
    pm_print_label_u64(PM_COUNTER_WIDTH, indent, label, value, "");
}

void pm_print_column_str(int indent, const char *label, const char *text) {
    pm_print_label_str(PM_COUNTER_WIDTH, indent, label, text);
}

void pm_print_column_u32(int indent, const char *label, std::uint32_t value) {
    pm_print_label_u32(PM_COUNTER_WIDTH, indent, label, value, "");
}

void pm_print_column_percent(int indent, const char *label, std::uint32_t value) {
    pm_print_indented<"%-*s: %u%%\n">(indent, PM_COUNTER_WIDTH - indent, label, value);
}

void pm_print_column_unit(int indent, const char *label, std::uint32_t value, const char *unit) {
    pm_print_indented<"%-*s: %u %s\n">(indent, PM_COUNTER_WIDTH - indent, label, value, unit);
}

void pm_print_label_hex(const char *label, std::uint32_t value) {
    pm_print_indented<"%-28s: 0x%08x\n">(2, label, value);
}

void pm_print_label_decimal(const char *label, std::uint32_t value) {
    pm_print_indented<"%-28s: %u\n">(2, label, value);
}

void pm_print_label_address(const char *label, const pm_record_address &address, int indent, int width) {
    const char *text = "Unknown";
    if (address.IPAddressType == PM_RECORD_ADDRESS_IPV4) {
        text = inet_ntoa_r(address.IPv4);
    } else if (address.IPAddressType == PM_RECORD_ADDRESS_IPV6) {
        text = inet6_ntoa_r(address.IPv6.octets);
    }
    pm_print_label_str(width, indent, label, text);
}

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
