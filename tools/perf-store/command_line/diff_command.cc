// SPDX-License-Identifier: Apache-2.0
// diff: the command that compares two states, with the exit statuses of diff(1).
#include <cstdio>
#include <exception>

#include "perf-store/command_line/commands.h"
#include "perf-store/datasets/output_file.h"
#include "perf-store/diff/diff.h"

namespace perf_store {

namespace {

constexpr int EXIT_SAME = 0;
constexpr int EXIT_DIFFERENT = 1;
constexpr int EXIT_TROUBLE = 2;

int report_trouble(const pm_error &error) {
    static_cast<void>(report(error));
    return EXIT_TROUBLE;
}

// Reads a side; reports what is wrong with it.
bool read(const diff_source &source, bool with_time_stamps, diff_side *side) {
    const pm_error error = read_side(source, with_time_stamps, side);
    if (error) {  // the whole message
        static_cast<void>(std::fprintf(stderr, "%s\n", error.text().c_str()));
    }
    return !error;
}

int compare(const diff_options &options) {
    comparison_options how;
    for (const std::string &member : options.ignored) {
        if (const pm_error error = how.ignored.add(member)) {
            return report_trouble(pm_error("--ignore: " + error.text()));
        }
    }
    how.counters = options.counters;
    how.interval_given = options.interval_seconds > 0;
    constexpr double MSEC_PER_SECOND = 1000;
    how.interval_msec = static_cast<std::uint64_t>(options.interval_seconds * MSEC_PER_SECOND);
    const bool with_time_stamps = how.counters && !how.interval_given;
    diff_side from;
    diff_side to;
    if (!read({options.from, false}, with_time_stamps, &from) ||
        !read({options.to, options.to.empty()}, with_time_stamps, &to)) {
        return EXIT_TROUBLE;
    }
    output_file out;
    out.set_status_without_reader(EXIT_DIFFERENT);
    bool same = false;
    if (const pm_error error = write_differences(&from, &to, std::move(how), &out, &same)) {
        static_cast<void>(out.flush());  // what was found before
        return report_trouble(error);
    }
    return same ? EXIT_SAME : EXIT_DIFFERENT;
}

}  // namespace

int run_diff(const diff_options &options) {
    if (options.from == "-" && options.to == "-") {
        return report_trouble(pm_error("diff: standard input can be one of the two only"));
    }
    try {
        return compare(options);
    } catch (const std::exception &error) {
        return report_trouble(pm_error(error.what()));
    }
}

}  // namespace perf_store
