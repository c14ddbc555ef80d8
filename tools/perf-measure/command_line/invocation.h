// SPDX-License-Identifier: Apache-2.0
// The command line taken apart: the plain options, and the words.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace perf_measure {

// Exit statuses.
inline constexpr int EXIT_SHOWN = 0;
inline constexpr int EXIT_NOT_READ = 1;  // something could not be read, or was not found
inline constexpr int EXIT_USAGE = 2;

struct invocation {
    std::vector<std::string> words;
    bool json = false;
    bool pretty = false;
    bool no_pager = false;
    std::optional<double> watch_sec;
    std::string svg_file;
    bool ascii = false;
    std::string format;         // of metrics; "" for openmetrics
    std::string listen;         // "" for no service
    std::string textfile;       // "" for none
    double interval_sec = 0.0;  // 0: once
};

// Reads the arguments, without the program's name. A result other than nothing ends the program with that
// status: after --help and --version, and after a wrong option, which has been reported.
[[nodiscard]] std::optional<int> read_arguments(std::vector<std::string> arguments, invocation *out);

// Reports wrong usage on standard error; EXIT_USAGE.
[[nodiscard]] int report_usage(const std::string &problem);
// Reports something that could not be read or done; EXIT_NOT_READ.
[[nodiscard]] int report_failure(const std::string &problem);

}  // namespace perf_measure
