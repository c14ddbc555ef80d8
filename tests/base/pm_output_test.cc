// SPDX-License-Identifier: Apache-2.0
// The output buffer: what is written, when, and what happens when nothing takes it.
#include "base/pm_output.h"

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "base/pm_assert.h"

namespace {

// Makes standard output a pipe whose reader is gone.
void let_nobody_read() {
    int pipe_ends[2];
    if (pipe(pipe_ends) != 0) {
        std::_Exit(9);
    }
    std::signal(SIGPIPE, SIG_IGN);
    close(pipe_ends[0]);
    dup2(pipe_ends[1], STDOUT_FILENO);
}

std::string printed() {
    pm_output_flush();
    return testing::internal::GetCapturedStdout();
}

TEST(Output, KeepsTextOverManyBuffersInOrder) {
    testing::internal::CaptureStdout();
    std::string expected;
    for (unsigned i = 0; i < 60'000; ++i) {
        pm_print<"line %u\n">(i);
        expected += "line " + std::to_string(i) + "\n";
    }
    ASSERT_GT(expected.size(), 4 * PM_OUTPUT_BUFFER_SIZE);
    EXPECT_EQ(printed(), expected);
}

TEST(Output, TakesATextLargerThanItsBuffer) {
    testing::internal::CaptureStdout();
    const std::string large(3 * PM_OUTPUT_BUFFER_SIZE + 17, 'x');
    pm_print<"<%s>">(large.c_str());
    EXPECT_EQ(printed(), "<" + large + ">");
}

TEST(Output, PadsBeyondItsBuffer) {
    testing::internal::CaptureStdout();
    const int width = static_cast<int>(2 * PM_OUTPUT_BUFFER_SIZE + 3);
    pm_print<"%*s">(width, "x");
    EXPECT_EQ(printed(), std::string(2 * PM_OUTPUT_BUFFER_SIZE + 2, ' ') + "x");
}

TEST(Output, WritesWhatWasPrintedBeforeAnError) {
    int pipe_ends[2];
    ASSERT_EQ(pipe(pipe_ends), 0);
    const int out = dup(STDOUT_FILENO);
    const int err = dup(STDERR_FILENO);
    dup2(pipe_ends[1], STDOUT_FILENO);
    dup2(pipe_ends[1], STDERR_FILENO);
    pm_print<"first ">();
    pm_print_error<"second %u ">(2U);
    pm_print<"third">();
    pm_output_flush();
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    close(out);
    close(err);
    close(pipe_ends[1]);
    char text[64] = {};
    ASSERT_GT(read(pipe_ends[0], text, sizeof text - 1), 0);
    close(pipe_ends[0]);
    EXPECT_STREQ(text, "first second 2 third");
}

TEST(OutputDeath, AReaderThatGoesAwayEndsTheProgramQuietly) {
    EXPECT_EXIT(
        {
            let_nobody_read();
            pm_print<"text\n">();
            pm_output_flush();
        },
        testing::ExitedWithCode(0), "^$");
}

TEST(OutputDeath, AFullDiskIsReportedOnce) {
    EXPECT_EXIT(
        {
            dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
            pm_print<"text\n">();
            pm_output_flush();
        },
        testing::ExitedWithCode(1), "^perf-show: cannot write to standard output: No space left on device\n$");
}

TEST(OutputDeath, AClosedStandardOutputIsReportedOnce) {
    EXPECT_EXIT(
        {
            close(STDOUT_FILENO);
            pm_print<"text\n">();
            pm_output_flush();
        },
        testing::ExitedWithCode(1), "^perf-show: cannot write to standard output: Bad file descriptor\n$");
}

TEST(OutputDeath, AnAssertionWritesOutWhatWasPrintedAndNamesItsPlace) {
    EXPECT_DEATH(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);
            pm_print<"printed before\n">();
            PM_ASSERT(false, "NULL != time", "pm_utils", "f(time)");
        },
        "printed before\nAssertion failed: NULL != time, pm_utils:[0-9]+, f\\(time\\)\n");
}

TEST(OutputDeath, AnAssertionReportsAndAbortsAlsoWhenNobodyReads) {
    EXPECT_DEATH(
        {
            let_nobody_read();
            pm_print<"printed before\n">();
            PM_ASSERT(false, "NULL != time", "pm_utils", "f(time)");
        },
        "^Assertion failed: NULL != time, pm_utils:[0-9]+, f\\(time\\)\n$");
}

TEST(Output, AnAssertionThatHoldsDoesNothing) { PM_ASSERT(true, "true", "pm_utils", "f()"); }

}  // namespace
