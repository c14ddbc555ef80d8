// SPDX-License-Identifier: Apache-2.0
// Candidates from the parser's place.
#include "perf-measure/completion/candidates.h"

#include <algorithm>
#include <iterator>

#include "perf-measure/phrases/parser.h"

namespace perf_measure {

namespace {

constexpr fitting_word PLAIN_OPTIONS[] = {
    {"--json", "one JSON object a line for each item"},
    {"--pretty", "with --json: indented, for eyes"},
    {"--no-pager", "write straight to the terminal"},
    {"--watch", "repeat, and mark what changes"},
    {"--svg", "with plot: write a picture"},
    {"--ascii", "with plot: ASCII characters only"},
    {"--listen", "with metrics: serve them at an address and port"},
    {"--textfile", "with metrics: replace this file"},
    {"--interval", "with --textfile: again every so many seconds"},
    {"--format", "with metrics: openmetrics or prometheus"},
    {"--help", "what there is"},
    {"--version", "the program's version"},
};
constexpr std::string_view WITH_VALUE[] = {"--svg", "--listen", "--textfile", "--interval", "--format"};
constexpr fitting_word HELP = {"help", "what a command does and what may follow it"};

void add(const fitting_word &word, std::string_view beginning, std::vector<candidate> *out) {
    if (begins_with(word.word, beginning)) {
        out->push_back({std::string(word.word), std::string(word.help)});
    }
}

// Takes the words but for plain options, with their values, and a leading "help"; false when they are no command.
bool take_words(const std::vector<std::string> &words, word_parser *parser) {
    bool is_value = false;
    for (const std::string &word : words) {
        const bool is_help = &word == &words.front() && begins_with(HELP.word, word);
        if (!is_value && !is_help && !word.starts_with("--") && !parser->take(word)) {
            return false;
        }
        is_value = std::ranges::find(WITH_VALUE, std::string_view(word)) != std::end(WITH_VALUE);
    }
    return true;
}

}  // namespace

std::vector<candidate> candidates(const std::vector<std::string> &words, std::string_view beginning,
                                  const name_lister &names) {
    std::vector<candidate> found;
    word_parser parser;
    if (!take_words(words, &parser)) {
        return found;
    }
    const option *const wanted = parser.wanted_value();
    if (wanted != nullptr && (wanted->value == value_kind::name || wanted->value == value_kind::node)) {
        const bool is_node = wanted->value == value_kind::node;
        return names(is_node ? nullptr : &parser.command().what->names, beginning);
    }
    for (const fitting_word &word : parser.fitting()) {
        add(word, beginning, &found);
    }
    if (words.empty()) {
        add(HELP, beginning, &found);
    }
    for (const fitting_word &word : PLAIN_OPTIONS) {
        if (beginning.starts_with('-')) {
            add(word, beginning, &found);
        }
    }
    return found;
}

std::string common_beginning(const std::vector<candidate> &all) {
    if (all.empty()) {
        return {};
    }
    std::string_view common = all.front().word;
    for (const candidate &each : all) {
        const auto differing = std::ranges::mismatch(common, each.word).in1;
        common = common.substr(0, static_cast<std::size_t>(differing - common.begin()));
    }
    return std::string(common);
}

}  // namespace perf_measure
