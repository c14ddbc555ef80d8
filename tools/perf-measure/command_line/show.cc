// SPDX-License-Identifier: Apache-2.0
// Words to the back end, and the back end's answer to an exit status.
#include "perf-measure/command_line/show.h"

#include <ctime>
#include <vector>

#include "base/pm_output.h"
#include "front/dispatch.h"
#include "front/generic_show.h"
#include "front/options.h"
#include "perf-measure/command_line/invocation.h"
#include "perf-measure/command_line/store_check.h"
#include "perf-measure/items/nodes.h"
#include "perf-measure/json/json_show.h"
#include "platform/kal_time.h"
#include "pm_show_client/pm_show_clock.h"

namespace perf_measure {

namespace {

std::vector<node_failure> met;  // by the show of this process

}  // namespace

void take_time() {
    std::timespec now{};
    kal_time_get_timespec_realtime(&now);
    pm_show_now_msec = kal_timespec_to_msec64(&now);
}

std::string hand_over(const words_command &command) {
    if (std::string problem = check_store(); !problem.empty()) {
        return problem;
    }
    std::vector<std::string> letters = command.letters;
    if (command.node_name) {
        std::uint32_t id = 0;
        if (std::string problem = find_node(*command.node_name, &id); !problem.empty()) {
            return problem;
        }
        letters.insert(letters.end(), {"-N", std::to_string(id)});
    }
    std::string program = "perf-measure";
    std::vector<char *> arguments{program.data()};
    for (std::string &each : letters) {
        arguments.push_back(each.data());
    }
    arguments.push_back(nullptr);
    pm_show_parse_options(static_cast<int>(arguments.size()) - 1, arguments.data());
    return {};
}

int report_failures(const std::vector<node_failure> &failures) {
    for (const node_failure &each : failures) {
        static_cast<void>(report_failure(describe(each)));
    }
    return failures.empty() ? EXIT_SHOWN : EXIT_NOT_READ;
}

int show_as_text(const words_command &command) {
    if (const std::string problem = hand_over(command); !problem.empty()) {
        return report_failure(problem);
    }
    pm_show_on_failure = [](std::uint32_t node, errcode code) { met.push_back({node, code, {}}); };
    const int status = pm_show_dispatch();
    pm_output_flush();
    const int failed = report_failures(failures_that_count(met));
    return status == 0 ? failed : EXIT_NOT_READ;
}

int show_as_json(const words_command &command, bool pretty) {
    if (const std::string problem = hand_over(command); !problem.empty()) {
        return report_failure(problem);
    }
    std::vector<node_failure> failures;
    const pm_error unwritten = write_json(pretty, &failures);
    const int failed = report_failures(failures);
    return unwritten ? report_failure(unwritten.text()) : failed;
}

}  // namespace perf_measure
