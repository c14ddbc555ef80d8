// SPDX-License-Identifier: Apache-2.0
// The loop of the watch, its keys and its picture.
#include "perf-measure/terminal/watch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <poll.h>
#include <string_view>
#include <sys/signalfd.h>
#include <unistd.h>
#include <utility>

#include "perf-measure/terminal/changes.h"
#include "perf-measure/terminal/child_run.h"
#include "perf-measure/terminal/colours.h"
#include "perf-measure/terminal/screen.h"

namespace perf_measure {

namespace {

using clock = std::chrono::steady_clock;

constexpr std::size_t COLUMN_STEP = 20;  // of the left and right arrow keys

std::string time_text() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::localtime_r(&now, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts);
    return text.data();
}

// Signals as something to wait for, while the object lives.
class signal_queue {
public:
    signal_queue() {
        sigset_t wanted;
        sigemptyset(&wanted);
        for (const int each : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGWINCH}) {
            sigaddset(&wanted, each);
        }
        sigprocmask(SIG_BLOCK, &wanted, &before_);
        descriptor_ = ::signalfd(-1, &wanted, SFD_CLOEXEC | SFD_NONBLOCK);
    }
    ~signal_queue() {
        ::close(descriptor_);
        sigprocmask(SIG_SETMASK, &before_, nullptr);
    }
    signal_queue(const signal_queue &) = delete;
    signal_queue &operator=(const signal_queue &) = delete;

    [[nodiscard]] int descriptor() const { return descriptor_; }

    // The signal that ends the watch; 0 for none.
    [[nodiscard]] int ending() const {
        signalfd_siginfo info{};
        while (::read(descriptor_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
            if (info.ssi_signo != SIGWINCH) {
                return static_cast<int>(info.ssi_signo);
            }
        }
        return 0;
    }

private:
    sigset_t before_{};
    int descriptor_ = -1;
};

// What the user sees.
struct picture {
    std::string title;
    std::string time;
    std::string now;
    std::string before;
    bool first = true;  // nothing to compare with yet
    std::size_t top = 0;
    std::size_t left = 0;
};

// A line across the screen, cut to its width.
void append_title(const picture &shown, std::size_t columns, std::string *out) {
    std::string line = shown.title;
    line.resize(columns > shown.time.size() ? columns - shown.time.size() - 1 : columns, ' ');
    line += ' ' + shown.time;
    *out += line.substr(0, columns) + "\033[K";
}

std::string drawing_of(picture *shown) {
    const screen_size size = size_of_terminal(STDOUT_FILENO);
    const std::vector<std::string_view> lines = lines_of(shown->now);
    const std::vector<std::string_view> before = lines_of(shown->before);
    const std::vector<std::size_t> against = counterparts(before, lines);
    const bool colours = wants_colours(STDOUT_FILENO);
    const std::size_t rows = size.rows > 1 ? size.rows - 1 : 1;
    shown->top = std::min(shown->top, lines.size() > rows ? lines.size() - rows : 0);
    std::string text = "\033[H";
    append_title(*shown, size.columns, &text);
    for (std::size_t i = shown->top; i < lines.size() && i < shown->top + rows; ++i) {
        text += "\r\n";
        const std::string_view *counterpart = shown->first ? &lines[i] : nullptr;
        if (!shown->first && against[i] != NO_LINE) {
            counterpart = &before[against[i]];
        }
        append_marked(lines[i], counterpart, shown->left, size.columns, colours, &text);
        text += "\033[K";
    }
    return text + "\033[J";
}

// False when the key ends the watch.
bool obey(std::string_view keys, picture *shown) {
    const std::size_t page = size_of_terminal(STDOUT_FILENO).rows / 2;
    if (keys == "\033[A" || keys == "k") {
        shown->top -= std::min<std::size_t>(shown->top, 1);
    } else if (keys == "\033[B" || keys == "j") {
        shown->top += 1;  // drawing cuts it
    } else if (keys == "\033[5~" || keys == "b") {
        shown->top -= std::min(shown->top, page);
    } else if (keys == "\033[6~" || keys == " ") {
        shown->top += page;
    } else if (keys == "\033[D" || keys == "h") {
        shown->left -= std::min(shown->left, COLUMN_STEP);
    } else if (keys == "\033[C" || keys == "l") {
        shown->left += COLUMN_STEP;
    }
    return keys.find_first_of("qQ") == std::string_view::npos;
}

struct ending {
    bool reached = false;
    int status = 0;
};

// Waits for keys and signals until the moment comes, drawing what they change.
ending wait_until(clock::time_point moment, const signal_queue &signals, int last_status, picture *shown,
                  screen *drawn) {
    bool keys_left = drawn != nullptr;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(moment - clock::now()).count();
        if (left <= 0) {
            return {};
        }
        std::array<pollfd, 2> ends = {{{signals.descriptor(), POLLIN, 0}, {keys_left ? STDIN_FILENO : -1, POLLIN, 0}}};
        if (::poll(ends.data(), ends.size(), static_cast<int>(left)) < 0 && errno != EINTR) {
            return {true, last_status};
        }
        if (const int signal = signals.ending(); signal != 0) {
            return {true, EXIT_BY_SIGNAL + signal};
        }
        if (ends[1].revents != 0) {
            std::array<char, 16> keys{};
            const ssize_t length = ::read(STDIN_FILENO, keys.data(), keys.size());
            keys_left = length > 0;
            if (keys_left && !obey({keys.data(), static_cast<std::size_t>(length)}, shown)) {
                return {true, last_status};
            }
        }
        if (drawn != nullptr && !drawn->draw(drawing_of(shown))) {
            return {true, last_status};
        }
    }
}

