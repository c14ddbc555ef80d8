// SPDX-License-Identifier: Apache-2.0
// What someone meets who has no store yet, or has not said where it is.
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/command.h"
#include "tests/support/temporary_folder.h"

namespace {

// What perf-show -c 9 -N 1 writes to a terminal as its standard error.
std::string told_at_a_terminal(const std::string &url) {
    int own = -1;
    int of_program = -1;
    if (::openpty(&own, &of_program, nullptr, nullptr, nullptr) != 0) {
        return "no terminal";
    }
    const pid_t child = ::fork();
    if (child == 0) {
        ::setenv("OPSTORE_URL", url.c_str(), 1);
        ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
        ::dup2(of_program, STDERR_FILENO);
        ::close(own);
        ::execl(PERF_SHOW, "perf-show", "-c", "9", "-N", "1", nullptr);
        std::_Exit(127);
    }
    ::close(of_program);
    std::string text;
    char part[256];
    for (ssize_t length = 0; (length = ::read(own, part, sizeof part)) > 0;) {  // fails when the program has ended
        text.append(part, static_cast<std::size_t>(length));
    }
    ::close(own);
    int status = 0;
    ::waitpid(child, &status, 0);
    return text;
}

TEST(FirstDay, APersonIsToldWhichStoreWasTried) {
    EXPECT_EQ(told_at_a_terminal("lmdb:/nonexistent"),
              "perf-show: lmdb:/nonexistent: there is no store (OPSTORE_URL names another, as lmdb:FOLDER)\r\n"
              " generic_show: opstore_bind failed: Store client not available (0x8081c200)\r\n");
}

TEST(FirstDay, AProgramGetsTheSameTextAsEver) {
    EXPECT_EQ(run_command("perf-show -c 9 -N 1", "/nonexistent").err,
              " generic_show: opstore_bind failed: Store client not available (0x8081c200)\n");
}

TEST(FirstDay, WhoHasNotChosenAStoreIsToldHowTo) {
    const command_result given = run_command("perf-store stat", "/nonexistent");
    EXPECT_EQ(given.err, "perf-store: lmdb:/nonexistent: Store client not available\n");
    const command_result unset = run_command("unset OPSTORE_URL; perf-store rm --root main --node 1 no/such", "");
    EXPECT_EQ(unset.status, 1);
    EXPECT_NE(unset.err.find(" (OPSTORE_URL is not set; it names another store, as lmdb:FOLDER)\n"), std::string::npos)
        << unset.err;
}

// The group may search what leads to a store that it may read.
TEST(FirstDay, TheFirstLoadsUmaskKeepsNobodyOut) {
    const temporary_folder folder;
    const std::string store = folder.path() + "/lib/opstore";
    ASSERT_EQ(run_command("umask 077; perf-store load \"$EXAMPLE\"", store).status, 0);
    struct stat above {};
    struct stat own {};
    ASSERT_EQ(::stat((folder.path() + "/lib").c_str(), &above), 0);
    ASSERT_EQ(::stat(store.c_str(), &own), 0);
    EXPECT_EQ(above.st_mode & 07777, 0711U);
    EXPECT_EQ(own.st_mode & 07777, 0750U);
}

TEST(FirstDay, AMomentInSecondsIsToldOnce) {
    const command_result show = run_command("PERF_SHOW_NOW=1709647390 perf-show -c 9 -N 1", "/nonexistent");
    EXPECT_EQ(show.err,
              "perf-show: PERF_SHOW_NOW=1709647390 is in seconds; it is ignored, for it takes milliseconds\n"
              " generic_show: opstore_bind failed: Store client not available (0x8081c200)\n");
}

}  // namespace
