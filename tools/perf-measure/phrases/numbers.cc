// SPDX-License-Identifier: Apache-2.0
// Matching options of perf-show against the letters of the phrase table.
#include "perf-measure/phrases/numbers.h"

#include <algorithm>
#include <string_view>

#include "perf-measure/phrases/phrase_table.h"

namespace perf_measure {

namespace {

// One option of perf-show with its argument; "" without one.
struct lettered {
    std::string letter;
    std::string argument;
    bool operator==(const lettered &) const = default;
};
using lettered_options = std::vector<lettered>;

lettered_options split(const std::vector<std::string> &texts) {
    lettered_options options;
    for (const std::string &text : texts) {
        if (text.starts_with('-') || options.empty()) {
            options.push_back({text, ""});
        } else {
            options.back().argument = text;
        }
    }
    return options;
}

lettered_options split(std::string_view letters) {
    std::vector<std::string> texts;
    while (!letters.empty()) {
        const std::size_t blank = std::min(letters.find(' '), letters.size());
        texts.emplace_back(letters.substr(0, blank));
        letters.remove_prefix(std::min(blank + 1, letters.size()));
    }
    return split(texts);
}

// Takes `part` out of `all`; false, with nothing taken, when it is not there.
bool take(const lettered_options &part, lettered_options *all) {
    if (part.empty() || !std::ranges::all_of(part, [all](const lettered &each) {
            return std::ranges::find(*all, each) != all->end();
        })) {
        return false;
    }
    std::erase_if(*all, [&part](const lettered &each) { return std::ranges::find(part, each) != part.end(); });
    return true;
}

std::string as_word(const std::string &argument) {
    return argument.find_first_of(" '\"") == std::string::npos ? argument : '"' + argument + '"';
}

// The word for an option, when its letters are there; they are taken out.
std::string take_option(const option &each, lettered_options *left) {
    const std::string word = std::string(" ") + each.word;
    if (each.value == value_kind::nothing) {
        return take(split(each.letters), left) ? word : "";
    }
    for (const choice &value : each.choices) {
        if (take(split(value.letters), left)) {
            return word + ' ' + value.word;
        }
    }
    const auto found = std::ranges::find(*left, each.letters, &lettered::letter);
    if (each.value == value_kind::choice || found == left->end()) {
        return "";
    }
    const std::string said = word + ' ' + as_word(found->argument);
    left->erase(found);
    return said;
}

// The words for all options; "" when some are left over.
std::string words_for(const phrase &said, lettered_options left) {
    if (!take(split(said.letters), &left)) {
        return "";
    }
    std::string words = said.words;
    if (const auto name = std::ranges::find(left, "-i", &lettered::letter); said.takes_name && name != left.end()) {
        words += ' ' + as_word(name->argument);
        left.erase(name);
    }
    // Options of several letters first: verbose before detail.
    for (const std::size_t count : {std::size_t{2}, std::size_t{1}}) {
        for (std::size_t i = 0; i < static_cast<std::size_t>(option_id::count); ++i) {
            const auto id = static_cast<option_id>(i);
            const bool is_meant =
                (said.options & bit(id)) != 0 && (split(option_of(id).letters).size() == 2) == (count == 2);
            words += is_meant ? take_option(option_of(id), &left) : "";
        }
    }
    return left.empty() ? words : "";
}

}  // namespace

std::string words_of(const std::vector<std::string> &letters) {
    const lettered_options asked = split(letters);
    std::string best;
    std::size_t most = 0;  // letters of the phrase
    for (const phrase &each : phrases()) {
        const std::string words = words_for(each, asked);
        const std::size_t count = split(each.letters).size();
        if (!each.is_metrics && !words.empty() && count > most) {
            best = words;
            most = count;
        }
    }
    return best;
}

}  // namespace perf_measure
