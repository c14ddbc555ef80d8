// SPDX-License-Identifier: Apache-2.0
// Failures as a user is told them.
#include "perf-measure/items/outcome.h"

#include <gtest/gtest.h>

#include "platform/inventory.h"

namespace {

using namespace perf_measure;

TEST(Outcome, NamesWhatFailedAndWhy) {
    EXPECT_EQ(describe({NODEID_NONE, OPSTORE_DAMAGED}), "the inventory of nodes: Store is damaged");
    EXPECT_EQ(describe({NODEID_NONE, OPSTORE_DAMAGED, "x: a text is not UTF-8"}),
              "the inventory of nodes: x: a text is not UTF-8");
}

TEST(Outcome, NothingFailedWithoutFailures) { EXPECT_TRUE(failures_that_count({}).empty()); }

}  // namespace
