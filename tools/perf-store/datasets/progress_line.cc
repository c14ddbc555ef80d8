// SPDX-License-Identifier: Apache-2.0
// Draws the line at most ten times a second.
#include "perf-store/datasets/progress_line.h"

#include <cstdio>
#include <unistd.h>

namespace perf_store {

namespace {

constexpr std::chrono::milliseconds INTERVAL{100};
constexpr char ERASE_LINE[] = "\r\033[K";

}  // namespace

progress_line::progress_line(const char *what, std::uint64_t whole)
    : what_(what), whole_(whole), shown_(::isatty(STDERR_FILENO) != 0) {}

progress_line::~progress_line() {
    if (drawn_) {
        std::fputs(ERASE_LINE, stderr);
    }
}

void progress_line::look(std::uint64_t items, std::uint64_t done) {
    const auto now = std::chrono::steady_clock::now();
    if (now - drawn_at_ < INTERVAL) {
        return;
    }
    drawn_at_ = now;
    drawn_ = true;
    std::fprintf(stderr, "%s%s: %llu items", ERASE_LINE, what_, static_cast<unsigned long long>(items));
    if (whole_ != 0) {
        std::fprintf(stderr, ", %llu %%", static_cast<unsigned long long>(done * 100 / whole_));
    }
    std::fflush(stderr);
}

}  // namespace perf_store
