// SPDX-License-Identifier: Apache-2.0
// Finding the word that someone means: abbreviations, and near misses.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace perf_measure {

// A word that fits at some place, with its line of help. Both are constant texts.
struct fitting_word {
    std::string_view word;
    std::string_view help;
};

// Whether `word` begins with `beginning`, upper and lower case being the same.
[[nodiscard]] bool begins_with(std::string_view word, std::string_view beginning);

// The indices of the words that begin with `typed`; a word that is `typed` itself is alone.
[[nodiscard]] std::vector<std::size_t> match_word(const std::vector<fitting_word> &words, std::string_view typed);

// The words that `typed` may have been meant for, the likeliest first; none when nothing is near.
[[nodiscard]] std::vector<std::string_view> near_words(const std::vector<fitting_word> &words, std::string_view typed);

// "a, b and c": `last` is the text before the last of several words.
[[nodiscard]] std::string join_words(const std::vector<std::string_view> &words, std::string_view last = ", ");

// A text as a message repeats it: in quotes, on one line, cut when it is long.
[[nodiscard]] std::string in_quotes(std::string_view text);

}  // namespace perf_measure
