// SPDX-License-Identifier: Apache-2.0
// Distances of words, by hand.
#include "base/pm_word_distance.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(WordDistance, CountsWhatMakesOneWordOfTheOther) {
    EXPECT_EQ(pm_word_distance("load", "load"), 0U);
    EXPECT_EQ(pm_word_distance("LOAD", "load"), 0U);
    EXPECT_EQ(pm_word_distance("laod", "load"), 1U);  // neighbours swapped
    EXPECT_EQ(pm_word_distance("loaad", "load"), 1U);
    EXPECT_EQ(pm_word_distance("lad", "load"), 1U);
    EXPECT_EQ(pm_word_distance("loud", "load"), 1U);
    EXPECT_EQ(pm_word_distance("", "load"), 4U);
    EXPECT_EQ(pm_word_distance("stat", "gen"), 4U);
}

TEST(WordDistance, AWordThatIsTooLongIsFar) {
    const std::string longest(PM_LONGEST_COMPARED, 'x');
    EXPECT_EQ(pm_word_distance(longest, longest), 0U);
    EXPECT_EQ(pm_word_distance(longest + "x", longest + "x"), PM_LONGEST_COMPARED);
}

}  // namespace
