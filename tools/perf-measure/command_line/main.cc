// perf-measure: the shows of perf-show, asked for in words.
#include <csignal>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "perf-measure/command_line/commands.h"
#include "perf-measure/command_line/complete.h"
#include "perf-measure/command_line/invocation.h"
#include "perf-measure/command_line/session.h"
#include "perf-measure/command_line/show.h"

namespace {

// What the completion of a shell calls: the words of a command line, the last one being completed.
constexpr std::string_view COMPLETE = "__complete";

}  // namespace

int main(int argc, char **argv) {
    using namespace perf_measure;
    take_time();                    // first of all
    std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away shows as a failed write
    std::signal(SIGXFSZ, SIG_IGN);  // so does a file at its limit

    if (argc > 1 && std::string_view(argv[1]) == COMPLETE) {
        return print_candidates({argv + 2, argv + argc});
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
