// The lines that every display is made of: indented text, label and value with the colon in one
// column, addresses and points in time.
//
// `indent` is the number of leading blanks; a block nested in another stands two further in.
// `width` is the column, counted from the start of the line, at which the colon stands, so that
// the colons of a block line up whatever the indent; a longer label pushes its colon to the right.
// A line is cut at PM_LINE_SIZE - 1 bytes without its indent, its newline included.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "base/pm_output.h"
#include "pm_show_client/pm_show_clock.h"
#include "schema/pm_records.h"

inline constexpr std::size_t PM_LINE_SIZE = 256;
inline constexpr int PM_COUNTER_WIDTH = 48;  // column of the colon of counters

namespace pm_lines_detail {

// Prints a text that is too long for a line, cut.
template <pm_format_literal Format>
void write_cut(const pm_format_detail::prepared<Format> &text, std::size_t indent) {
    char line[PM_LINE_SIZE - 1];
    pm_text_writer writer(line, line + sizeof line);
    pm_format_detail::write<Format>(writer, text);
    pm_output_writer output;
    output.fill(' ', indent);
    output.put(line, sizeof line);
}

}  // namespace pm_lines_detail

// Prints `indent` blanks and the formatted text, which is cut silently and then loses its newline.
template <pm_format_literal Format, class... Arguments>
inline void pm_print_indented(int indent, Arguments... arguments) {
    if constexpr (pm_prints_with_printf) {
        char line[PM_LINE_SIZE];
        pm_snprintf_text<Format>(line, sizeof line, arguments...);
        pm_printf<"%*s%s">(indent, "", static_cast<const char *>(line));
    } else {
        pm_format_detail::prepared<Format> text;
        pm_format_detail::prepare<Format>(text, arguments...);
        const auto blanks = static_cast<std::size_t>(std::max(indent, 0));
        if (text.size >= PM_LINE_SIZE) {
            pm_lines_detail::write_cut<Format>(text, blanks);
        } else {
            pm_output_write<Format>(text, blanks);
        }
    }
}

// A heading: `indent` blanks, the text and a colon. It is not cut.
void pm_print_heading(int indent, const char *heading);

// Label lines. The unit that callers pass ("%", "pkts") is not printed.
void pm_print_label_str(int width, int indent, const char *label, const char *text);
void pm_print_label_u32(int width, int indent, const char *label, std::uint32_t value, const char *unit);
void pm_print_label_u64(int width, int indent, const char *label, std::uint64_t value, const char *unit);

// A counter: a label line whose colon stands at PM_COUNTER_WIDTH.
void pm_print_counter(int indent, const char *label, std::uint64_t value);

// Label lines whose colon stands at PM_COUNTER_WIDTH: a text, a number, "5%" and "10 usec".
void pm_print_column_str(int indent, const char *label, const char *text);
void pm_print_column_u32(int indent, const char *label, std::uint32_t value);
void pm_print_column_percent(int indent, const char *label, std::uint32_t value);
void pm_print_column_unit(int indent, const char *label, std::uint32_t value, const char *unit);

// Label lines at indent 2 with the colon in column 30: a number in eight hexadecimal digits, and in decimal.
void pm_print_label_hex(const char *label, std::uint32_t value);
void pm_print_label_decimal(const char *label, std::uint32_t value);

// A label line of an address; "Unknown" when it is neither IPv4 nor IPv6.
void pm_print_label_address(const char *label, const pm_record_address &address, int indent, int width);

inline void pm_print_empty_line() { pm_print<"\n">(); }

[[nodiscard]] inline const char *pm_true_or_false(std::uint32_t flag) { return flag != 0 ? "True" : "False"; }

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
