// SPDX-License-Identifier: Apache-2.0
// Whole programs, run by tests: what they wrote and how they ended.
#pragma once

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/temporary_folder.h"

inline std::string read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline void write_file(const std::string &path, const std::string &content) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << content;
}

// How a command ended.
struct command_result {
    int status = -1;  // its exit status; -1 when a signal ended it
    int signal = 0;   // the signal that ended it
    std::string out;
    std::string err;
};

// Lets a shell find perf-show and perf-store by their names and the example chassis as $EXAMPLE, whatever blanks and
// parentheses are in their paths. Only for tests that are built with the programs.
inline void name_programs() {
#ifdef PERF_SHOW
    const char *const path = std::getenv("PATH");
    const std::string own = std::filesystem::path(PERF_SHOW).parent_path();
    ::setenv("PATH", (own + ":" + (path != nullptr ? path : "/usr/bin:/bin")).c_str(), 1);
    ::setenv("EXAMPLE", PM_EXAMPLE, 1);
#endif
}

// Runs a shell command with OPSTORE_URL naming `store`. What the shell redirects itself is not seen.
inline command_result run_command(const std::string &command, const std::string &store) {
    const temporary_folder work;
    const std::string whole = "export TZ=UTC OPSTORE_URL='lmdb:" + store + "'; exec >'" + work.path() + "/out' 2>'" +
                              work.path() + "/err'; " + command;
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGPIPE, SIG_DFL);
        name_programs();
        execl("/bin/bash", "bash", "-c", whole.c_str(), nullptr);
        std::_Exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    command_result result;
    if (WIFEXITED(status)) {
        result.status = WEXITSTATUS(status);
    } else {
        result.signal = WTERMSIG(status);
    }
    if (result.status > 128) {  // the shell's word for a signal
        result.signal = result.status - 128;
    }
    result.out = read_file(work.path() + "/out");
    result.err = read_file(work.path() + "/err");
    return result;
}
