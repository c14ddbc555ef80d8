// SPDX-License-Identifier: Apache-2.0
// The child process and its pipes.
#include "perf-measure/terminal/child_run.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace perf_measure {

namespace {

constexpr std::size_t READ_SIZE = 64 * 1024;

struct pipe_ends {
    int read = -1;
    int write = -1;
};

bool make_pipe(pipe_ends *ends) {
    std::array<int, 2> both{};
    if (::pipe2(both.data(), O_CLOEXEC) != 0) {
        return false;
    }
    *ends = {both[0], both[1]};
    return true;
}

void close_end(int *descriptor) {
    if (*descriptor >= 0) {
        ::close(*descriptor);
        *descriptor = -1;
    }
}

[[noreturn]] void be_child(const std::function<int()> &body, const pipe_ends &output, const pipe_ends &errors) {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGQUIT, SIG_DFL);
    ::dup2(output.write, STDOUT_FILENO);
    if (errors.write >= 0) {
        ::dup2(errors.write, STDERR_FILENO);
    }
    std::_Exit(body());
}

// Reads once from a descriptor and hands it on; false at its end, or when nothing more is wanted.
bool pass_on(int descriptor, stream which, const receiver &receive) {
    static std::array<char, READ_SIZE> bytes;
    const ssize_t length = ::read(descriptor, bytes.data(), bytes.size());
    if (length < 0) {
        return errno == EINTR;
    }
    return length > 0 && receive(which, {bytes.data(), static_cast<std::size_t>(length)});
}

// Until both ends are closed. Output comes before errors, for the child flushes it before it reports one.
void read_both(int *output, int *errors, const receiver &receive) {
    while (*output >= 0 || *errors >= 0) {
        std::array<pollfd, 2> ends = {{{*output, POLLIN, 0}, {*errors, POLLIN, 0}}};
        if (::poll(ends.data(), ends.size(), -1) < 0) {
            if (errno != EINTR) {
                break;
            }
            continue;
        }
        if (ends[0].revents != 0) {
            if (!pass_on(*output, stream::output, receive)) {
                close_end(output);
            }
        } else if (ends[1].revents != 0 && !pass_on(*errors, stream::error, receive)) {
            close_end(errors);
        }
    }
    close_end(output);
    close_end(errors);
}

}  // namespace

int run_in_child(const std::function<int()> &body, const receiver &receive, bool with_errors) {
    pipe_ends output;
    pipe_ends errors;
    if (!make_pipe(&output) || (with_errors && !make_pipe(&errors))) {
        return -1;
    }
    const pid_t child = ::fork();
    if (child == 0) {
        be_child(body, output, errors);
    }
    close_end(&output.write);
    close_end(&errors.write);
    if (child < 0) {
        close_end(&output.read);
        close_end(&errors.read);
        return -1;
    }
    read_both(&output.read, &errors.read, receive);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_BY_SIGNAL + WTERMSIG(status);
}

bool write_fully(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return true;
}

}  // namespace perf_measure
