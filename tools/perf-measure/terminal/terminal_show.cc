// SPDX-License-Identifier: Apache-2.0
// Lines of a child, coloured on their way to the terminal.
#include "perf-measure/terminal/terminal_show.h"

#include <string>
#include <string_view>
#include <unistd.h>

#include "perf-measure/terminal/child_run.h"
#include "perf-measure/terminal/colours.h"
#include "perf-measure/terminal/pager.h"

namespace perf_measure {

namespace {

// Colours whole lines of one stream as they come.
class line_painter {
public:
    line_painter(int descriptor, bool colours, bool is_error)
        : descriptor_(descriptor), colours_(colours), is_error_(is_error) {}

    [[nodiscard]] bool take(std::string_view bytes) {
        if (!colours_) {
            return write_fully(descriptor_, bytes);
        }
        std::string painted;
        for (std::size_t end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
            line_ += bytes.substr(0, end + 1);
            paint(&painted);
            bytes.remove_prefix(end + 1);
        }
        line_ += bytes;
        return write_fully(descriptor_, painted);
    }

    [[nodiscard]] bool finish() {
        std::string painted;
        paint(&painted);
        return write_fully(descriptor_, painted);
    }

private:
    void paint(std::string *out) {
        const bool ends = line_.ends_with('\n');
        if (is_error_ && line_.size() > (ends ? 1U : 0U)) {
            *out += RED + line_.substr(0, line_.size() - (ends ? 1 : 0)) + PLAIN + (ends ? "\n" : "");
        } else {
            append_coloured(line_, out);
        }
        line_.clear();
    }

    int descriptor_;
    bool colours_;
    bool is_error_;
    std::string line_;  // that has not ended
};

}  // namespace

bool wants_terminal_show(bool with_pager) {
    return ::isatty(STDOUT_FILENO) != 0 && (wants_colours(STDOUT_FILENO) || (with_pager && !pager_command().empty()));
}

int terminal_show(const std::function<int()> &body, bool with_pager) {
    const bool colours = wants_colours(STDOUT_FILENO);
    const bool error_colours = wants_colours(STDERR_FILENO);
    const std::string command = with_pager ? pager_command() : "";
    pager paged;
    if (!command.empty()) {
        static_cast<void>(paged.start(command));  // without it, output goes to the terminal
    }
    line_painter output(STDOUT_FILENO, colours, false);
    line_painter errors(STDERR_FILENO, error_colours, true);
    bool is_read = true;
    int status = run_in_child(
        body,
        [&](stream from, std::string_view bytes) {
            is_read = is_read && (from == stream::output ? output.take(bytes) : errors.take(bytes));
            return is_read;
        },
        ::isatty(STDERR_FILENO) != 0 || !command.empty());
    if (!is_read || !output.finish() || !errors.finish()) {
        status = 0;
    }
    paged.finish();
    return status;
}

}  // namespace perf_measure
