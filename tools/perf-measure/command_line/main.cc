// SPDX-License-Identifier: Apache-2.0
// perf-measure: the shows of perf-show, asked for in words.
#include <csignal>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "base/pm_output.h"
#include "perf-measure/command_line/commands.h"
#include "perf-measure/command_line/complete.h"
#include "perf-measure/command_line/invocation.h"
#include "perf-measure/command_line/session.h"
#include "perf-measure/command_line/show.h"
#include "perf-measure/phrases/help.h"
#include "perf-measure/phrases/numbers.h"
#include "perf-measure/terminal/child_run.h"

using namespace perf_measure;

namespace {

// What no person calls begins so.
constexpr std::string_view OTHER_USES = "__";

int print(const std::string &text) { return write_fully(STDOUT_FILENO, text) ? EXIT_SHOWN : EXIT_NOT_READ; }

// __complete, for the completion of shells: the words of a command line, the last one being completed. __words and
// __manual, for documents: the words for options of perf-show, and the commands as a part of the manual page.
int serve_others(std::string_view use, const std::vector<std::string> &words) {
    if (use == "__complete") {
        return print_candidates(words);
    }
    if (use == "__words") {
        const std::string said = words_of(words);
        return said.empty() ? report_usage("no phrase has these options") : print(said + '\n');
    }
    return use == "__manual" ? print(manual_commands()) : report_usage("unknown use");
}

}  // namespace

int main(int argc, char **argv) {
    take_time();  // first of all
    pm_output_program = "perf-measure";
    std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away shows as a failed write
    std::signal(SIGXFSZ, SIG_IGN);  // so does a file at its limit

    if (argc > 1 && std::string_view(argv[1]).starts_with(OTHER_USES)) {
        return serve_others(argv[1], {argv + 2, argv + argc});
    }
    invocation given;
    if (const std::optional<int> status = read_arguments({argv + 1, argv + argc}, &given)) {
        return *status;
    }
    if (given.words.empty() && ::isatty(STDIN_FILENO) != 0 && ::isatty(STDOUT_FILENO) != 0) {
        return run_session();
    }
    if (given.words.empty()) {
        return report_usage("what to show is missing; perf-measure --help tells what there is");
    }
    return run_command(given);
}
