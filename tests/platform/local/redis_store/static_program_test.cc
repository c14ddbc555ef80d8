// SPDX-License-Identifier: Apache-2.0
// A program that needs no library finds a server where the system has no files at all.
#include <cstdlib>
#include <elf.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/redis_server.h"

extern char **environ;

namespace {

// Whether the program asks for a dynamic loader.
bool is_static(const char *program) {
    const int file = ::open(program, O_RDONLY | O_CLOEXEC);
    Elf64_Ehdr header{};
    bool found = ::pread(file, &header, sizeof header, 0) == sizeof header;
    for (int i = 0; found && i < header.e_phnum; ++i) {
        Elf64_Phdr segment{};
        const auto at = static_cast<off_t>(header.e_phoff) + i * header.e_phentsize;
        found = ::pread(file, &segment, sizeof segment, at) == sizeof segment && segment.p_type != PT_INTERP;
    }
    ::close(file);
    return found;
}

// Runs "perf-store stat" with an empty folder as its root; the exit status. 126: this user may not.
int run_in_empty_root(const std::string &folder, const std::string &url) {
    const pid_t child = fork();
    if (child == 0) {
        const int program = ::open(PERF_STORE, O_RDONLY | O_CLOEXEC);
        ::setenv("OPSTORE_URL", url.c_str(), 1);
        if (::geteuid() != 0 && ::unshare(CLONE_NEWUSER) != 0) {
            std::_Exit(126);
        }
        if (::chroot(folder.c_str()) != 0 || ::chdir("/") != 0) {
            std::_Exit(126);
        }
        char name[] = "perf-store";
        char command[] = "stat";
        char *const arguments[] = {name, command, nullptr};
        ::fexecve(program, arguments, environ);
        std::_Exit(127);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(StaticProgram, FindsThisMachineWithoutFilesOfTheSystem) {
    if (!is_static(PERF_STORE)) {
        GTEST_SKIP() << "the program is not linked statically";
    }
    const std::string port = std::to_string(redis_server::free_port());
    const redis_server server({"port", port, "bind", "127.0.0.1"});
    ASSERT_FALSE(load_items(server.url(), 3));
    const temporary_folder folder;
    for (const char *host : {"localhost", "127.0.0.1"}) {
        const int status = run_in_empty_root(folder.path(), std::string("redis://") + host + ":" + port);
        if (status == 126) {
            GTEST_SKIP() << "this user may not change the root";
        }
        EXPECT_EQ(status, 0) << host;
    }
    EXPECT_EQ(run_in_empty_root(folder.path(), "redis://no.such.host.invalid:" + port), 1);
}

}  // namespace
