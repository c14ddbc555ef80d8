// SPDX-License-Identifier: Apache-2.0
// The interactive mode, typed at on a pseudo terminal.
#include <gtest/gtest.h>
#include <string>

#include "tests/perf-measure/support/programs.h"
#include "tests/perf-measure/support/pseudo_terminal.h"

namespace {

constexpr char PROMPT[] = "perf-measure> ";

class Session : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(run_command("perf-store load \"$EXAMPLE\"", folder_.path()).status, 0); }
    temporary_folder folder_;
};

constexpr char START[] = "PAGER= NO_COLOR=1 perf-measure";

TEST_F(Session, RunsEachLineAndLeavesOnExit) {
    pseudo_terminal terminal(START, folder_.path());
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("sh int br node lc0\r");
    ASSERT_TRUE(terminal.wait_for("210/207/215/2"));
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("exit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(Session, EndsWithTheStatusOfTheLastCommandAtTheEndOfTheInput) {
    pseudo_terminal terminal(START, folder_.path());
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("show nonsense\r");
    ASSERT_TRUE(terminal.wait_for("'nonsense' does not fit here"));
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("\004");
    EXPECT_EQ(terminal.finish(), 2);
}

TEST_F(Session, TabCompletesWordsAndNames) {
    pseudo_terminal terminal(START, folder_.path());
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("sho\tint\tname eth0/1/0/5\tbr\t\r");
    ASSERT_TRUE(terminal.wait_for("Not running: Interface down")) << terminal.drawn();
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("show interfaces name eth0/1\t\t");  // both begin so
    ASSERT_TRUE(terminal.wait_for("eth0/1/0/4  eth0/1/0/5"));
    terminal.type("\003");
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("quit\r");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(Session, AQuestionMarkListsWhatMayFollow) {
    pseudo_terminal terminal(START, folder_.path());
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("show history l?");
    ASSERT_TRUE(terminal.wait_for("liveness                changes of the liveness state"));
    ASSERT_TRUE(terminal.wait_for("loss-packets            the packets of loss measurement"));
    ASSERT_TRUE(terminal.wait_for("perf-measure> show history l"));  // and the line is there again
    terminal.type("\003");
    terminal.type("\004");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(Session, QuotesHoldANameTogether) {
    const std::string set =
        R"({"item":{"root":"main","node":256,"path":"srpolicy/detail/a \"b\" 50%","type":"pm_srpolicy_parcel","record":)"
        R"({"PolicyName":"a \"b\" 50%","Color":7}}})";
    write_file(folder_.path() + "/set.ndjson", set);
    ASSERT_EQ(run_command("perf-store load " + folder_.path() + "/set.ndjson", folder_.path()).status, 0);
    pseudo_terminal terminal(START, folder_.path());
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("show sr-policies name 'a \"b\" 50%'\r");
    ASSERT_TRUE(terminal.wait_for("SR Policy name: a \"b\" 50%")) << terminal.drawn();
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("show sr-policies name a\\ \t\r");  // Tab types the backslashes
    ASSERT_TRUE(terminal.wait_for("SR Policy name: a \"b\" 50%")) << terminal.drawn();
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("show 'int\r");
    ASSERT_TRUE(terminal.wait_for("a ' is missing"));
    terminal.type("\004");
    terminal.finish();
}

TEST_F(Session, RemembersLinesFromSessionToSession) {
    {
        pseudo_terminal terminal(START, folder_.path());
        ASSERT_TRUE(terminal.wait_for(PROMPT));
        terminal.type("show int br node lc0\r");
        ASSERT_TRUE(terminal.wait_for("210/207/215/2"));
        ASSERT_TRUE(terminal.wait_for(PROMPT));
        terminal.type("\004");
        ASSERT_EQ(terminal.finish(), 0);
    }
    pseudo_terminal terminal(START, folder_.path());
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("\033[A\r");  // the line before
    ASSERT_TRUE(terminal.wait_for("210/207/215/2")) << terminal.drawn();
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("\004");
    EXPECT_EQ(terminal.finish(), 0);
}

TEST_F(Session, GivesTheTerminalBack) {
    pseudo_terminal terminal(std::string(START) + "; echo left; read -r line", folder_.path());
    ASSERT_TRUE(terminal.wait_for(PROMPT));
    terminal.type("\004");
    ASSERT_TRUE(terminal.wait_for("left"));
    EXPECT_TRUE(terminal.is_as_before());
}

TEST_F(Session, IsNotStartedAwayFromATerminal) {
    const command_result result = measure("", folder_.path());
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "perf-measure: what to show is missing; perf-measure --help tells what there is\n");
}

}  // namespace
