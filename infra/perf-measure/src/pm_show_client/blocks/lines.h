// SPDX-License-Identifier: Apache-2.0
// The lines that every block is made of: indented text, headings and empty lines. Those of a label and a value are
// in label_lines.h.
//
// `indent` is the number of leading blanks; a block nested in another is indented by two more.
// A line is cut at PM_LINE_SIZE - 1 bytes without its indent, its newline included.
#pragma once

#include <cstddef>

#include "base/pm_output.h"

inline constexpr std::size_t PM_LINE_SIZE = 256;

// Prints `indent` blanks and the formatted text, which is cut silently and then loses its newline.
template <pm_format_literal Format, class... Arguments>
inline void pm_print_indented(int indent, Arguments... arguments) {
    pm_print_cut<Format, PM_LINE_SIZE - 1>(indent, arguments...);
}

// A heading: `indent` blanks, the text and a colon. It is not cut.
void pm_print_heading(int indent, pm_text heading);

inline void pm_print_empty_line() { pm_print<"\n">(); }
