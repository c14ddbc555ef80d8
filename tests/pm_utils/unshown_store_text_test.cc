// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_store_text.h.
#include "pm_utils/unshown_store_text.h"

#include <cstdlib>

#include <gtest/gtest.h>

#include "tests/fakes/platform_text_fake.h"

namespace {

class StoreText : public testing::Test {
protected:
    void SetUp() override { reset_platform_text_fake(); }
};

TEST_F(StoreText, DecodedTextBelongsToTheCaller) {
    char *decoded = nullptr;
    EXPECT_EQ(pm_opstore_string_decode("eth0%2F1", &decoded), ERRCODE_SUCCESS);
    EXPECT_STREQ(decoded, "<eth0%2F1>");
    std::free(decoded);
}

TEST_F(StoreText, NullTextIsNullWithoutAnError) {
    platform_fake.decode_error = ERRCODE_INVALID_ARGUMENT;
    char before[] = "before";
    char *decoded = before;
    EXPECT_EQ(pm_opstore_string_decode(nullptr, &decoded), ERRCODE_SUCCESS);
    EXPECT_EQ(decoded, nullptr);
}

TEST_F(StoreText, FailureReturnsTheErrorAndNull) {
    platform_fake.decode_error = ERRCODE_INVALID_ARGUMENT;
    char *decoded = nullptr;
    EXPECT_EQ(pm_opstore_string_decode("%zz", &decoded), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(decoded, nullptr);
}

// The leak checker of the sanitizer build sees whether the text is freed.
TEST_F(StoreText, TextLeftByAFailureIsFreed) {
    platform_fake.decode_error = ERRCODE_INVALID_ARGUMENT;
    platform_fake.failed_decode_leaves_text = true;
    char *decoded = nullptr;
    EXPECT_EQ(pm_opstore_string_decode("%zz", &decoded), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(decoded, nullptr);
}

// Freeing the text from before the call would end the test.
TEST_F(StoreText, FailureDoesNotFreeWhatTheCallerHadThere) {
    platform_fake.decode_error = ERRCODE_NO_MEMORY;
    char before[] = "before";
    char *decoded = before;
    EXPECT_EQ(pm_opstore_string_decode("%zz", &decoded), ERRCODE_NO_MEMORY);
    EXPECT_EQ(decoded, nullptr);
}

}  // namespace
