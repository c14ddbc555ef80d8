// SPDX-License-Identifier: Apache-2.0
// The parser over the phrase table.
#include "perf-measure/phrases/parser.h"

#include <algorithm>
#include <cstddef>

#include "perf-measure/phrases/values.h"

namespace perf_measure {

namespace {

constexpr std::size_t SHORTEST_SEARCHED = 3;  // bytes of a word that is looked for in other phrases
constexpr std::size_t MOST_PHRASES_NAMED = 6;

// The word of a phrase after those of `path`; empty when the phrase does not go on so.
std::string_view word_after(std::string_view words, std::string_view path) {
    if (!path.empty()) {
        if (!words.starts_with(path) || words.size() <= path.size() || words[path.size()] != ' ') {
            return {};
        }
        words.remove_prefix(path.size() + 1);
    }
    return words.substr(0, words.find(' '));
}

std::string extended(const std::string &path, std::string_view word) {
    return path.empty() ? std::string(word) : path + ' ' + std::string(word);
}

const phrase *find_phrase(std::string_view words) {
    const auto found = std::ranges::find(phrases(), words, &phrase::words);
    return found != phrases().end() ? &*found : nullptr;
}

std::string_view help_of(std::string_view words) {
    const auto group = std::ranges::find(phrase_groups(), words, &phrase_group::words);
    if (group != phrase_groups().end()) {
        return group->help;
    }
    const phrase *const whole = find_phrase(words);
    return whole != nullptr ? whole->help : std::string_view();
}

// Appends perf-show's options, which blanks separate.
void add_letters(std::string_view letters, std::vector<std::string> *out) {
    while (!letters.empty()) {
        const std::size_t blank = std::min(letters.find(' '), letters.size());
        out->emplace_back(letters.substr(0, blank));
        letters.remove_prefix(std::min(blank + 1, letters.size()));
    }
}

std::string list_of(const std::vector<fitting_word> &words) {
    std::vector<std::string_view> texts;
    for (const fitting_word &each : words) {
        texts.push_back(each.word);
    }
    return join_words(texts);
}

}  // namespace

std::vector<fitting_word> word_parser::phrase_words() const {
    std::vector<fitting_word> words;
    for (const phrase &each : phrases()) {
        const std::string_view word = word_after(each.words, path_);
        if (!word.empty() && std::ranges::find(words, word, &fitting_word::word) == words.end()) {
            words.push_back({word, help_of(extended(path_, word))});
        }
    }
    return words;
}

std::vector<option_id> word_parser::options_left() const {
    std::vector<option_id> left;
    if (command_.what == nullptr || (command_.what->takes_name && !name_taken_)) {
        return left;
    }
    for (std::size_t i = 0; i < static_cast<std::size_t>(option_id::count); ++i) {
        const auto id = static_cast<option_id>(i);
        if ((command_.what->options & bit(id)) != 0 && !excluding(id)) {
            left.push_back(id);
        }
    }
    return left;
}

// The option already given that leaves no room for this one: itself, or another of its group.
std::optional<option_id> word_parser::excluding(option_id id) const {
    const std::uint8_t group = option_of(id).group;
    for (std::size_t i = 0; i < static_cast<std::size_t>(option_id::count); ++i) {
        const auto other = static_cast<option_id>(i);
        const bool is_given = (command_.given & bit(other)) != 0;
        if (is_given && (other == id || (group != 0 && option_of(other).group == group))) {
            return other;
        }
    }
    return {};
}

// Why an option of the phrase does not fit any more; "" when the word names none.
std::string word_parser::exclusion_of(std::string_view word) const {
    for (std::size_t i = 0; i < static_cast<std::size_t>(option_id::count); ++i) {
        const auto id = static_cast<option_id>(i);
        const bool is_meant = command_.what != nullptr && (command_.what->options & bit(id)) != 0 &&
                              begins_with(option_of(id).word, word);
        if (const std::optional<option_id> other = excluding(id); is_meant && other) {
            return *other == id
                       ? in_quotes(word) + " was said already"
                       : in_quotes(option_of(id).word) + " does not go with " + in_quotes(option_of(*other).word);
        }
    }
    return {};
}

std::vector<fitting_word> word_parser::fitting() const {
    if (const option *const wanted = wanted_value(); wanted != nullptr) {
        return choice_words(*wanted);
    }
    std::vector<fitting_word> words = options_begun_ ? std::vector<fitting_word>() : phrase_words();
    for (const option_id id : options_left()) {
        words.push_back({option_of(id).word, option_of(id).help});
    }
    return words;
}

const option *word_parser::wanted_value() const {
    if (value_wanted_) {
        return &option_of(*value_wanted_);
    }
    return command_.what != nullptr && command_.what->takes_name && !name_taken_ ? &option_of(option_id::name)
                                                                                 : nullptr;
}

bool word_parser::is_complete() const { return command_.what != nullptr && wanted_value() == nullptr; }

bool word_parser::take(std::string_view word) {
    problem_.clear();
    if (const option *const wanted = wanted_value(); wanted != nullptr) {
        return take_value(*wanted, word);
    }
    return take_phrase_word(word);
}

bool word_parser::take_phrase_word(std::string_view word) {
    const std::vector<fitting_word> path_words = options_begun_ ? std::vector<fitting_word>() : phrase_words();
    const std::vector<option_id> options = options_left();
    const std::vector<fitting_word> words = fitting();
    const std::vector<std::size_t> found = word.empty() ? std::vector<std::size_t>() : match_word(words, word);
    if (found.empty()) {
        const std::string excluded = word.empty() ? "" : exclusion_of(word);
        return excluded.empty() ? refuse_unknown(words, word) : refuse(excluded);
    }
    if (found.size() > 1) {
        std::vector<std::string_view> meant;
        for (const std::size_t i : found) {
            meant.push_back(words[i].word);
        }
        return refuse(in_quotes(word) + " is ambiguous: " + join_words(meant, " or "));
    }
    if (found.front() >= path_words.size()) {
        return take_option(options[found.front() - path_words.size()]);
    }
    path_ = extended(path_, words[found.front()].word);
    command_.what = find_phrase(path_);
    add_taken(words[found.front()].word);
    return true;
}

bool word_parser::has_given(std::string_view word) const {
    for (std::size_t i = 0; i < static_cast<std::size_t>(option_id::count); ++i) {
        const auto id = static_cast<option_id>(i);
        if ((command_.given & bit(id)) != 0 && option_of(id).word == word) {
            return true;
        }
    }
    return false;
}

bool word_parser::take_option(option_id id) {
    const option &said = option_of(id);
    options_begun_ = true;
    command_.given |= bit(id);
    add_taken(said.word);
    if (said.value == value_kind::nothing) {
        add_letters(said.letters, &command_.letters);
    } else {
        value_wanted_ = id;
    }
    return true;
}

bool word_parser::take_choice(const option &wanted, std::string_view word) {
    const std::vector<fitting_word> words = choice_words(wanted);
    const std::vector<std::size_t> found = word.empty() ? std::vector<std::size_t>() : match_word(words, word);
    if (found.empty()) {
        return refuse_unknown(words, word);
    }
    if (found.size() > 1) {
        return refuse(in_quotes(word) + " is ambiguous: " + list_of(words));
    }
    const choice &said = wanted.choices[found.front()];
    add_letters(said.letters, &command_.letters);
    wanting_ = said.wants != nullptr ? &said : wanting_;
    add_taken(words[found.front()].word);
    return true;
}

bool word_parser::take_value(const option &wanted, std::string_view word) {
    std::string argument;
    if (wanted.value == value_kind::choice) {
        if (!take_choice(wanted, word)) {
            return false;
        }
    } else if (const std::string wrong = check_value(wanted, word, &argument); !wrong.empty()) {
        return refuse(wrong);
    } else if (std::uint32_t id = 0; wanted.value == value_kind::node) {
        if (read_number(word, wanted.smallest, wanted.largest, &id)) {
            command_.node_id = id;
            command_.letters.insert(command_.letters.end(), {wanted.letters, std::to_string(id)});
        } else {
            command_.node_name = argument;
        }
        add_taken(word);
    } else {
        command_.letters.insert(command_.letters.end(), {wanted.letters, argument});
        add_taken(word);
    }
    if (wanted.value == value_kind::name) {
        command_.name = argument;
    } else if (wanted.value == value_kind::text && &wanted == &option_of(option_id::segment_list)) {
        command_.segment_list = argument;
    }
    name_taken_ = name_taken_ || !value_wanted_;
    options_begun_ = true;
    value_wanted_.reset();
    return true;
}

bool word_parser::finish() {
    problem_.clear();
    if (const option *const wanted = wanted_value(); wanted != nullptr) {
        return refuse(describe_value(*wanted) + " is missing");
    }
    if (command_.what == nullptr) {
        return refuse("more words are needed\n  what may follow: " + list_of(fitting()));
    }
    if (wanting_ != nullptr && !has_given(wanting_->wants)) {
        return refuse(in_quotes(wanting_->word) + " wants " + in_quotes(wanting_->wants) + " beside it");
    }
    std::vector<std::string> letters;
    add_letters(command_.what->letters, &letters);
    command_.letters.insert(command_.letters.begin(), letters.begin(), letters.end());
    return true;
}

// The phrases under the present one that have `word` further on.
std::string word_parser::phrases_with(std::string_view word) const {
    std::vector<std::string_view> found;
    for (const phrase &each : phrases()) {
        const std::string_view words = each.words;
        if (word.size() >= SHORTEST_SEARCHED && !options_begun_ && words.starts_with(path_) &&
            words.find(' ' + std::string(word), path_.size()) != std::string_view::npos) {
            found.push_back(words);
        }
    }
    return found.size() <= MOST_PHRASES_NAMED ? join_words(found, " or ") : std::string();
}

bool word_parser::refuse_unknown(const std::vector<fitting_word> &words, std::string_view word) {
    std::string text = in_quotes(word) + " does not fit here";
    const std::vector<option_id> left = options_left();
    const bool takes_name = wanted_value() == nullptr && std::ranges::any_of(left, [](option_id id) {
                                return option_of(id).value == value_kind::name;
                            });
    if (const std::vector<std::string_view> near = near_words(words, word); !near.empty()) {
        text += "; did you mean " + join_words(near, " or ") + "?";
    } else if (const std::string others = phrases_with(word); !others.empty()) {
        text += "; did you mean " + others + "?";
    } else if (takes_name) {
        text += "; if it is a name, say: name " + std::string(word.substr(0, LONGEST_NAME));
    }
    if (words.empty()) {
        return refuse(text + "; nothing may follow");
    }
    return refuse(text + "\n  what may follow: " + list_of(words));
}

bool word_parser::refuse(const std::string &problem) {
    problem_ = (taken_.empty() ? "" : taken_ + ": ") + problem;
    return false;
}

void word_parser::add_taken(std::string_view word) { taken_ = extended(taken_, word); }

}  // namespace perf_measure
