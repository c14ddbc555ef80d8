// SPDX-License-Identifier: Apache-2.0
// Starting the pager and waiting for it.
#include "perf-measure/terminal/pager.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>

namespace perf_measure {

namespace {

// As git has them: end when all fits, keep colours, do not clear the screen.
constexpr char LESS_OPTIONS[] = "FRX";

bool is_program(std::string_view name) {
    const char *const path = std::getenv("PATH");
    std::string_view folders = path != nullptr ? path : "/usr/bin:/bin";
    while (!folders.empty()) {
        const std::size_t colon = std::min(folders.find(':'), folders.size());
        const std::string file = std::string(folders.substr(0, colon)) + '/' + std::string(name);
        if (::access(file.c_str(), X_OK) == 0) {
            return true;
        }
        folders.remove_prefix(std::min(colon + 1, folders.size()));
    }
    return false;
}

[[noreturn]] void be_pager(const std::string &command, int input) {
    ::dup2(input, STDIN_FILENO);
    ::setenv("LESS", LESS_OPTIONS, 0);
    ::setenv("LESSCHARSET", "utf-8", 0);
    std::signal(SIGPIPE, SIG_DFL);
    ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    std::_Exit(127);
}

}  // namespace

std::string pager_command() {
    if (const char *const chosen = std::getenv("PAGER"); chosen != nullptr) {
        return std::string_view(chosen) == "cat" ? "" : chosen;
    }
    return is_program("less") ? "less" : "";
}

bool pager::start(const std::string &command) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return false;
    }
    child_ = ::fork();
    if (child_ == 0) {
        be_pager(command, ends[0]);
    }
    ::close(ends[0]);
    if (child_ < 0) {
        ::close(ends[1]);
        return false;
    }
    std::signal(SIGINT, SIG_IGN);  // the pager's, while it has the terminal
    std::signal(SIGQUIT, SIG_IGN);
    terminal_ = ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    ::dup2(ends[1], STDOUT_FILENO);
    if (::isatty(STDERR_FILENO) != 0) {
        errors_ = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
        ::dup2(ends[1], STDERR_FILENO);
    }
    ::close(ends[1]);
    return true;
}

void pager::finish() {
    if (child_ < 0) {
        return;
    }
    ::dup2(terminal_, STDOUT_FILENO);  // closes the pager's input
    ::close(terminal_);
    if (errors_ >= 0) {
        ::dup2(errors_, STDERR_FILENO);
        ::close(errors_);
    }
    int status = 0;
    while (::waitpid(child_, &status, 0) < 0 && errno == EINTR) {
    }
    child_ = -1;
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGQUIT, SIG_DFL);
}

}  // namespace perf_measure
