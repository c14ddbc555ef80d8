// SPDX-License-Identifier: Apache-2.0
// A line taken apart into words, as a shell does it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace perf_measure {

// What a line holds up to some place.
struct line_words {
    std::vector<std::string> words;  // that have ended
    std::string last;                // the word that has not, without its quotes
    bool in_word = false;            // there is such a word, maybe empty
    char quote = '\0';               // that it stands in: ' or ", or none
};

// Blanks separate words; '...' and "..." hold them together, and a backslash keeps the next character.
[[nodiscard]] line_words split_line(std::string_view line);

// A word as it has to be typed, outside quotes.
[[nodiscard]] std::string typed(std::string_view word);

}  // namespace perf_measure
