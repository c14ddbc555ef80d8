// SPDX-License-Identifier: Apache-2.0
// The word that someone may have meant, for messages on one that is not known.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "base/pm_word_distance.h"

namespace perf_store {

// "; did you mean WORD?" for the word of the range that is nearest to what was given, or nothing when none is near.
// `name_of` gives the word of an element.
template <class Range, class Name>
[[nodiscard]] std::string did_you_mean(std::string_view given, const Range &range, Name name_of) {
    constexpr std::size_t LETTERS_FOR_AN_ERROR = 8;
    if (given.size() > PM_LONGEST_COMPARED) {
        return {};
    }
    std::size_t nearest = std::max<std::size_t>(1, given.size() / LETTERS_FOR_AN_ERROR) + 1;
    std::string_view found;
    for (const auto &each : range) {
        const std::string_view word = name_of(each);
        const std::size_t distance = pm_word_distance(given, word);
        if (distance < nearest && distance < given.size()) {
            nearest = distance;
            found = word;
        }
    }
    return found.empty() ? std::string() : "; did you mean " + std::string(found) + "?";
}

}  // namespace perf_store
