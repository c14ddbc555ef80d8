// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_u16_order.h.
#include "pm_utils/unshown_u16_order.h"

#include <gtest/gtest.h>

namespace {

TEST(U16Less, ComparesNumbersWithoutASign) {
    EXPECT_TRUE(pm_u16_less(1, 2));
    EXPECT_FALSE(pm_u16_less(2, 2));
    EXPECT_FALSE(pm_u16_less(2, 1));
    EXPECT_TRUE(pm_u16_less(0x7FFF, 0x8000));
    EXPECT_FALSE(pm_u16_less(0xFFFF, 0));
}

TEST(U16Less, OnlyTheLowSixteenBitsCount) {
    EXPECT_TRUE(pm_u16_less(0x10001, 2));
    EXPECT_FALSE(pm_u16_less(1, 0x10000));
    EXPECT_FALSE(pm_u16_less(0x10001, 0x20001));
}

}  // namespace
