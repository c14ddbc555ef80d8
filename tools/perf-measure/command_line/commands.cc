// SPDX-License-Identifier: Apache-2.0
// From an invocation to the show, plot or help that it asks for.
#include "perf-measure/command_line/commands.h"

#include <string_view>
#include <unistd.h>

#include "perf-measure/command_line/metrics.h"
#include "perf-measure/command_line/plot.h"
#include "perf-measure/command_line/show.h"
#include "perf-measure/phrases/help.h"
#include "perf-measure/phrases/parser.h"
#include "perf-measure/terminal/child_run.h"
#include "perf-measure/terminal/terminal_show.h"
#include "perf-measure/terminal/watch.h"

namespace perf_measure {

namespace {

constexpr std::string_view HELP = "help";

int print(std::string_view text) { return write_fully(STDOUT_FILENO, text) ? EXIT_SHOWN : EXIT_NOT_READ; }

int print_help(const std::vector<std::string> &words) {
    word_parser parser;
    for (const std::string &word : words) {
        if (!parser.take(word)) {
            return report_usage(parser.problem());
        }
    }
    return print(words.empty() ? help_overview() : help_for(parser));
}

// For "show interfaces ?" and "show int?".
int print_what_follows(const std::vector<std::string> &words) {
    word_parser parser;
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        if (!parser.take(words[i])) {
            return report_usage(parser.problem());
        }
    }
    const std::string_view last = words.back();
    const std::string text = help_here(parser, last.substr(0, last.size() - 1));
    return text.empty() ? report_usage("nothing fits here") : print(text);
}

bool asks_what_follows(const std::vector<std::string> &words) { return !words.empty() && words.back().ends_with('?'); }

std::string joined(const std::vector<std::string> &words) {
    std::string text;
    for (const std::string &word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

}  // namespace

int run_command(const invocation &given) {
    const std::vector<std::string> &words = given.words;
    if (!words.empty() && !words.front().empty() && begins_with(HELP, words.front())) {
        return print_help({words.begin() + 1, words.end()});
    }
    if (asks_what_follows(words)) {
        return print_what_follows(words);
    }
    word_parser parser;
    for (const std::string &word : words) {
        if (!parser.take(word)) {
            return report_usage(parser.problem());
        }
    }
    if (!parser.finish()) {
        return report_usage(parser.problem());
    }
    // A plot fits itself to the terminal, and so has to write to it.
    const bool is_plot = parser.command().what->takes_name;
    const bool is_metrics = parser.command().what->is_metrics;
    std::function<int()> body = [&] {
        if (is_plot) {
            return plot(parser.command(), given);
        }
        if (is_metrics) {
            return metrics(parser.command(), given);
        }
        return given.json ? show_as_json(parser.command(), given.pretty) : show_as_text(parser.command());
    };
    if (given.watch_sec) {
        body = [shown = body] {
            take_time();
            return shown();
        };
        return watch(body, *given.watch_sec, joined(words));
    }
    return !is_plot && !is_metrics && wants_terminal_show(!given.no_pager) ? terminal_show(body, !given.no_pager)
                                                                           : body();
}

}  // namespace perf_measure
