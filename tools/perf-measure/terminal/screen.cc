// SPDX-License-Identifier: Apache-2.0
// Taking the terminal and giving it back.
#include "perf-measure/terminal/screen.h"

#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>

#include "perf-measure/terminal/child_run.h"

namespace perf_measure {

namespace {

constexpr char TAKE[] = "\033[?1049h\033[?25l\033[2J";  // the other picture, no cursor, empty
constexpr char GIVE_BACK[] = "\033[0m\033[?25h\033[?1049l";

std::size_t from_environment(const char *variable, std::size_t otherwise) {
    const char *const text = std::getenv(variable);
    const unsigned long value = text != nullptr ? std::strtoul(text, nullptr, 10) : 0;
    return value > 0 && value < 10000 ? value : otherwise;
}

}  // namespace

screen_size size_of_terminal(int descriptor) {
    winsize size{};
    if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0) {
        return {size.ws_row, size.ws_col};
    }
    return {from_environment("LINES", 24), from_environment("COLUMNS", 80)};
}

screen::screen() {
    has_keys_ = ::tcgetattr(STDIN_FILENO, &before_) == 0;
    if (has_keys_) {
        termios keys = before_;
        keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        keys.c_cc[VMIN] = 1;
        keys.c_cc[VTIME] = 0;
        keys.c_cc[VSUSP] = _POSIX_VDISABLE;  // a stopped program would leave its picture
        ::tcsetattr(STDIN_FILENO, TCSANOW, &keys);
    }
    static_cast<void>(draw(TAKE));
}

screen::~screen() {
    static_cast<void>(draw(GIVE_BACK));
    if (has_keys_) {
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
    }
}

bool screen::draw(std::string_view text) { return write_fully(STDOUT_FILENO, text); }

}  // namespace perf_measure
