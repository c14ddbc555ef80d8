// SPDX-License-Identifier: Apache-2.0
// Long output on a terminal: the pager and the colours.
#include <gtest/gtest.h>
#include <string>

#include "tests/perf-measure/support/programs.h"
#include "tests/perf-measure/support/pseudo_terminal.h"

namespace {

constexpr char RED_DOWN[] = "\033[31mDown\033[0m";

class Terminal : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(run_command("perf-store load \"$EXAMPLE\"", folder_.path()).status, 0); }

    // All that a command draws.
    std::string drawn(const std::string &command, int status = 0) {
        pseudo_terminal terminal(command, folder_.path());
        EXPECT_EQ(terminal.finish(), status) << command;
        return terminal.drawn();
    }

    temporary_folder folder_;
};

constexpr char DOWN_INTERFACE[] = "perf-measure show interfaces name eth0/1/0/5";

TEST_F(Terminal, OutputGoesThroughThePager) {
    const std::string text = drawn(std::string("PAGER='sed s/^/paged:/' ") + DOWN_INTERFACE);
    EXPECT_NE(text.find("paged:lc1\r\n"), std::string::npos) << text;
}

TEST_F(Terminal, NoPagerIsWantedWithTheOption) {
    const std::string text = drawn(std::string("PAGER='sed s/^/paged:/' ") + DOWN_INTERFACE + " --no-pager");
    EXPECT_EQ(text.find("paged:"), std::string::npos);
    EXPECT_NE(text.find("lc1\r\n"), std::string::npos);
}

TEST_F(Terminal, AnEmptyPagerAndCatAreNone) {
    for (const char *const pager : {"PAGER= ", "PAGER=cat "}) {
        EXPECT_NE(drawn(pager + std::string(DOWN_INTERFACE)).find("lc1\r\n"), std::string::npos);
    }
}

TEST_F(Terminal, APagerThatIsLeftEarlyEndsTheCommandQuietly) {
    const std::string text = drawn("PAGER='head -n 3' perf-measure show sr-policies verbose");
    EXPECT_EQ(text.find("rror"), std::string::npos) << text;
}

TEST_F(Terminal, MessagesGoThroughThePagerToo) {
    const std::string text = drawn("PAGER='sed s/^/paged:/' NO_COLOR=1 perf-measure show interfaces name nix", 1);
    EXPECT_NE(text.find("paged:perf-measure: lc0: Item not found"), std::string::npos) << text;
}

TEST_F(Terminal, WhatIsDownIsRed) {
    EXPECT_NE(drawn(std::string("PAGER= ") + DOWN_INTERFACE).find(RED_DOWN), std::string::npos);
    const std::string error = drawn("PAGER= perf-measure show interfaces name nix", 1);
    EXPECT_NE(error.find("\033[31mperf-measure: lc0: Item not found\033[0m"), std::string::npos) << error;
}

TEST_F(Terminal, NothingIsRedWithoutColoursOrWithoutATerminal) {
    for (const char *const setting : {"PAGER= NO_COLOR=1 ", "PAGER= TERM=dumb "}) {
        const std::string text = drawn(setting + std::string(DOWN_INTERFACE));
        EXPECT_EQ(text.find('\033'), std::string::npos) << setting;
        EXPECT_NE(text.find("Down"), std::string::npos) << setting;
    }
    EXPECT_EQ(measure("show interfaces name eth0/1/0/5", folder_.path()).out.find('\033'), std::string::npos);
}

TEST_F(Terminal, APlotIsAsWideAsTheTerminal) {
    const std::string text = drawn("PAGER='sed s/^/paged:/' perf-measure plot delay interface eth0/0/0/0");
    std::string floor = "└";  // of the axis, after the numbers: 100 columns but for 12
    for (int column = 0; column < 88; ++column) {
        floor += "─";
    }
    EXPECT_NE(text.find(floor + "\r\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("paged:"), std::string::npos);
}

TEST_F(Terminal, ColoursChangeNothingButTheEscapes) {
    std::string text = drawn(std::string("PAGER= ") + DOWN_INTERFACE);
    for (const char *const escape : {"\033[31m", "\033[0m", "\r"}) {
        for (std::size_t at = text.find(escape); at != std::string::npos; at = text.find(escape)) {
            text.erase(at, std::string(escape).size());
        }
    }
    EXPECT_EQ(text, measure("show interfaces name eth0/1/0/5", folder_.path()).out);
}

}  // namespace
