// SPDX-License-Identifier: Apache-2.0
// Lists of a profile, of lengths for which whole commands would be many.
#include "pm_show_client/blocks/profile_lines.h"

#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "tests/support/captured.h"

namespace {

// A list of the values 1 to `count`.
std::string flow_labels(std::uint32_t count) {
    std::vector<std::uint32_t> values(count);
    std::iota(values.begin(), values.end(), 1U);
    return captured([&] { pm_profile_flow_labels({count, values.data()}); });
}

TEST(ProfileLists, ValuesOfListsHaveASignAtEveryPlace) {
    std::vector<std::uint32_t> values(16, 1);
    values[1] = values[15] = 0xFFFFFFFF;
    EXPECT_EQ(captured([&] {
                  pm_profile_flow_labels({16, values.data()});
              }),
              "    Flow Label Count                            : 16\n"
              "      Flow Labels: 1, -1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,\n"
              "                   -1\n");
}

TEST(ProfileLists, AnEmptyListIsItsCountAlone) {
    EXPECT_EQ(flow_labels(0), "    Flow Label Count                            : 0\n");
}

TEST(ProfileLists, FifteenValuesFillOneLine) {
    EXPECT_EQ(flow_labels(1),
              "    Flow Label Count                            : 1\n"
              "      Flow Labels: 1\n");
    EXPECT_EQ(flow_labels(2),
              "    Flow Label Count                            : 2\n"
              "      Flow Labels: 1, 2\n");
    EXPECT_EQ(flow_labels(15),
              "    Flow Label Count                            : 15\n"
              "      Flow Labels: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15\n");
}

TEST(ProfileLists, EachFurtherFifteenValuesBeginALine) {
    EXPECT_EQ(flow_labels(16),
              "    Flow Label Count                            : 16\n"
              "      Flow Labels: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,\n"
              "                   16\n");
    EXPECT_EQ(flow_labels(30),
              "    Flow Label Count                            : 30\n"
              "      Flow Labels: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,\n"
              "                   16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30\n");
    EXPECT_EQ(flow_labels(31),
              "    Flow Label Count                            : 31\n"
              "      Flow Labels: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,\n"
              "                   16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30,\n"
              "                   31\n");
}

}  // namespace
