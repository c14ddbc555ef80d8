// Progress of long work, on standard error when that is a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <unistd.h>

namespace perf_store {

// A line that is written over and over, and erased at the end.
class progress {
public:
    // `whole` is the amount of work in all; 0 when it is not known.
    progress(const char *what, std::uint64_t whole)
        : what_(what), whole_(whole), shown_(::isatty(STDERR_FILENO) != 0) {}
    ~progress() {
        if (drawn_) {
            std::fputs("\r\033[K", stderr);
        }
    }
    progress(const progress &) = delete;
    progress &operator=(const progress &) = delete;

    void advance(std::uint64_t items, std::uint64_t done) {
        if (!shown_ || ++calls_ % CALLS_BETWEEN_LOOKS != 0) {
            return;
        }
        const auto now = std::chrono::steady_clock::now();
        if (now - drawn_at_ < INTERVAL) {
            return;
        }
        drawn_at_ = now;
        drawn_ = true;
        std::fprintf(stderr, "\r\033[K%s: %llu items", what_, static_cast<unsigned long long>(items));
        if (whole_ != 0) {
            std::fprintf(stderr, ", %llu %%", static_cast<unsigned long long>(done * 100 / whole_));
        }
        std::fflush(stderr);
    }

private:
    static constexpr std::uint64_t CALLS_BETWEEN_LOOKS = 256;
    static constexpr std::chrono::milliseconds INTERVAL{100};

    const char *what_;
    std::uint64_t whole_;
    bool shown_;
    bool drawn_ = false;
    std::uint64_t calls_ = 0;
    std::chrono::steady_clock::time_point drawn_at_ = std::chrono::steady_clock::now();
};

}  // namespace perf_store
