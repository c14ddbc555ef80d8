// SPDX-License-Identifier: Apache-2.0
// The output buffer: how it is emptied, and what is said when nobody takes its bytes.
#include "base/pm_output.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "base/pm_assert.h"

namespace pm_output_detail {

buffer out;

namespace {

// Makes a pipe on standard output hold several buffers, so that its reader and this program work at the same time.
// Anything else, and a system that does not allow it, stays as it is.
void widen_pipe() {
    constexpr int PIPE_SIZE = 1024 * 1024;  // what a system allows to every user
    static bool tried = false;
    if (!tried) {
        tried = true;
        static_cast<void>(fcntl(STDOUT_FILENO, F_SETPIPE_SZ, PIPE_SIZE));
    }
}

}  // namespace

bool make_room(std::size_t size) {
    if (size > PM_OUTPUT_BUFFER_SIZE) {
        return false;
    }
    if (size > room()) {
        widen_pipe();  // the output is a long one
        pm_output_flush();
    }
    return true;
}

namespace {

// Writes all bytes to a descriptor; 0, or errno.
int write_all(int descriptor, const char *bytes, std::size_t length) {
    while (length > 0) {
        const ssize_t written = ::write(descriptor, bytes, length);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return errno;
        }
        bytes += written;
        length -= static_cast<std::size_t>(written);
    }
    return 0;
}

}  // namespace

void long_text_writer::put(const char *bytes, std::size_t length) {
    while (length > 0) {
        const std::size_t part = std::min(length, room());
        std::memcpy(out.cursor, bytes, part);
        out.cursor += part;
        bytes += part;
        length -= part;
        if (length > 0) {
            pm_output_flush();
        }
    }
}

void long_text_writer::fill(char byte, std::size_t length) {
    while (length > 0) {
        const std::size_t part = std::min(length, room());
        std::memset(out.cursor, byte, part);
        out.cursor += part;
        length -= part;
        if (length > 0) {
            pm_output_flush();
        }
    }
}

}  // namespace pm_output_detail

using pm_output_detail::out;

void pm_output_flush() {
    const auto length = static_cast<std::size_t>(out.cursor - out.bytes);
    out.cursor = out.bytes;
    const int error = pm_output_detail::write_all(STDOUT_FILENO, out.bytes, length);
    if (error == 0) {
        return;
    }
    if (error == EPIPE) {  // the reader has seen enough
        std::_Exit(0);
    }
    char message[256];
    const std::size_t cut = pm_format_text<"%s: cannot write to standard output: %s\n">(
        message, sizeof message, pm_output_program, static_cast<const char *>(std::strerror(error)));
    static_cast<void>(pm_output_detail::write_all(STDERR_FILENO, message, cut));
    std::_Exit(1);
}

void pm_output_error(const char *message, std::size_t length) {
    pm_output_flush();
    static_cast<void>(pm_output_detail::write_all(STDERR_FILENO, message, length));
}

void pm_assertion_failed(const char *expression, const char *source, int line, const char *function) {
    // Not pm_output_flush: it ends the program quietly when nobody reads.
    static_cast<void>(
        pm_output_detail::write_all(STDOUT_FILENO, out.bytes, static_cast<std::size_t>(out.cursor - out.bytes)));
    char message[PM_ERROR_SIZE];
    const std::size_t length = pm_format_text<"Assertion failed: %s, %s:%d, %s\n">(message, sizeof message, expression,
                                                                                   source, line, function);
    static_cast<void>(pm_output_detail::write_all(STDERR_FILENO, message, length));
    std::abort();
}
