// SPDX-License-Identifier: Apache-2.0
// How much memory a program takes that is its own.
#pragma once

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "tests/stress/stress_support.h"

// Kilobytes that are a process's own, not the store's; 0 when it has ended.
inline long own_memory_kb(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with("RssAnon:")) {
            return std::stol(line.substr(8));
        }
    }
    return 0;
}

// The most that a command has at any time.
inline long largest_memory_kb(const std::vector<std::string> &words, const std::string &store) {
    long largest = 0;
    running_process program([&] { return become(words, store); });
    while (!program.wait(0.001)) {
        const long now = own_memory_kb(program.id());
        if (now == 0) {
            break;
        }
        largest = std::max(largest, now);
    }
    return program.id() < 0 || program.wait(5) ? largest : -1;
}