int run_once(const std::function<int()> &body, std::string *text) {
    text->clear();
    return run_in_child(
        body,
        [text](stream, std::string_view bytes) {
            *text += bytes;
            return true;
        },
        true);
}

clock::duration interval_of(double seconds) {
    return std::chrono::duration_cast<clock::duration>(std::chrono::duration<double>(seconds));
}

int watch_on_screen(const std::function<int()> &body, double interval_sec, const std::string &title) {
    const signal_queue signals;
    screen drawn;
    picture shown;
    shown.title = title;
    for (;;) {
        const clock::time_point begun = clock::now();
        std::string text;
        // What fits its output to the terminal cannot ask the pipe that it writes to.
        ::setenv("COLUMNS", std::to_string(size_of_terminal(STDOUT_FILENO).columns).c_str(), 1);
        const int status = run_once(body, &text);
        if (const int signal = signals.ending(); signal != 0) {
            return EXIT_BY_SIGNAL + signal;
        }
        shown.first = shown.time.empty();
        shown.before = std::exchange(shown.now, std::move(text));
        shown.time = time_text();
        if (!drawn.draw(drawing_of(&shown))) {
            return status;
        }
        const ending ended = wait_until(begun + interval_of(interval_sec), signals, status, &shown, &drawn);
        if (ended.reached) {
            return ended.status;
        }
    }
}

// Errors go where they always go.
int watch_as_blocks(const std::function<int()> &body, double interval_sec) {
    const signal_queue signals;
    picture unused;
    for (;;) {
        const clock::time_point begun = clock::now();
        if (!write_fully(STDOUT_FILENO, time_text() + '\n')) {
            return 0;
        }
        bool is_read = true;
        const int status = run_in_child(
            body, [&is_read](stream, std::string_view bytes) { return is_read = write_fully(STDOUT_FILENO, bytes); },
            false);
        if (!is_read || !write_fully(STDOUT_FILENO, "\n")) {
            return 0;
        }
        const ending ended = wait_until(begun + interval_of(interval_sec), signals, status, &unused, nullptr);
        if (ended.reached) {
            return ended.status;
        }
    }
}

}  // namespace

int watch(const std::function<int()> &body, double interval_sec, const std::string &title) {
    char interval[32];
    std::snprintf(interval, sizeof interval, "Every %.3g s: ", interval_sec);
    return ::isatty(STDOUT_FILENO) != 0 ? watch_on_screen(body, interval_sec, interval + title)
                                        : watch_as_blocks(body, interval_sec);
}

}  // namespace perf_measure
