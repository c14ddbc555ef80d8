// SPDX-License-Identifier: Apache-2.0
// Standard output and standard error of the program.
//
// Everything that a show prints goes through one buffer, written out when it is full, before a
// message on standard error, and at the end. A reader that goes away ends the program quietly; any
// other failure to write is reported once on standard error and ends it with status 1.
#pragma once

#include <algorithm>
#include <cstddef>

#include "base/pm_format.h"

inline constexpr std::size_t PM_OUTPUT_BUFFER_SIZE = 128 * 1024;

namespace pm_output_detail {

// The buffer. The cursor is where the next byte goes. The bytes beyond the buffer's size are never
// written out: a fast writer may touch them.
struct buffer {
    char bytes[PM_OUTPUT_BUFFER_SIZE + PM_WRITER_SLACK];
    char *cursor = bytes;
};
extern buffer out;

[[nodiscard]] inline std::size_t room() {
    return static_cast<std::size_t>(out.bytes + PM_OUTPUT_BUFFER_SIZE - out.cursor);
}

// Makes room for `size` bytes in a row; false when they are more than the whole buffer.
[[nodiscard]] bool make_room(std::size_t size);

// Writes texts of any length, through the buffer.
class long_text_writer {
public:
    void put(const char *bytes, std::size_t length);
    void fill(char byte, std::size_t length);
};

// Prints `indent` blanks and a prepared text of any length.
template <pm_format_literal Format>
inline void write_text(const pm_format_detail::prepared<Format> &text, std::size_t indent) {
    const std::size_t size = indent + text.size;
    if (size > room() && !make_room(size)) {
        long_text_writer writer;
        writer.fill(' ', indent);
        pm_format_detail::write<Format>(writer, text);
        return;
    }
    pm_fast_writer writer(out.cursor);
    if (indent != 0) {
        writer.fill(' ', indent);
    }
    pm_format_detail::write<Format>(writer, text);
    out.cursor = writer.cursor();
}

// Prints `indent` blanks and the first `Length` bytes of a prepared text that is longer.
template <std::size_t Length, pm_format_literal Format>
void write_cut_text(const pm_format_detail::prepared<Format> &text, std::size_t indent) {
    char line[Length];
    pm_text_writer cut(line, line + Length);
    pm_format_detail::write<Format>(cut, text);
    long_text_writer writer;
    writer.fill(' ', indent);
    writer.put(line, Length);
}

}  // namespace pm_output_detail

// Prints to standard output.
template <pm_format_literal Format, class... Arguments>
inline void pm_print(Arguments... arguments) {
    pm_format_detail::prepared<Format> text;
    pm_format_detail::prepare<Format>(text, arguments...);
    pm_output_detail::write_text<Format>(text, 0);
}

// Prints `indent` blanks, none if it is negative, and a text of which at most `Longest` bytes are printed.
template <pm_format_literal Format, std::size_t Longest, class... Arguments>
inline void pm_print_cut(int indent, Arguments... arguments) {
    pm_format_detail::prepared<Format> text;
    pm_format_detail::prepare<Format>(text, arguments...);
    const auto blanks = static_cast<std::size_t>(std::max(indent, 0));
    if (text.size > Longest) {
        pm_output_detail::write_cut_text<Longest, Format>(text, blanks);
    } else {
        pm_output_detail::write_text<Format>(text, blanks);
    }
}

// Who reports that standard output cannot be written.
inline const char *pm_output_program = "perf-show";

// Writes out what is buffered. Ends the program when standard output takes no more.
void pm_output_flush();

// Writes `message` to standard error, after what was printed before it.
void pm_output_error(const char *message, std::size_t length);

inline constexpr std::size_t PM_ERROR_SIZE = 2048;  // longest message on standard error

// Formats a message of at most PM_ERROR_SIZE - 1 bytes to standard error.
template <pm_format_literal Format, class... Arguments>
inline void pm_print_error(Arguments... arguments) {
    char message[PM_ERROR_SIZE];
    pm_output_error(message, pm_format_text<Format>(message, sizeof message, arguments...));
}
