// SPDX-License-Identifier: Apache-2.0
// From words to the options of perf-show.
//
//     word_parser parser;
//     for (word : words) if (!parser.take(word)) -> parser.problem()
//     if (!parser.finish()) -> parser.problem()
//     parser.command()
//
// Words may be shortened as long as they mean one word at their place; upper and lower case are the same.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "perf-measure/phrases/phrase_table.h"
#include "perf-measure/phrases/word_match.h"

namespace perf_measure {

// What the words say.
struct words_command {
    const phrase *what = nullptr;
    std::vector<std::string> letters;      // perf-show's options, without -N when `node` is a name
    option_set given = 0;                  // options that were said
    std::string name;                      // of the item; "" for all
    std::string segment_list;              // "" for all
    std::optional<std::string> node_name;  // of a node that was not given by its id
    std::optional<std::uint32_t> node_id;  // of one that was
};

class word_parser {
public:
    // Takes the next word. False when it does not fit: problem() says why, and the parser is as it was.
    [[nodiscard]] bool take(std::string_view word);

    // Whether the words are a whole command; else problem() says what is missing. To be called once.
    [[nodiscard]] bool finish();

    // Complete after finish().
    [[nodiscard]] const words_command &command() const { return command_; }

    // One or more lines without the last newline.
    [[nodiscard]] const std::string &problem() const { return problem_; }

    // The words that fit here, all of them. Empty where a value is wanted that is no choice.
    [[nodiscard]] std::vector<fitting_word> fitting() const;

    // The option whose value is wanted here; null for none. A name that follows a phrase at once counts as
    // that of the option `name`.
    [[nodiscard]] const option *wanted_value() const;

    // Whether what was taken so far is a command.
    [[nodiscard]] bool is_complete() const;

    // The words taken, in full: "show sr-policies color 100".
    [[nodiscard]] const std::string &taken() const { return taken_; }

private:
    [[nodiscard]] bool take_value(const option &wanted, std::string_view word);
    [[nodiscard]] bool take_choice(const option &wanted, std::string_view word);
    [[nodiscard]] bool take_phrase_word(std::string_view word);
    [[nodiscard]] bool take_option(option_id id);
    [[nodiscard]] std::optional<option_id> excluding(option_id id) const;
    [[nodiscard]] std::string exclusion_of(std::string_view word) const;
    [[nodiscard]] bool has_given(std::string_view word) const;
    [[nodiscard]] bool refuse_unknown(const std::vector<fitting_word> &words, std::string_view word);
    [[nodiscard]] std::vector<fitting_word> phrase_words() const;
    [[nodiscard]] std::vector<option_id> options_left() const;
    [[nodiscard]] std::string phrases_with(std::string_view word) const;
    [[nodiscard]] bool refuse(const std::string &problem);
    void add_taken(std::string_view word);

    words_command command_;
    std::string path_;  // the phrase's words so far
    std::string taken_;
    std::string problem_;
    bool options_begun_ = false;
    bool name_taken_ = false;                // that of a phrase which takes one at once
    std::optional<option_id> value_wanted_;  // by an option
    const choice *wanting_ = nullptr;        // a value that wants another option too
};

}  // namespace perf_measure
