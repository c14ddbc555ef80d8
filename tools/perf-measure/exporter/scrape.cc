// SPDX-License-Identifier: Apache-2.0
// The run's process, its pipe, and what it says of a failure.
#include "perf-measure/exporter/scrape.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace exporter {

namespace {

constexpr std::size_t LONGEST_PROBLEM = 4096;

// Starts the program with default signals, its output in `output` and its errors in `errors`; -1 when it cannot.
pid_t spawn(const std::string &program, std::vector<std::string> arguments, int output, int errors) {
    std::vector<char *> pointers;
    for (std::string &each : arguments) {
        pointers.push_back(each.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, errors, STDERR_FILENO);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    pid_t child = -1;
    const int failure = ::posix_spawn(&child, program.c_str(), &files, &attributes, pointers.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    return failure == 0 ? child : -1;
}

std::string read_errors(int descriptor) {
    std::string text(LONGEST_PROBLEM, '\0');
    const ssize_t length = ::pread(descriptor, text.data(), text.size(), 0);
    text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return text;
}

void close_one(int descriptor) {
    if (descriptor >= 0) {
        ::close(descriptor);
    }
}

}  // namespace

scrape::~scrape() {
    close_one(output_);
    close_one(errors_);
    if (child_ > 0) {
        ::kill(child_, SIGKILL);  // it reads only
        ::waitpid(child_, nullptr, 0);
    }
}

bool scrape::start(const std::string &program, const std::vector<std::string> &arguments,
                   std::chrono::milliseconds limit) {
    std::array<int, 2> ends{-1, -1};
    errors_ = ::memfd_create("errors", MFD_CLOEXEC);
    if (errors_ < 0 || ::pipe2(ends.data(), O_CLOEXEC) != 0) {
        problem_ = std::string("cannot read the store: ") + std::strerror(errno) + '\n';
        return false;
    }
    output_ = ends[0];
    child_ = spawn(program, arguments, ends[1], errors_);
    ::close(ends[1]);
    if (child_ < 0) {
        problem_ = "cannot run " + program + '\n';
        return false;
    }
    if (!wait_for_output(limit)) {
        problem_ = "reading the store took too long\n";
        return false;
    }
    const std::string_view first = next();
    waiting_ = first.size();
    if (first.empty() && !finish()) {
        problem_ = read_errors(errors_);
        problem_ = problem_.empty() ? "the store could not be read\n" : problem_;
        return false;
    }
    return true;
}

bool scrape::wait_for_output(std::chrono::milliseconds limit) {
    const auto until = std::chrono::steady_clock::now() + limit;
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now()).count();
        pollfd waited{output_, POLLIN, 0};
        const int ready = left > 0 ? ::poll(&waited, 1, static_cast<int>(left)) : 0;
        if (ready >= 0 || errno != EINTR) {
            return ready > 0;
        }
    }
}

std::string_view scrape::next() {
    if (waiting_ != 0) {
        const std::string_view first(bytes_.data(), waiting_);
        waiting_ = 0;
        return first;
    }
    ssize_t length = 0;
    do {
        length = ::read(output_, bytes_.data(), bytes_.size());
    } while (length < 0 && errno == EINTR);
    return {bytes_.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

bool scrape::finish() {
    if (child_ < 0) {
        return false;
    }
    int status = 0;
    while (::waitpid(child_, &status, 0) < 0 && errno == EINTR) {
    }
    child_ = -1;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace exporter
