// SPDX-License-Identifier: Apache-2.0
// Candidates as lines.
#include "perf-measure/command_line/complete.h"

#include <unistd.h>

#include "perf-measure/command_line/invocation.h"
#include "perf-measure/completion/candidates.h"
#include "perf-measure/completion/stored_names.h"
#include "perf-measure/interactive/line_words.h"
#include "perf-measure/terminal/child_run.h"

namespace perf_measure {

namespace {

constexpr char LINE[] = "--line";  // and a line, the program's name included

}  // namespace

int print_candidates(const std::vector<std::string> &words) {
    std::vector<std::string> before = words;
    std::string beginning;
    if (words.size() == 2 && words.front() == LINE) {
        line_words line = split_line(words.back());
        before = std::move(line.words);
        beginning = std::move(line.last);
        if (!before.empty()) {
            before.erase(before.begin());  // the program
        }
    } else if (!before.empty()) {
        beginning = std::move(before.back());
        before.pop_back();
    }
    std::string text;
    for (const candidate &each : candidates(before, beginning, stored_names)) {
        if (each.word.find('\n') == std::string::npos) {
            text += each.word + '\t' + (each.is_whole ? each.help : "...") + '\n';
        }
    }
    static_cast<void>(write_fully(STDOUT_FILENO, text));
    return EXIT_SHOWN;
}

}  // namespace perf_measure
