// SPDX-License-Identifier: Apache-2.0
// The watch: on a terminal and elsewhere.
#include <gtest/gtest.h>
#include <string>

#include "tests/perf-measure/support/programs.h"
#include "tests/perf-measure/support/pseudo_terminal.h"

namespace {

constexpr char TAKEN[] = "\033[?1049h\033[?25l";
constexpr char GIVEN_BACK[] = "\033[?25h\033[?1049l";

class Watch : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(run_command("perf-store load \"$EXAMPLE\"", folder_.path()).status, 0); }
    temporary_folder folder_;
};

constexpr char TABLE[] = "perf-measure show interfaces brief node lc0 --watch 0.2";

TEST_F(Watch, FillsTheScreenAndGivesItBackOnQ) {
    pseudo_terminal terminal(TABLE, folder_.path());
    ASSERT_TRUE(terminal.wait_for(TAKEN));
    ASSERT_TRUE(terminal.wait_for("Every 0.2 s: show interfaces brief node lc0"));
    ASSERT_TRUE(terminal.wait_for("210/207/215/2"));
    terminal.type("q");
    EXPECT_EQ(terminal.finish(), 0);
    EXPECT_TRUE(terminal.drawn().ends_with(GIVEN_BACK)) << terminal.drawn();
}

TEST_F(Watch, GivesTheTerminalBackOnCtrlC) {
    // The shell stays, so that the terminal can be looked at afterwards.
    pseudo_terminal terminal("trap : INT; " + std::string(TABLE) + "; echo status $?; read -r line", folder_.path());
    ASSERT_TRUE(terminal.wait_for("210/207/215/2"));
    EXPECT_FALSE(terminal.is_as_before());
    terminal.type("\003");
    ASSERT_TRUE(terminal.wait_for(GIVEN_BACK));
    ASSERT_TRUE(terminal.wait_for("status 130"));
    EXPECT_TRUE(terminal.is_as_before());
}

TEST_F(Watch, GivesTheTerminalBackAfterAFailure) {
    pseudo_terminal terminal(std::string("OPSTORE_URL=lmdb:/nonexistent ") + TABLE + "; echo status $?; read -r line",
                             folder_.path());
    ASSERT_TRUE(terminal.wait_for("there is no store at lmdb:/nonexistent"));
    terminal.type("q");
    ASSERT_TRUE(terminal.wait_for(GIVEN_BACK));
    ASSERT_TRUE(terminal.wait_for("status 1"));
    EXPECT_TRUE(terminal.is_as_before());
}

TEST_F(Watch, GivesTheTerminalBackWhenItIsEnded) {
    pseudo_terminal terminal(std::string(TABLE) + " & sleep 1; kill %1; wait; echo ended; read -r line",
                             folder_.path());
    // In the background it may not change the terminal's modes, but it may draw.
    ASSERT_TRUE(terminal.wait_for("ended"));
    EXPECT_TRUE(terminal.is_as_before());
}

TEST_F(Watch, MarksWhatHasChanged) {
    pseudo_terminal terminal(TABLE, folder_.path());
    ASSERT_TRUE(terminal.wait_for("4/4              210/207/215/2"));
    // The same interface with another average: 210 becomes 219.
    const std::string change =
        "perf-store get --root main --node 16 intf/detail/eth0/0/0/0 | sed 's/\"Average\":210/\"Average\":219/' | "
        "perf-store load -";
    const command_result changed = run_command(change, folder_.path());
    ASSERT_EQ(changed.status, 0) << changed.err;
    EXPECT_TRUE(terminal.wait_for("21\033[0m\033[7m9\033[0m/207/215/2")) << terminal.drawn();
    terminal.type("q");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(Watch, PrintsPlainBlocksWithoutATerminal) {
    const command_result result = run_command(
        std::string(CAPTURED) + "timeout -s INT 1 perf-measure show capabilities node lc0 --watch 0.3 </dev/null",
        folder_.path());
    EXPECT_EQ(result.out.find('\033'), std::string::npos);
    const std::size_t first = result.out.find("\nlc0\n");
    ASSERT_NE(first, std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\nlc0\n", first + 1), std::string::npos) << result.out;
}

TEST_F(Watch, EndsWhenNobodyReadsTheBlocks) {
    const command_result result = run_command(
        "timeout 5 perf-measure show summary --watch 0.1 </dev/null | head -n 1 >/dev/null; "
        "echo ${PIPESTATUS[0]}",
        folder_.path());
    EXPECT_EQ(result.out, "0\n");
}

TEST_F(Watch, RefusesOtherIntervals) {
    for (const char *const seconds : {"0", "0.01", "86401", "..."}) {
        const command_result result = measure(std::string("show summary --watch=") + seconds, folder_.path());
        EXPECT_EQ(result.status, 2) << seconds;
        EXPECT_TRUE(result.err.starts_with("perf-measure: ")) << result.err;
    }
}

}  // namespace
