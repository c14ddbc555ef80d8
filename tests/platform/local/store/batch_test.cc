// SPDX-License-Identifier: Apache-2.0
// What fits into a batch.
#include <gtest/gtest.h>
#include <string>

#include "platform/local/store/batch.h"

namespace {

TEST(Batch, EndsAtItsNumberOfItems) {
    store::batch batch;
    batch.clear(2);
    EXPECT_TRUE(batch.add("a", "1"));
    EXPECT_TRUE(batch.add("b", ""));
    EXPECT_FALSE(batch.more());
    EXPECT_FALSE(batch.add("c", "3"));
    EXPECT_TRUE(batch.more());
    ASSERT_EQ(batch.items().size(), 2U);
    EXPECT_EQ(batch.items()[0].path, "a");
    EXPECT_EQ(batch.items()[0].path.data()[1], '\0');
    EXPECT_EQ(batch.items()[0].parcel, "1");
    EXPECT_EQ(batch.items()[1].path, "b");
    EXPECT_EQ(batch.items()[1].parcel, "");
}

// 100,000 bytes three times would be more than 256 KiB.
TEST(Batch, EndsAtItsNumberOfBytes) {
    const std::string large(100'000, 'x');
    store::batch batch;
    batch.clear(200);
    EXPECT_TRUE(batch.add("1", large));
    EXPECT_TRUE(batch.add("2", large));
    EXPECT_FALSE(batch.add("3", large));
    EXPECT_TRUE(batch.more());
    EXPECT_EQ(batch.items().size(), 2U);
    EXPECT_EQ(batch.items()[1].parcel, large);
}

// What is left out ends a batch, also where a smaller item after it would fit: nothing is passed over.
TEST(Batch, OfLargeLargeLargeAndSmallEndsBeforeTheThird) {
    const std::string large(100'000, 'x');
    store::batch batch;
    batch.clear(200);
    EXPECT_TRUE(batch.add("1", large));
    EXPECT_TRUE(batch.add("2", large));
    EXPECT_FALSE(batch.add("3", large));
    batch.clear(200);  // the listing goes on after the last one that it has
    EXPECT_TRUE(batch.add("3", large));
    EXPECT_TRUE(batch.add("4", "small"));
    EXPECT_FALSE(batch.more());
    ASSERT_EQ(batch.items().size(), 2U);
    EXPECT_EQ(batch.items()[0].parcel, large);
    EXPECT_EQ(batch.items()[1].parcel, "small");
}

TEST(Batch, TakesAFirstItemOfAnySize) {
    const std::string huge(3 * store::BATCH_BYTES, 'h');
    store::batch batch;
    batch.clear(200);
    EXPECT_TRUE(batch.add("huge", huge));
    EXPECT_FALSE(batch.add("small", "s"));
    EXPECT_TRUE(batch.more());
    batch.clear(200);
    EXPECT_FALSE(batch.more());
    EXPECT_TRUE(batch.items().empty());
    EXPECT_TRUE(batch.add("small", "s"));  // in the memory of the huge one
    EXPECT_EQ(batch.items()[0].parcel, "s");
}

TEST(Batch, FillsAPlaceWhenItIsToldTo) {
    const std::string large(200'000, 'x');
    std::string first = "first";
    store::batch batch;
    batch.clear(200);
    EXPECT_TRUE(batch.add_place("a", first));
    first = "later";
    batch.copy_last();
    first = "never";
    batch.copy_last();
    EXPECT_TRUE(batch.add_place("b", large));
    batch.copy_last();
    EXPECT_FALSE(batch.add_place("c", large));
    batch.copy_last();
    ASSERT_EQ(batch.items().size(), 2U);
    EXPECT_EQ(batch.items()[0].parcel, "later");
    EXPECT_EQ(batch.items()[1].parcel, large);
}

// What was never copied, as after a fault, is not copied into the items that are read next.
TEST(Batch, ForgetsAPlaceThatWasNotFilled) {
    store::batch batch;
    batch.clear(200);
    EXPECT_TRUE(batch.add_place("a", "lost"));
    batch.clear(200);
    EXPECT_TRUE(batch.add_place("a", "kept"));
    batch.copy_last();
    EXPECT_EQ(batch.items()[0].parcel, "kept");
}

}  // namespace
