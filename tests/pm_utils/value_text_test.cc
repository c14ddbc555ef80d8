// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/value_text.h.
#include "pm_utils/value_text.h"

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "tests/fakes/platform_text_fake.h"

namespace {

class ValueText : public testing::Test {
protected:
    void SetUp() override { reset_platform_text_fake(); }
};

using InterfaceText = ValueText;

TEST_F(InterfaceText, NameWithHandleEndsWithABlank) {
    EXPECT_STREQ(pm_ifh_str(0x2a), "eth0/1/0/4 (ifh: 0x2a) ");
    EXPECT_EQ(platform_fake.flags_seen, 0U);
}

TEST_F(InterfaceText, TwoHandlesLiveAtOnceAndTheThirdOverwritesTheFirst) {
    const char *first = pm_ifh_str(1);
    const char *second = pm_ifh_str(2);
    EXPECT_STREQ(first, "eth0/1/0/4 (ifh: 0x1) ");
    EXPECT_STREQ(second, "eth0/1/0/4 (ifh: 0x2) ");
    static_cast<void>(pm_ifh_str(3));
    EXPECT_STREQ(first, "eth0/1/0/4 (ifh: 0x3) ");
    EXPECT_STREQ(second, "eth0/1/0/4 (ifh: 0x2) ");
}

TEST_F(InterfaceText, LongNameIsCutAtEightyFiveCharacters) {
    const std::string name(90, 'e');
    platform_fake.interface = name.c_str();
    EXPECT_EQ(pm_ifh_str(0x2a), std::string(85, 'e'));
}

TEST_F(InterfaceText, BufferIsZeroedAfterAShorterText) {
    const std::string name(90, 'e');
    platform_fake.interface = name.c_str();
    static_cast<void>(pm_ifh_str(1));
    static_cast<void>(pm_ifh_str(1));
    platform_fake.interface = "eth0";
    const char *text = pm_ifh_str(1);
    const std::string expected = std::string("eth0 (ifh: 0x1) ") + std::string(70, '\0');
    EXPECT_EQ(std::string(text, 86), expected);
}

TEST(CountOrAllStr, ZeroIsAll) {
    EXPECT_STREQ(pm_count_or_all_str(0), "All");
    EXPECT_STREQ(pm_count_or_all_str(1), "1");
    EXPECT_STREQ(pm_count_or_all_str(4294967295U), "4294967295");
}

TEST(TruncateName, LongNameEndsWithTwoDots) {
    EXPECT_STREQ(pm_truncate_name("abcdef", 4), "abcd..");
    EXPECT_STREQ(pm_truncate_name("abcde", 4), "abcd..");
}

TEST(TruncateName, NameOfExactlyTheWidthIsWhole) {
    EXPECT_STREQ(pm_truncate_name("abcd", 4), "abcd");
    EXPECT_STREQ(pm_truncate_name("abc", 4), "abc");
    EXPECT_STREQ(pm_truncate_name("", 4), "");
}

TEST(TruncateName, WidthZeroLeavesTheDots) {
    EXPECT_STREQ(pm_truncate_name("abcdef", 0), "..");
    EXPECT_STREQ(pm_truncate_name("", 0), "");
}

TEST(TruncateName, WidestWidthStillFits) {
    const std::string name(300, 'n');
    EXPECT_EQ(pm_truncate_name(name.c_str(), 253), std::string(253, 'n') + "..");
    EXPECT_EQ(pm_truncate_name(name.c_str() + 47, 253), std::string(253, 'n'));
}

TEST(TruncateName, RestOfTheSlotIsCleared) {
    const std::string name(300, 'n');
    for (int call = 0; call < 10; ++call) {
        static_cast<void>(pm_truncate_name(name.c_str(), 253));
    }
    EXPECT_EQ(std::string(pm_truncate_name("abcdef", 4), 256), "abcd.." + std::string(250, '\0'));
}

TEST(TruncateName, NullIsNull) {
    EXPECT_EQ(pm_truncate_name(nullptr, 4), nullptr);
    EXPECT_EQ(pm_truncate_name(nullptr, 254), nullptr);
}

TEST(TruncateNameDeath, WidthWithoutRoomForTheEndAborts) {
    EXPECT_DEATH(static_cast<void>(pm_truncate_name("abcdef", 254)),
                 "\\(trunc_len \\+ 3\\) <= PM_UTILS_MAX_STRING_LEN, pm_utils.*"
                 "const char \\*pm_truncate_name\\(const char \\*, size_t\\)");
}

TEST(TruncateNameDeath, WidthThatWouldOverflowAborts) {
    EXPECT_DEATH(static_cast<void>(pm_truncate_name("abcdef", static_cast<std::size_t>(-1))),
                 "PM_UTILS_MAX_STRING_LEN");
}

}  // namespace
