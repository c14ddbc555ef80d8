// SPDX-License-Identifier: Apache-2.0
// Texts with their lengths, alone and in formats.
#include "base/pm_text.h"

#include <gtest/gtest.h>
#include <string>

#include "base/pm_format.h"

namespace {

std::string line_of(pm_text label, int width) {
    char line[64];
    return {line, pm_format_text<"%-*s:%8s|%s\n">(line, sizeof line, width, label, label, label)};
}

TEST(Text, OfALiteralHasALengthWhenItIsCompiled) {
    constexpr pm_text text("Total sent");
    static_assert(text.length == 10);
    constexpr pm_text nothing("");
    static_assert(nothing.length == 0);
    EXPECT_STREQ(static_cast<const char *>(text), "Total sent");
}

TEST(Text, OfABufferEndsAtItsZeroByte) {
    char buffer[16] = "eth0";
    EXPECT_EQ(pm_text(buffer).length, 4U);
    const char *const name = buffer;
    EXPECT_EQ(pm_text(name).length, 4U);
    buffer[2] = '\0';
    EXPECT_EQ(pm_text(buffer).length, 2U);
}

TEST(Text, OfNothingIsWhatAFormatPrintsOfIt) {
    const char *const nothing = nullptr;
    EXPECT_EQ(line_of(nothing, 8), "(null)  :  (null)|(null)\n");
}

TEST(Text, IsPaddedLikeAnyOther) {
    EXPECT_EQ(line_of("Sent", 6), "Sent  :    Sent|Sent\n");
    EXPECT_EQ(line_of("Sent", -6), "Sent  :    Sent|Sent\n");
    EXPECT_EQ(line_of("Sent", 2), "Sent:    Sent|Sent\n");
    EXPECT_EQ(line_of("", 3), "   :        |\n");
}

}  // namespace
