// Standard output through one large buffer.
#pragma once

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace perf_store {

class output_file {
public:
    output_file() { buffer_.reserve(2 * FULL); }

    // Text to be written goes here.
    [[nodiscard]] std::string &buffer() { return buffer_; }

    // Both return an empty text, or why standard output cannot be written. A reader that goes away ends
    // the program quietly.
    [[nodiscard]] std::string flush_when_full() { return buffer_.size() < FULL ? "" : flush(); }
    [[nodiscard]] std::string flush() {
        const char *at = buffer_.data();
        std::size_t left = buffer_.size();
        while (left > 0) {
            const ssize_t written = ::write(STDOUT_FILENO, at, left);
            if (written < 0 && errno == EPIPE) {
                std::_Exit(0);
            }
            if (written < 0 && errno != EINTR) {
                return std::string("standard output: ") + std::strerror(errno);
            }
            at += written > 0 ? written : 0;
            left -= written > 0 ? static_cast<std::size_t>(written) : 0;
        }
        buffer_.clear();
        return "";
    }

private:
    static constexpr std::size_t FULL = 256 * 1024;

    std::string buffer_;
};

}  // namespace perf_store
