// The lines that every block is made of: indented text, headings and empty lines. Those of a label and a value are
// in label_lines.h.
//
// `indent` is the number of leading blanks; a block nested in another is indented by two more.
// A line is cut at PM_LINE_SIZE - 1 bytes without its indent, its newline included.
#pragma once

#include <algorithm>
#include <cstddef>

#include "base/pm_output.h"

inline constexpr std::size_t PM_LINE_SIZE = 256;

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

inline void pm_print_empty_line() { pm_print<"\n">(); }
