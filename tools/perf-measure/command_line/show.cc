// Words to the back end, and the back end's answer to an exit status.
#include "perf-measure/command_line/show.h"

#include <ctime>
#include <vector>

#include "base/pm_output.h"
#include "front/dispatch.h"
#include "front/generic_show.h"
#include "front/options.h"
#include "perf-measure/command_line/invocation.h"
#include "perf-measure/command_line/nodes.h"
#include "perf-measure/command_line/store_check.h"
#include "platform/kal_time.h"
#include "pm_show_client/pm_show_options.h"

namespace perf_measure {

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

int show_as_text(const words_command &command) {
    if (const std::string problem = hand_over(command); !problem.empty()) {
        return report_failure(problem);
    }
    const int status = pm_show_dispatch();
    pm_output_flush();
    return status == 0 ? EXIT_SHOWN : EXIT_NOT_READ;
}

}  // namespace perf_measure
