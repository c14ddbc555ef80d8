// SPDX-License-Identifier: Apache-2.0
// Output through one large buffer, to standard output or another file descriptor.
//
// The buffer is filled by its user, who calls flush_when_full() after each line and flush() at the end;
// what is not flushed is not written.
#pragma once

#include <string>
#include <unistd.h>

#include "base/pm_error.h"

namespace perf_store {

class output_file {
public:
    // The file descriptor stays the caller's. The name is for messages.
    explicit output_file(int file_descriptor = STDOUT_FILENO, const char *name = "standard output")
        : file_descriptor_(file_descriptor), name_(name) {
        buffer_.reserve(2 * FULL);
    }
    output_file(const output_file &) = delete;
    output_file &operator=(const output_file &) = delete;

    // Text to be written goes here.
    [[nodiscard]] std::string &buffer() { return buffer_; }

    // Both fail with why the file cannot be written. When the reader of a pipe has gone away, the program
    // ends here, quietly and with status 0 or the one that was set.
    [[nodiscard]] pm_error flush_when_full() { return buffer_.size() < FULL ? pm_error() : flush(); }
    [[nodiscard]] pm_error flush();

    void set_status_without_reader(int status) { status_without_reader_ = status; }

private:
    static constexpr std::size_t FULL = 256 * 1024;  // bytes

    int file_descriptor_;
    const char *name_;
    int status_without_reader_ = 0;
    std::string buffer_;
};

}  // namespace perf_store
