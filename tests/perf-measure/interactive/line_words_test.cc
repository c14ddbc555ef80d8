// SPDX-License-Identifier: Apache-2.0
// Lines taken apart into words.
#include "perf-measure/interactive/line_words.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace perf_measure;
using texts = std::vector<std::string>;

TEST(LineWords, BlanksSeparateWords) {
    const line_words split = split_line("  show\tint  br ");
    EXPECT_EQ(split.words, (texts{"show", "int", "br"}));
    EXPECT_FALSE(split.in_word);
}

TEST(LineWords, TheLastWordIsOpen) {
    const line_words split = split_line("show int");
    EXPECT_EQ(split.words, texts{"show"});
    EXPECT_EQ(split.last, "int");
    EXPECT_TRUE(split.in_word);
}

TEST(LineWords, QuotesAndBackslashesKeepCharacters) {
    EXPECT_EQ(split_line(R"('a b' "c 'd'" e\ f "g\"h" 'i\j' '' x)").words,
              (texts{"a b", "c 'd'", "e f", "g\"h", "i\\j", ""}));
    EXPECT_EQ(split_line(R"(a'b c'd )").words, texts{"ab cd"});
}

TEST(LineWords, AnOpenQuoteIsTold) {
    const line_words split = split_line("name \"a b");
    EXPECT_EQ(split.last, "a b");
    EXPECT_EQ(split.quote, '"');
}

TEST(LineWords, WhatIsTypedReadsBack) {
    for (const char *const word : {"plain", "a b", R"(q'u"o\te)", "50%", "tab\there"}) {
        EXPECT_EQ(split_line(typed(word) + ' ').words, texts{word});
    }
}

}  // namespace
