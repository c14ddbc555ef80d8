// SPDX-License-Identifier: Apache-2.0
// Progress of long work, on standard error when that is a terminal.
#pragma once

#include <chrono>
#include <cstdint>

namespace perf_store {

// A line that is written over and over, and erased at the end. Nothing is written when standard error is
// no terminal.
class progress_line {
public:
    // `what` is "loading" or the like. `whole` is the amount of work in all; 0 when it is not known.
    progress_line(const char *what, std::uint64_t whole);
    ~progress_line();
    progress_line(const progress_line &) = delete;
    progress_line &operator=(const progress_line &) = delete;

    // To be called often: it costs next to nothing until the line is due again. `done` is the part of
    // `whole` that is done.
    void advance(std::uint64_t items, std::uint64_t done) {
        if (shown_ && ++calls_ % CALLS_BETWEEN_LOOKS == 0) {
            look(items, done);
        }
    }

private:
    static constexpr std::uint64_t CALLS_BETWEEN_LOOKS = 256;  // at the clock

    void look(std::uint64_t items, std::uint64_t done);

    const char *what_;
    std::uint64_t whole_;
    bool shown_;
    bool drawn_ = false;
    std::uint64_t calls_ = 0;
    std::chrono::steady_clock::time_point drawn_at_ = std::chrono::steady_clock::now();
};

}  // namespace perf_store
