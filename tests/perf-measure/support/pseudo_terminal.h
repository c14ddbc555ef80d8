// SPDX-License-Identifier: Apache-2.0
// A program on a pseudo terminal, with what it draws and the keys that it is given.
#pragma once

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <pty.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include "tests/support/command.h"

class pseudo_terminal {
public:
    // Runs a shell command with OPSTORE_URL naming `store`, on a terminal of 100 columns.
    pseudo_terminal(const std::string &command, const std::string &store) {
        winsize size{};
        size.ws_row = 30;
        size.ws_col = 100;
        const std::string whole =
            "unset PAGER LESS NO_COLOR COLUMNS LINES LC_ALL LC_CTYPE; export LANG=C.UTF-8 TERM=xterm TZ=UTC "
            "PERF_SHOW_NOW=1709647390000 HOME=/nonexistent XDG_STATE_HOME=" +
            store + " OPSTORE_URL=lmdb:" + store + "; " + command;
        child_ = forkpty(&master_, nullptr, nullptr, &size);
        if (child_ == 0) {
            name_programs();
            execl("/bin/bash", "bash", "-c", whole.c_str(), nullptr);
            std::_Exit(127);
        }
        tcgetattr(master_, &before_);
    }
    ~pseudo_terminal() {
        if (child_ > 0) {
            kill(child_, SIGKILL);
            waitpid(child_, nullptr, 0);
        }
        close(master_);
    }
    pseudo_terminal(const pseudo_terminal &) = delete;
    pseudo_terminal &operator=(const pseudo_terminal &) = delete;

    // Waits until `text` has been drawn after what was waited for before; false after ten seconds without it.
    bool wait_for(const std::string &text) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        for (;;) {
            if (const std::size_t at = drawn_.find(text, seen_); at != std::string::npos) {
                seen_ = at + text.size();
                return true;
            }
            if (std::chrono::steady_clock::now() > deadline || !read_more()) {
                return false;
            }
        }
    }

    void type(const std::string &keys) { static_cast<void>(!write(master_, keys.data(), keys.size())); }

    // Waits for the end; the exit status, 128 and more after a signal.
    int finish() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (read_more() && std::chrono::steady_clock::now() < deadline) {
        }
        int status = 0;
        while (waitpid(child_, &status, WNOHANG) == 0) {
            if (std::chrono::steady_clock::now() > deadline) {
                kill(child_, SIGKILL);
            }
            usleep(10000);
        }
        child_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    // All that was drawn.
    [[nodiscard]] const std::string &drawn() const { return drawn_; }

    // Whether the terminal's modes are those of the beginning.
    [[nodiscard]] bool is_as_before() const {
        termios now{};
        return tcgetattr(master_, &now) == 0 && now.c_lflag == before_.c_lflag && now.c_iflag == before_.c_iflag &&
               now.c_cc[VMIN] == before_.c_cc[VMIN] && now.c_cc[VSUSP] == before_.c_cc[VSUSP];
    }

private:
    bool read_more() {
        pollfd end = {master_, POLLIN, 0};
        if (poll(&end, 1, 100) == 0) {
            return true;
        }
        char bytes[4096];
        const ssize_t length = read(master_, bytes, sizeof bytes);
        if (length <= 0) {
            return false;  // nobody has the terminal any more
        }
        drawn_.append(bytes, static_cast<std::size_t>(length));
        return true;
    }

    pid_t child_ = -1;
    int master_ = -1;
    termios before_{};
    std::string drawn_;
    std::size_t seen_ = 0;
};
