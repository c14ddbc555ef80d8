// SPDX-License-Identifier: Apache-2.0
// The terminal as a whole screen: keys without echo, and a picture of its own that leaves no trace.
#pragma once

#include <cstddef>
#include <string_view>
#include <termios.h>

namespace perf_measure {

struct screen_size {
    std::size_t rows;
    std::size_t columns;
};

// Of the terminal at a descriptor; COLUMNS and LINES, else 24 by 80, where it does not say.
[[nodiscard]] screen_size size_of_terminal(int descriptor);

// Takes the terminal over while it lives and gives it back as it was.
class screen {
public:
    screen();
    ~screen();
    screen(const screen &) = delete;
    screen &operator=(const screen &) = delete;

    // False when the terminal takes no more.
    [[nodiscard]] bool draw(std::string_view text);

private:
    termios before_{};
    bool has_keys_ = false;
};

}  // namespace perf_measure
