// SPDX-License-Identifier: Apache-2.0
// One scrape: a run of perf-measure, whose output is passed on while it comes.
//
// The store is read in a process of its own, so that the service holds nothing of it, sees each change of the
// inventory, and outlives whatever happens to a reader.
#pragma once

#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace exporter {

class scrape {
public:
    scrape() = default;
    ~scrape();  // ends the run
    scrape(const scrape &) = delete;
    scrape &operator=(const scrape &) = delete;

    // Runs a command: the program's path, and its arguments, and waits until it has read the store, when its output
    // begins. False when it fails before that or takes longer than `limit`: problem() says why, in one line or more.
    [[nodiscard]] bool start(const std::string &program, const std::vector<std::string> &arguments,
                             std::chrono::milliseconds limit);

    // The next part of the output; empty at its end.
    [[nodiscard]] std::string_view next();
    // After the end: whether the run came to a good one, so that the output is whole.
    [[nodiscard]] bool finish();

    [[nodiscard]] const std::string &problem() const { return problem_; }

private:
    [[nodiscard]] bool wait_for_output(std::chrono::milliseconds limit);

    pid_t child_ = -1;
    int output_ = -1;
    int errors_ = -1;
    std::array<char, 64 * 1024> bytes_;
    std::size_t waiting_ = 0;  // bytes that next() has not given yet
    std::string problem_;
};

}  // namespace exporter
