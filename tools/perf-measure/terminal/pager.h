// SPDX-License-Identifier: Apache-2.0
// The pager: a program between this one and the terminal, so that long output can be read page by page.
#pragma once

#include <string>
#include <sys/types.h>

namespace perf_measure {

// The command of the pager: PAGER, else less where there is one. Empty when output is to go straight to the
// terminal: PAGER is empty or "cat", or there is no less.
[[nodiscard]] std::string pager_command();

// While an object lives, standard output goes to the pager; so does standard error where that is the same
// terminal. less is told, unless LESS is set, to end at once when all fits on the screen, to keep colours and to
// leave the screen as it is.
class pager {
public:
    pager() = default;
    ~pager() { finish(); }
    pager(const pager &) = delete;
    pager &operator=(const pager &) = delete;

    // False when the pager cannot be started; output goes where it went before.
    [[nodiscard]] bool start(const std::string &command);

    // Closes the pager's input and waits until the user has left it.
    void finish();

private:
    pid_t child_ = -1;
    int terminal_ = -1;  // what standard output was
    int errors_ = -1;    // what standard error was, where it goes to the pager
};

}  // namespace perf_measure
