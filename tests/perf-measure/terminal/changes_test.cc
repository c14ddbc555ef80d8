// SPDX-License-Identifier: Apache-2.0
// Red words, and what of a text has changed.
#include "perf-measure/terminal/changes.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "perf-measure/terminal/colours.h"

namespace {

using namespace perf_measure;

std::string coloured(std::string_view line) {
    std::string text;
    append_coloured(line, &text);
    return text;
}

TEST(Colours, AlarmsAreRed) {
    EXPECT_EQ(coloured("  State : Down\n"), "  State : \033[31mDown\033[0m\n");
    EXPECT_EQ(coloured(" a   DOWN   x"), " a   \033[31mDOWN\033[0m   x");
    EXPECT_EQ(coloured("Not running: Interface down   \n"), "\033[31mNot running: Interface down\033[0m   \n");
    EXPECT_EQ(coloured("PM process is not running\n"), "\033[31mPM process is not running\033[0m\n");
}

TEST(Colours, NamesAndCountersAreNot) {
    for (const char *const line : {"SR Policy name: Down-2", "Name: LINK-DOWN", "Countdown", "Liveness down : 3", "",
                                   "Shutdown", "x_Down", "Down.1"}) {
        EXPECT_EQ(coloured(line), line);
    }
}

std::vector<std::size_t> compared(std::string_view before, std::string_view now) {
    return counterparts(lines_of(before), lines_of(now));
}

TEST(Changes, EqualLinesStandAgainstEachOther) {
    EXPECT_EQ(compared("a\nb\nc\n", "a\nb\nc\n"), (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(compared("a\nb\nc\n", "a\nx\nc\n"), (std::vector<std::size_t>{0, 1, 2}));
    EXPECT_EQ(compared("a\nc\n", "a\nnew\nc\n"), (std::vector<std::size_t>{0, NO_LINE, 1}));
    EXPECT_EQ(compared("a\nold\nc\n", "a\nc\n"), (std::vector<std::size_t>{0, 2}));
    EXPECT_EQ(compared("", "a\n"), std::vector<std::size_t>{NO_LINE});
}

std::string marked(std::string_view line, std::string_view before, std::size_t first = 0, std::size_t columns = 80) {
    std::string text;
    append_marked(line, &before, first, columns, false, &text);
    return text;
}

TEST(Changes, WhatDiffersIsInReverse) {
    EXPECT_EQ(marked("sent 12", "sent 12"), "sent 12");
    EXPECT_EQ(marked("sent 13", "sent 12"), "sent 1\033[0m\033[7m3\033[0m");
    EXPECT_EQ(marked("ab", "a"), "a\033[0m\033[7mb\033[0m");
    std::string text;
    append_marked("new", nullptr, 0, 80, false, &text);
    EXPECT_EQ(text, "\033[0m\033[7mnew\033[0m");
}

TEST(Changes, ALineIsCutToTheScreen) {
    EXPECT_EQ(marked("0123456789", "0123456789", 2, 3), "234");
    EXPECT_EQ(marked("\xC3\xA9\xC3\xA8z", "\xC3\xA9\xC3\xA8z", 1, 1), "\xC3\xA8");
    EXPECT_EQ(marked("a\033[2Jb", "a\033[2Jb"), "a?[2Jb");  // a text cannot draw on its own
}

}  // namespace
