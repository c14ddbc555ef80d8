// SPDX-License-Identifier: Apache-2.0
// From words to metrics on standard output, in a file, or behind an address.
#include "perf-measure/command_line/metrics.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <string>
#include <unistd.h>

#include "perf-measure/command_line/metrics_service.h"
#include "perf-measure/command_line/show.h"
#include "perf-measure/metrics/collect.h"
#include "perf-measure/metrics/exposition.h"
#include "perf-measure/metrics/replaced_file.h"
#include "perf-measure/terminal/child_run.h"

namespace perf_measure {

namespace {

pm_error write_metrics(const metric_store &read, const invocation &given, int descriptor, const char *name) {
    const bool is_older = given.format == "prometheus";
    perf_store::output_file out(descriptor, name);
    return write_exposition(read, is_older ? exposition_form::prometheus : exposition_form::openmetrics, &out);
}

// Reads the store and writes what the words ask for.
int write_once(const words_command &command, const invocation &given) {
    if (const std::string problem = hand_over(command); !problem.empty()) {
        return report_failure(problem);
    }
    metric_store read;
    if (const pm_error error = collect_metrics(&read)) {
        return report_failure((command.name.empty() ? "" : command.name + ": ") + error.text());
    }
    const pm_error unwritten = given.textfile.empty()
                                   ? write_metrics(read, given, STDOUT_FILENO, "standard output")
                                   : replace_file(given.textfile, [&](int descriptor) {
                                         return write_metrics(read, given, descriptor, given.textfile.c_str());
                                     });
    return unwritten ? report_failure(unwritten.text()) : EXIT_SHOWN;
}

// Writes again and again, each time in a process of its own, until a signal ends it. A failure is reported, and the
// file stays as it is until it goes well again.
int write_repeatedly(const words_command &command, const invocation &given) {
    sigset_t ends;
    sigemptyset(&ends);
    sigaddset(&ends, SIGTERM);
    sigaddset(&ends, SIGINT);
    ::sigprocmask(SIG_BLOCK, &ends, nullptr);
    const auto whole = static_cast<std::time_t>(given.interval_sec);
    const std::timespec interval{whole, static_cast<long>((given.interval_sec - static_cast<double>(whole)) * 1e9)};
    for (;;) {
        static_cast<void>(run_in_child([&] { return write_once(command, given); },
                                       [](stream, std::string_view) { return true; }, false));
        if (::sigtimedwait(&ends, nullptr, &interval) > 0) {
            return EXIT_SHOWN;
        }
    }
}

}  // namespace

int metrics(const words_command &command, const invocation &given) {
    if (!given.listen.empty()) {
        return serve_metrics(given);
    }
    return given.interval_sec > 0 ? write_repeatedly(command, given) : write_once(command, given);
}

}  // namespace perf_measure
