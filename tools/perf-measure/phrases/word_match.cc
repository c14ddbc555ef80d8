// SPDX-License-Identifier: Apache-2.0
// Abbreviations and near misses of words.
#include "perf-measure/phrases/word_match.h"

#include <algorithm>
#include <cstddef>

#include "base/pm_word_distance.h"
#include "perf-measure/phrases/phrase_table.h"

namespace perf_measure {

namespace {

constexpr std::size_t LONGEST_COMPARED = 40;  // bytes of words for which distances are computed
constexpr std::size_t SHORTEST_PART = 3;      // of a word that is taken for a part of another
constexpr std::size_t LONGEST_QUOTE = 60;

bool contains(std::string_view word, std::string_view part) {
    return std::search(word.begin(), word.end(), part.begin(), part.end(), pm_same_letter) != word.end();
}

bool is_synonym(std::string_view typed, std::string_view word) {
    return std::ranges::any_of(synonyms(), [&](const synonym &known) {
        return word == known.meant && typed.size() == std::string_view(known.tried).size() &&
               begins_with(known.tried, typed);
    });
}

constexpr std::size_t FAR = 100;

// How far `word` is from what was typed; FAR when it is not meant.
std::size_t remoteness(std::string_view typed, std::string_view word) {
    if (is_synonym(typed, word)) {
        return 0;
    }
    const std::size_t allowed = typed.size() < SHORTEST_PART ? 0 : 1 + typed.size() / 5;
    if (typed.size() <= LONGEST_COMPARED && word.size() <= LONGEST_COMPARED) {
        const std::size_t whole = pm_word_distance(typed, word);
        if (whole <= allowed) {
            return whole;
        }
        // A mistyped abbreviation.
        const std::size_t begun = pm_word_distance(typed, word.substr(0, typed.size()));
        if (typed.size() > SHORTEST_PART && begun <= 1) {
            return allowed + begun;
        }
    }
    return typed.size() >= SHORTEST_PART && contains(word, typed) ? allowed + 2 : FAR;
}

}  // namespace

bool begins_with(std::string_view word, std::string_view beginning) {
    return word.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), word.begin(), pm_same_letter);
}

std::vector<std::size_t> match_word(const std::vector<fitting_word> &words, std::string_view typed) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (begins_with(words[i].word, typed)) {
            if (words[i].word.size() == typed.size()) {
                return {i};
            }
            found.push_back(i);
        }
    }
    return found;
}

std::vector<std::string_view> near_words(const std::vector<fitting_word> &words, std::string_view typed) {
    std::size_t nearest = FAR - 1;
    std::vector<std::string_view> found;
    for (const fitting_word &candidate : words) {
        const std::size_t away = remoteness(typed, candidate.word);
        if (away < nearest) {
            nearest = away;
            found.clear();
        }
        if (away == nearest) {
            found.push_back(candidate.word);
        }
    }
    return found;
}

std::string join_words(const std::vector<std::string_view> &words, std::string_view last) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        text += i == 0 ? "" : i + 1 == words.size() ? last : ", ";
        text += words[i];
    }
    return text;
}

std::string in_quotes(std::string_view text) {
    std::string result = "'";
    for (const char letter : text.substr(0, LONGEST_QUOTE)) {
        result += static_cast<unsigned char>(letter) < ' ' || letter == '\x7F' ? '?' : letter;
    }
    return result + (text.size() > LONGEST_QUOTE ? "...'" : "'");
}

}  // namespace perf_measure
