// SPDX-License-Identifier: Apache-2.0
// Computes the distance row by row: a cell is the distance between two beginnings.
#include "base/pm_word_distance.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace {

char lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; }

using distance_row = std::array<std::size_t, PM_LONGEST_COMPARED + 1>;

}  // namespace

bool pm_same_letter(char left, char right) { return lower(left) == lower(right); }

std::size_t pm_word_distance(std::string_view from, std::string_view to) {
    if (std::max(from.size(), to.size()) > PM_LONGEST_COMPARED) {
        return PM_LONGEST_COMPARED;
    }
    distance_row before{};
    distance_row above{};
    std::iota(above.begin(), above.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        distance_row row{};
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = above[j - 1] + (pm_same_letter(from[i - 1], to[j - 1]) ? 0 : 1);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, replaced});
            if (i > 1 && j > 1 && pm_same_letter(from[i - 1], to[j - 2]) && pm_same_letter(from[i - 2], to[j - 1])) {
                row[j] = std::min(row[j], before[j - 2] + 1);
            }
        }
        before = above;
        above = row;
    }
    return above[to.size()];
}
