// SPDX-License-Identifier: Apache-2.0
// Writes the buffer whole, however little the file takes at a time.
#include "perf-store/datasets/output_file.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace perf_store {

pm_error output_file::flush() {
    const char *at = buffer_.data();
    std::size_t left = buffer_.size();
    while (left > 0) {
        const ssize_t written = ::write(file_descriptor_, at, left);
        if (written < 0 && errno == EPIPE) {
            std::_Exit(status_without_reader_);
        }
        if (written < 0 && errno != EINTR) {
            return pm_error(std::string(name_) + ": " + std::strerror(errno));
        }
        at += written > 0 ? written : 0;
        left -= written > 0 ? static_cast<std::size_t>(written) : 0;
    }
    buffer_.clear();
    return {};
}

}  // namespace perf_store
