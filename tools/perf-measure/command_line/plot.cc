// SPDX-License-Identifier: Apache-2.0
// From a history in the store to a drawing.
#include "perf-measure/command_line/plot.h"

#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "perf-measure/command_line/show.h"
#include "perf-measure/items/item_reader.h"
#include "perf-measure/items/nodes.h"
#include "perf-measure/plot/series.h"
#include "perf-measure/plot/svg_chart.h"
#include "perf-measure/plot/text_chart.h"
#include "perf-measure/terminal/child_run.h"
#include "perf-measure/terminal/colours.h"
#include "perf-measure/terminal/screen.h"
#include "pm_show_client/pm_show_options.h"

namespace perf_measure {

namespace {

// What belongs to each number of perf-show.
struct subtype_history {
    std::uint32_t subtype;
    history_of what;
};
constexpr subtype_history HISTORIES[] = {
    {3, history_of::interface}, {19, history_of::sr_policy}, {21, history_of::rsvp_te}, {29, history_of::endpoint}};

struct type_name {
    std::uint32_t type;
    const char *name;
};
constexpr type_name NAMES[] = {{4, "probe history"}, {5, "aggregated history"}, {20, "advertised history"}};

history_of asked_history() {
    for (const subtype_history &each : HISTORIES) {
        if (each.subtype == pm_show_options.subtype) {
            return each.what;
        }
    }
    return history_of::interface;
}

const char *asked_name() {
    for (const type_name &each : NAMES) {
        if (each.type == pm_show_options.command_type) {
            return each.name;
        }
    }
    return "history";
}

// As the C library decides it: the first of these that is set.
bool is_utf8_terminal() {
    for (const char *const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char *const value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            const std::string_view text = value;
            return text.find("UTF-8") != std::string_view::npos || text.find("utf8") != std::string_view::npos;
        }
    }
    return false;
}

int write_picture(const std::string &file, std::string_view text) {
    if (file == "-") {
        return write_fully(STDOUT_FILENO, text) ? EXIT_SHOWN : EXIT_NOT_READ;
    }
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const bool is_written = descriptor >= 0 && write_fully(descriptor, text) && ::close(descriptor) == 0;
    return is_written ? EXIT_SHOWN : report_failure("cannot write " + file);
}

int draw(const std::vector<series> &drawn, const invocation &given) {
    if (given.svg_file == "-") {
        return write_picture("-", svg_document(drawn, asked_name()));
    }
    const text_chart_style style = {
        .columns = size_of_terminal(STDOUT_FILENO).columns,
        .ascii = given.ascii || !is_utf8_terminal(),
        .colours = wants_colours(STDOUT_FILENO),
    };
    std::string text;
    for (const series &each : drawn) {
        text += text.empty() ? "" : "\n";
        append_text_chart(each, asked_name(), style, &text);
    }
    if (!write_fully(STDOUT_FILENO, text)) {
        return EXIT_SHOWN;  // its reader went away
    }
    return given.svg_file.empty() ? EXIT_SHOWN : write_picture(given.svg_file, svg_document(drawn, asked_name()));
}

}  // namespace

int plot(const words_command &command, const invocation &given) {
    if (const std::string problem = hand_over(command); !problem.empty()) {
        return report_failure(problem);
    }
    std::vector<series> drawn;
    std::vector<node_failure> failures;
    read_items(
        [&](const item &read) {
            for (series &each :
                 series_of(asked_history(), read.record, command.segment_list, pm_show_options.history_limit)) {
                each.title += " on " + printable(name_of_node(read.node));
                drawn.push_back(std::move(each));
            }
            return true;
        },
        &failures);
    const int failed = report_failures(failures_that_count(failures));
    if (drawn.empty()) {
        return failed != EXIT_SHOWN ? failed : report_failure(printable(command.name) + ": nothing was measured");
    }
    const int status = draw(drawn, given);
    return status != EXIT_SHOWN ? status : failed;
}

}  // namespace perf_measure
