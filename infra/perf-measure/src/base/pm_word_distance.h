// SPDX-License-Identifier: Apache-2.0
// How much a word differs from the one that was meant, for the messages that name the latter.
#pragma once

#include <cstddef>
#include <string_view>

inline constexpr std::size_t PM_LONGEST_COMPARED = 64;  // bytes of a word; a longer one is far from every other

// ASCII letters only, whatever the locale.
[[nodiscard]] bool pm_same_letter(char left, char right);

// Letters to insert, remove, replace or swap with their neighbour to make one word of the other, upper and lower case
// being the same. PM_LONGEST_COMPARED for a word that is longer than that.
[[nodiscard]] std::size_t pm_word_distance(std::string_view from, std::string_view to);
