// SPDX-License-Identifier: Apache-2.0
// perf-show and the far end of its standard output.
#include <gtest/gtest.h>
#include <string>

#include "tests/support/command.h"

namespace {

class Output : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(run_command("perf-store load \"$EXAMPLE\"", folder_.path()).status, 0); }
    command_result run(const std::string &command) { return run_command(command, folder_.path()); }

    temporary_folder folder_;
};

TEST_F(Output, AReaderThatGoesAwayEndsTheProgramQuietly) {
    // The reader is gone before the first byte, and after the first line.
    for (const char *reader : {"true", "head -1 >/dev/null"}) {
        const command_result result = run(std::string("(sleep 0.1; perf-show -c 9; echo status $? >&2) | ") + reader);
        EXPECT_EQ(result.err, "status 0\n") << reader;
    }
}

TEST_F(Output, AFullDiskIsReportedOnce) {
    const command_result result = run("perf-show -c 9 >/dev/full");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "perf-show: cannot write to standard output: No space left on device\n");
}

TEST_F(Output, AClosedStandardOutputIsReportedOnce) {
    const command_result result = run("perf-show -c 9 >&-");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "perf-show: cannot write to standard output: Bad file descriptor\n");
}

// Else the store's own files would take the numbers that are free.
TEST_F(Output, ClosedStandardFilesNeverBecomeTheStore) {
    for (const char *closed : {" <&- >&-", " >&- 2>&-", " <&- >&- 2>&-"}) {
        EXPECT_EQ(run(std::string("perf-show -c 9") + closed).status, 1) << closed;
        EXPECT_EQ(read_file(folder_.path() + "/lock.mdb").find("---"), std::string::npos) << closed;
    }
    EXPECT_EQ(run("perf-store load \"$EXAMPLE\" <&- >&- 2>&-").status, 0);
    const command_result show = run("perf-show -c 9");
    EXPECT_EQ(show.status, 0);
    EXPECT_EQ(show.err, "");
}

TEST_F(Output, AndMessagesKeepTheirOrder) {
    const command_result result = run("perf-show -c 9 -N 0x100 -e nonsense 2>&1 | head -c 30");
    EXPECT_TRUE(result.out.starts_with("Invalid IP address\n---")) << result.out;
}

TEST_F(Output, AnInvalidCommandEndsWithMinusOne) {
    const command_result result = run("perf-show -c 3");
    EXPECT_EQ(result.status, 255);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "Show command type invalid 3\n");
}

}  // namespace
