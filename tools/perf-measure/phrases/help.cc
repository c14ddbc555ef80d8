// SPDX-License-Identifier: Apache-2.0
// The layouts of help.
#include "perf-measure/phrases/help.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "perf-measure/phrases/values.h"

namespace perf_measure {

namespace {

constexpr std::size_t HELP_COLUMN = 24;      // of words that may follow
constexpr std::size_t OVERVIEW_COLUMN = 40;  // of whole phrases

void append_line(std::string_view left, std::string_view right, std::size_t column, std::string *out) {
    *out += "  ";
    *out += left;
    out->append(left.size() < column ? column - left.size() : 1, ' ');
    *out += right;
    *out += '\n';
}

// "color NUMBER"
std::string synopsis(const option &each) {
    return each.value_name == nullptr ? each.word : std::string(each.word) + ' ' + each.value_name;
}

template <class Visit>
void for_each_option(const phrase &of, Visit visit) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(option_id::count); ++i) {
        const auto id = static_cast<option_id>(i);
        if ((of.options & bit(id)) != 0) {
            visit(option_of(id));
        }
    }
}

// The option of this word that fits the parser's phrase; null for a phrase's own word.
const option *option_named(const word_parser &parser, std::string_view word, std::string_view help) {
    const option *found = nullptr;
    if (parser.command().what != nullptr) {
        for_each_option(*parser.command().what,
                        [&](const option &each) { found = each.word == word && each.help == help ? &each : found; });
    }
    return found;
}

// A text of a manual page: what its notation gives a meaning is escaped.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char letter : text) {
        result += letter == '-' ? "\\-" : letter == '\\' ? "\\e" : std::string(1, letter);
    }
    return result;
}

std::string option_paragraph(const option &each) {
    std::string text = ".TP\n.B " + escaped(each.word);
    if (each.value == value_kind::choice) {
        text += " \\fR{";
        for (const choice &value : each.choices) {
            text += (&value == &each.choices.front() ? "" : " | ") + escaped(value.word);
        }
        text += '}';
    } else if (each.value_name != nullptr) {
        text += std::string(" \\fI") + each.value_name + "\\fR";
    }
    return text + '\n' + escaped(each.help) + ".\n";
}

}  // namespace

std::string help_here(const word_parser &parser, std::string_view beginning) {
    std::string text;
    const option *const wanted = parser.wanted_value();
    if (wanted != nullptr && wanted->value != value_kind::choice) {
        append_line(wanted->value_name, describe_value(*wanted), HELP_COLUMN, &text);
        return text;
    }
    for (const fitting_word &each : parser.fitting()) {
        if (begins_with(each.word, beginning)) {
            const option *const named = wanted == nullptr ? option_named(parser, each.word, each.help) : nullptr;
            append_line(named != nullptr ? synopsis(*named) : std::string(each.word), each.help, HELP_COLUMN, &text);
        }
    }
    if (parser.is_complete() && beginning.empty()) {
        append_line("<enter>", "go", HELP_COLUMN, &text);
    }
    return text;
}

std::string help_for(const word_parser &parser) {
    std::string text = parser.taken();
    if (const phrase *const what = parser.command().what; what != nullptr) {
        text += std::string(": ") + what->help;
        text += what->is_metrics ? "" : std::string("\n  the same with numbers: perf-show ") + what->letters;
    } else {
        for (const phrase_group &group : phrase_groups()) {
            text += group.words == parser.taken() ? std::string(": ") + group.help : "";
        }
    }
    return text + "\n\nWhat may follow:\n" + help_here(parser);
}

std::string help_overview() {
    std::string text;
    for (const phrase &each : phrases()) {
        append_line(each.words + std::string(each.takes_name ? " NAME" : ""), each.help, OVERVIEW_COLUMN, &text);
    }
    return text;
}

std::string manual_commands() {
    std::string text = ".SS Commands\n";
    std::vector<const option *> said;
    for (const phrase &each : phrases()) {
        text += ".TP\n.B " + escaped(each.words) + (each.takes_name ? " \\fINAME\\fR\n" : "\n");
        text += escaped(each.help) + (each.is_metrics ? "" : " (perf\\-show " + escaped(each.letters) + ")") + ".\n";
        std::string words;
        for_each_option(each, [&](const option &takes) {
            words += (words.empty() ? "" : ", ") + escaped(takes.word);
            if (std::ranges::find(said, &takes) == said.end()) {
                said.push_back(&takes);
            }
        });
        text += words.empty() ? "" : "Options: " + words + ".\n";
    }
    text += ".SS Options of commands\n";
    std::ranges::sort(said, [](const option *left, const option *right) {
        return std::string_view(left->word) < std::string_view(right->word);
    });
    for (const option *const each : said) {
        text += option_paragraph(*each);
    }
    return text;
}

}  // namespace perf_measure
