// perf-measure: the shows of perf-show, asked for in words.
#include <csignal>
#include <string>
#include <vector>

#include "perf-measure/command_line/commands.h"
#include "perf-measure/command_line/invocation.h"
#include "perf-measure/command_line/show.h"

int main(int argc, char **argv) {
    using namespace perf_measure;
    take_time();                    // first of all
    std::signal(SIGPIPE, SIG_IGN);  // a reader that goes away shows as a failed write
    std::signal(SIGXFSZ, SIG_IGN);  // so does a file at its limit

    invocation given;
    if (const std::optional<int> status = read_arguments({argv + 1, argv + argc}, &given)) {
        return *status;
    }
    if (given.words.empty()) {
        return report_usage("what to show is missing; perf-measure --help tells what there is");
    }
    return run_command(given);
}
