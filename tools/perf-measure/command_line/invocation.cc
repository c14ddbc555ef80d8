// SPDX-License-Identifier: Apache-2.0
// The plain options.
#include "perf-measure/command_line/invocation.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "perf-measure/command_line/version.h"
#include "perf-measure/phrases/help.h"
#include "perf-measure/phrases/numbers.h"
#include "perf-measure/terminal/child_run.h"
#include "perf-measure/terminal/watch.h"

namespace perf_measure {

namespace {

constexpr char DESCRIPTION[] =
    "Shows the state of a router's performance measurement, asked for in plain words.\n\n"
    "  perf-measure show interfaces brief\n"
    "  perf-measure show sr-policies color 100 --json\n"
    "  perf-measure plot delay endpoint site-a --svg delay.svg\n"
    "  perf-measure metrics --listen 127.0.0.1:9464\n"
    "  perf-measure help show history\n"
    "  perf-measure                    (reads commands from the terminal)\n\n"
    "Words may be shortened; ? as the last word lists what may follow.";

constexpr char FOOTER[] =
    "Commands:\n%s\n"
    "  help WORDS                              what a command does and what may follow it\n\n"
    "The environment variable OPSTORE_URL names the store; perf-store load fills it.\n"
    "Exit status: 0 shown, 1 something could not be read or was not found, 2 wrong usage.";

bool is_number(const std::string &text) {
    return !text.empty() && text.find_first_not_of("0123456789.") == std::string::npos;
}

// The seconds of --watch are its own only when they are a number: "--watch show summary" has none.
void settle_watch(std::vector<std::string> *arguments) {
    for (std::size_t i = 0; i < arguments->size(); ++i) {
        if ((*arguments)[i] != "--watch") {
            continue;
        }
        const bool has_number = i + 1 < arguments->size() && is_number((*arguments)[i + 1]);
        (*arguments)[i] = "--watch=" + (has_number ? (*arguments)[i + 1] : std::to_string(DEFAULT_INTERVAL_SEC));
        if (has_number) {
            arguments->erase(arguments->begin() + static_cast<std::ptrdiff_t>(i) + 1);
        }
    }
}

class help_formatter : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App * /*app*/, std::string /*name*/) const override {
        return "Usage: perf-measure [OPTIONS] WORDS...\n";
    }
};

std::string footer() {
    std::string text = FOOTER;
    return text.replace(text.find("%s\n"), 3, help_overview());
}

void add_options(CLI::App *app, invocation *out, double *watch_sec) {
    app->set_version_flag("--version", std::string("perf-measure ") + VERSION);
    app->add_flag("--json", out->json, "One JSON object a line for each item");
    app->add_flag("--pretty", out->pretty, "With --json: indented, for eyes");
    app->add_flag("--no-pager", out->no_pager, "Write straight to the terminal");
    app->add_option("--watch", *watch_sec, "Repeat every so many seconds (2), and mark what changes")
        ->type_name("[SECONDS]")
        ->check(CLI::Range(SHORTEST_INTERVAL_SEC, LONGEST_INTERVAL_SEC).description(""));
    app->add_option("--svg", out->svg_file, "With plot: write a picture to this file too; - is standard output")
        ->type_name("FILE");
    app->add_flag("--ascii", out->ascii, "With plot: draw with ASCII characters only");
    app->add_option("--format", out->format, "With metrics: openmetrics or prometheus (the text form 0.0.4)")
        ->check(CLI::IsMember({"openmetrics", "prometheus"}).description(""));
    app->add_option("--listen", out->listen, "With metrics: serve them at http://ADDRESS:PORT/metrics")
        ->type_name("ADDRESS:PORT");
    app->add_option("--textfile", out->textfile, "With metrics: replace this file, for a collector of text files")
        ->type_name("FILE");
    app->add_option("--interval", out->interval_sec, "With --textfile: again every so many seconds, until it is ended")
        ->type_name("SECONDS")
        ->check(CLI::Range(SHORTEST_INTERVAL_SEC, LONGEST_INTERVAL_SEC).description(""));
    app->allow_extras();  // the words
    app->footer(footer());
}

// What fits together.
std::string check(const invocation &given) {
    const bool plots = !given.words.empty() && given.words.front().starts_with('p');
    if (given.pretty && !given.json) {
        return "--pretty goes with --json only";
    }
    if ((!given.svg_file.empty() || given.ascii) && !plots) {
        return "--svg and --ascii go with plot only";
    }
    const bool writes_metrics = !given.words.empty() && given.words.front().starts_with('m');
    const bool has_target = !given.listen.empty() || !given.textfile.empty();
    if ((has_target || !given.format.empty() || given.interval_sec > 0) && !writes_metrics) {
        return "--listen, --textfile, --interval and --format go with metrics only";
    }
    if (!given.listen.empty() && (!given.textfile.empty() || !given.format.empty())) {
        return "--listen serves both formats, and no file";
    }
    if (given.interval_sec > 0 && given.textfile.empty()) {
        return "--interval goes with --textfile only";
    }
    if (given.watch_sec && writes_metrics) {
        return "--watch does not go with metrics";
    }
    return given.json && (plots || writes_metrics) ? "--json goes with show only" : "";
}

}  // namespace

std::optional<int> read_arguments(std::vector<std::string> arguments, invocation *out) {
    const auto is_option = [](const std::string &each) { return each.size() > 1 && each.front() == '-'; };
    if (std::ranges::none_of(arguments, is_option)) {  // the common case, without setting the options up
        out->words = std::move(arguments);
        return {};
    }
    const auto end = std::ranges::find(arguments, "--");
    const std::vector<std::string> verbatim(end == arguments.end() ? end : end + 1, arguments.end());
    arguments.erase(end, arguments.end());
    settle_watch(&arguments);

    CLI::App app(DESCRIPTION, "perf-measure");
    const std::string as_words = words_of(arguments);  // for those who have the numbers
    app.formatter(std::make_shared<help_formatter>());
    double watch_sec = 0;
    add_options(&app, out, &watch_sec);
    std::ranges::reverse(arguments);  // as the library wants them
    try {
        app.parse(arguments);
    } catch (const CLI::Success &asked) {  // --help or --version
        return app.exit(asked) == 0 ? EXIT_SHOWN : EXIT_USAGE;
    } catch (const CLI::ParseError &wrong) {
        return report_usage(wrong.what());
    }
    out->words = app.remaining();
    if (const auto unknown = std::ranges::find_if(out->words, is_option); unknown != out->words.end()) {
        return report_usage("unknown option " + in_quotes(*unknown) +
                            (as_words.empty() ? "; a name that begins with - follows --"
                                              : "; in words these are: perf-measure " + as_words));
    }
    out->words.insert(out->words.end(), verbatim.begin(), verbatim.end());
    if (app.count("--watch") != 0) {
        out->watch_sec = watch_sec;
    }
    const std::string problem = check(*out);
    return problem.empty() ? std::optional<int>() : report_usage(problem);
}

int report_usage(const std::string &problem) {
    static_cast<void>(write_fully(STDERR_FILENO, "perf-measure: " + problem + '\n'));
    return EXIT_USAGE;
}

int report_failure(const std::string &problem) {
    static_cast<void>(write_fully(STDERR_FILENO, "perf-measure: " + problem + '\n'));
    return EXIT_NOT_READ;
}

}  // namespace perf_measure
