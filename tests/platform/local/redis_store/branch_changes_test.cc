// SPDX-License-Identifier: Apache-2.0
// What changes that were not sent yet say about items.
#include <gtest/gtest.h>

#include "platform/local/redis_store/branch_changes.h"

namespace {

using redis_store::branch_changes;
using knowledge = branch_changes::knowledge;

TEST(BranchChanges, KnowWhatWasPutAndRemoved) {
    branch_changes changes;
    changes.put("a/1", "m");
    changes.remove("a/2");
    EXPECT_EQ(changes.about("a/1"), knowledge::present);
    EXPECT_EQ(changes.about("a/2"), knowledge::absent);
    EXPECT_EQ(changes.about("a/3"), knowledge::unknown);
}

TEST(BranchChanges, OfAPrefixAreWhollyKnownOnlyAfterItsRemoval) {
    branch_changes changes;
    std::uint64_t present = 9;
    EXPECT_EQ(changes.below("a/", &present), knowledge::unknown);
    changes.put("a/1", "m");
    EXPECT_EQ(changes.below("a/", &present), knowledge::partly);
    changes.remove_below("a/");
    EXPECT_EQ(changes.below("a/", &present), knowledge::absent);
    EXPECT_EQ(changes.about("a/1"), knowledge::absent);
    changes.put("a/2", "m");
    EXPECT_EQ(changes.below("a/", &present), knowledge::present);
    EXPECT_EQ(present, 1U);
    EXPECT_EQ(changes.below("", &present), knowledge::partly);
}

}  // namespace
