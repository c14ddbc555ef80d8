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

// What "perf-show -c 9 -N 1" says with an empty folder as its root. "may not": this user may not change the root.
std::string said_in_empty_root(const std::string &folder, const std::string &url) {
    int ends[2];
    EXPECT_EQ(::pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        const int program = ::open(PERF_SHOW, O_RDONLY | O_CLOEXEC);
        ::setenv("OPSTORE_URL", url.c_str(), 1);
        ::dup2(ends[1], STDERR_FILENO);
        ::dup2(ends[1], STDOUT_FILENO);
        const bool may = (::geteuid() == 0 || ::unshare(CLONE_NEWUSER) == 0) && ::chroot(folder.c_str()) == 0;
        if (!may || ::chdir("/") != 0) {
            static_cast<void>(!::write(ends[1], "may not", 7));
            std::_Exit(1);
        }
        char name[] = "perf-show";
        char arguments[][3] = {"-c", "9", "-N", "1"};
        char *const words[] = {name, arguments[0], arguments[1], arguments[2], arguments[3], nullptr};
        ::fexecve(program, words, environ);
        std::_Exit(127);
    }
    ::close(ends[1]);
    std::string said;
    char part[256];
    for (ssize_t length = 0; (length = ::read(ends[0], part, sizeof part)) > 0;) {
        said.append(part, static_cast<std::size_t>(length));
    }
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 127);
    return said;
}

TEST(StaticProgram, FindsThisMachineWithoutFilesOfTheSystem) {
    if (!is_static(PERF_SHOW)) {
        GTEST_SKIP() << "the program is not linked statically";
    }
    const std::string port = std::to_string(redis_server::free_port());
    const redis_server server({"port", port, "bind", "127.0.0.1"});
    ASSERT_FALSE(load_items(server.url(), 3));
    const temporary_folder folder;
    for (const char *host : {"localhost", "127.0.0.1"}) {
        const std::string said = said_in_empty_root(folder.path(), std::string("redis://") + host + ":" + port);
        if (said == "may not") {
            GTEST_SKIP() << "this user may not change the root";
        }
        EXPECT_EQ(said.find("Store client not available"), std::string::npos) << said;
    }
    const std::string said = said_in_empty_root(folder.path(), "redis://no.such.host.invalid:" + port);
    EXPECT_NE(said.find("Store client not available"), std::string::npos) << said;
}

}  // namespace
