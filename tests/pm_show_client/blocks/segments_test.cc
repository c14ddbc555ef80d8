// SPDX-License-Identifier: Apache-2.0
// Labels and hops of paths, as no show command meets them. tests/golden has the others.
#include "pm_show_client/blocks/segments.h"

#include <gtest/gtest.h>

#include "tests/support/captured.h"

namespace {

TEST(Segments, NineLabelsTakeThreeLines) {
    std::uint32_t labels[] = {16001, 16002, 16003, 16004, 16005, 16006, 16007, 16008, 16009};
    EXPECT_EQ(captured([&] {
                  pm_show_labels({9, labels}, 4, 30);
              }),
              "    Labels                    : 16001, 16002, 16003, 16004\n"
              "                              : 16005, 16006, 16007, 16008\n"
              "                              : 16009\n");
}

TEST(Segments, NoLabelsAreNothing) {
    EXPECT_EQ(captured([] { pm_show_labels({}, 4, 30); }), "");
    EXPECT_EQ(captured([] { pm_show_hops({}, 4, 30); }), "");
}

}  // namespace
