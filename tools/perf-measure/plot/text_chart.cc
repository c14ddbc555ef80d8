// SPDX-License-Identifier: Apache-2.0
// Drawing with characters.
#include "perf-measure/plot/text_chart.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "perf-measure/plot/scale.h"

namespace perf_measure {

namespace {

constexpr std::size_t ROWS = 16;
constexpr std::size_t LABEL_COLUMNS = 10;  // of the numbers beside the axis
constexpr std::size_t MARGIN = LABEL_COLUMNS + 2;
constexpr std::size_t TIME_COLUMNS = 19;  // of a time text
constexpr char RED_TEXT[] = "\033[31m";
constexpr char PLAIN_TEXT[] = "\033[0m";

// What a cell of the chart shows, the more important the later.
enum class mark : unsigned char { none, line, range, minimum, maximum, average };

struct characters {
    std::string_view line;
    std::string_view range;
    std::string_view minimum;
    std::string_view maximum;
    std::string_view average;
    std::string_view axis;
    std::string_view tick;
    std::string_view floor;
    std::string_view corner;
    std::string_view lost;
    std::string_view micro;
};

constexpr characters UNICODE = {"·", "│", "┴", "┬", "●", "│", "┤", "─", "└", "✗", "µs"};
constexpr characters ASCII = {".", "|", "-", "-", "*", "|", "+", "-", "+", "x", "us"};

std::string_view character_of(mark cell, const characters &drawn) {
    switch (cell) {
    case mark::none: break;
    case mark::line: return drawn.line;
    case mark::range: return drawn.range;
    case mark::minimum: return drawn.minimum;
    case mark::maximum: return drawn.maximum;
    case mark::average: return drawn.average;
    }
    return " ";
}

// What falls into one column.
struct column {
    bool has_delay = false;
    bool has_loss = false;
    std::uint32_t minimum = 0;
    std::uint32_t maximum = 0;
    std::uint64_t sum = 0;  // of averages
    std::uint64_t samples = 0;

    [[nodiscard]] std::uint64_t average() const { return sum / samples; }
};

std::vector<column> columns_of(const series &drawn, const summary &whole, std::size_t width) {
    std::vector<column> columns(width);
    for (const sample &each : drawn.samples) {
        const double at = position(each.time_msec, whole.first_msec, whole.last_msec, static_cast<double>(width - 1));
        column &into = columns[static_cast<std::size_t>(std::lround(at))];
        into.has_loss = into.has_loss || each.lost() > 0;
        if (each.has_delay) {
            into.minimum = into.has_delay ? std::min(into.minimum, each.minimum) : each.minimum;
            into.maximum = std::max(into.maximum, each.maximum);
            into.sum += each.average;
            ++into.samples;
            into.has_delay = true;
        }
    }
    return columns;
}

class canvas {
public:
    canvas(std::size_t width, std::uint64_t bottom, std::uint64_t top)
        : width_(width), bottom_(bottom), top_(top), cells_(width * ROWS, mark::none) {}

    // The row of a value, 0 at the bottom.
    [[nodiscard]] std::size_t row_of(std::uint64_t value) const {
        return static_cast<std::size_t>(std::lround(position(value, bottom_, top_, ROWS - 1)));
    }

    void put(std::size_t x, std::size_t row, mark what) {
        mark &cell = cells_[row * width_ + x];
        cell = std::max(cell, what);
    }

    [[nodiscard]] mark at(std::size_t x, std::size_t row) const { return cells_[row * width_ + x]; }

    void draw(std::size_t x, const column &values) {
        const std::size_t low = row_of(values.minimum);
        const std::size_t high = row_of(values.maximum);
        for (std::size_t row = low; row <= high; ++row) {
            put(x, row, mark::range);
        }
        put(x, low, mark::minimum);
        put(x, high, mark::maximum);
        put(x, row_of(values.average()), mark::average);
    }

    // The averages of two columns joined.
    void join(std::size_t from, std::uint64_t first, std::size_t to, std::uint64_t second) {
        const double rise =
            (static_cast<double>(row_of(second)) - static_cast<double>(row_of(first))) / static_cast<double>(to - from);
        for (std::size_t x = from + 1; x < to; ++x) {
            const double row = static_cast<double>(row_of(first)) + rise * static_cast<double>(x - from);
            put(x, static_cast<std::size_t>(std::lround(row)), mark::line);
        }
    }

private:
    std::size_t width_;
    std::uint64_t bottom_;
    std::uint64_t top_;
    std::vector<mark> cells_;
};

std::string right_aligned(const std::string &text, std::size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

void draw_columns(const std::vector<column> &columns, canvas *picture) {
    std::size_t before = columns.size();  // none
    for (std::size_t x = 0; x < columns.size(); ++x) {
        if (!columns[x].has_delay) {
            continue;
        }
        if (before < columns.size()) {
            picture->join(before, columns[before].average(), x, columns[x].average());
        }
        picture->draw(x, columns[x]);
        before = x;
    }
}

void append_rows(const canvas &picture, std::size_t width, const std::vector<std::uint64_t> &ticks,
                 const characters &drawn, std::string *out) {
    for (std::size_t row = ROWS; row-- > 0;) {
        std::string label;
        for (const std::uint64_t tick : ticks) {
            label = picture.row_of(tick) == row ? std::to_string(tick) : label;
        }
        *out += right_aligned(label, LABEL_COLUMNS) + ' ';
        *out += label.empty() ? drawn.axis : drawn.tick;
        std::string line;
        std::size_t used = 0;  // of the line, without the blanks at its end
        for (std::size_t x = 0; x < width; ++x) {
            const mark cell = picture.at(x, row);
            line += character_of(cell, drawn);
            used = cell != mark::none ? line.size() : used;
        }
        *out += line.substr(0, used) + '\n';
    }
}

void append_axis(const summary &whole, std::size_t width, const characters &drawn, std::string *out) {
    *out += std::string(LABEL_COLUMNS + 1, ' ');
    *out += drawn.corner;
    for (std::size_t x = 0; x < width; ++x) {
        *out += drawn.floor;
    }
    *out += '\n' + std::string(MARGIN, ' ') + time_text(whole.first_msec);
    if (whole.last_msec > whole.first_msec && width >= 2 * TIME_COLUMNS + 1) {
        *out += std::string(width - 2 * TIME_COLUMNS, ' ') + time_text(whole.last_msec);
    }
    *out += '\n';
}

void append_losses(const std::vector<column> &columns, const characters &drawn, bool colours, std::string *out) {
    if (std::ranges::none_of(columns, &column::has_loss)) {
        return;
    }
    std::string line;
    std::size_t used = 0;
    for (const column &each : columns) {
        line += each.has_loss ? drawn.lost : " ";
        used = each.has_loss ? line.size() : used;
    }
    *out += right_aligned("lost", LABEL_COLUMNS) + "  " + (colours ? RED_TEXT : "") + line.substr(0, used) +
            (colours ? PLAIN_TEXT : "") + '\n';
}

void append_legend(const series &drawn, const summary &whole, const characters &with, std::string *out) {
    *out += "  " + std::string(with.average) + " average, " + std::string(with.minimum) + " minimum, " +
            std::string(with.maximum) + " maximum, in " + std::string(with.micro) + "; " +
            std::to_string(drawn.samples.size()) + (drawn.samples.size() == 1 ? " sample" : " samples");
    if (whole.sent > 0) {
        *out += "; " + std::to_string(whole.lost) + " of " + std::to_string(whole.sent) + " packets lost";
    }
    *out += '\n';
}

}  // namespace

void append_text_chart(const series &drawn, const std::string &what, const text_chart_style &style, std::string *out) {
    *out += drawn.title + ": delay, " + what + '\n';
    if (drawn.samples.empty()) {
        *out += "  no samples\n";
        return;
    }
    const characters &with = style.ascii ? ASCII : UNICODE;
    const std::size_t width = std::max(style.columns, SMALLEST_CHART) - MARGIN;
    const summary whole = summarize(drawn);
    const std::vector<column> columns = columns_of(drawn, whole, width);
    const std::vector<std::uint64_t> ticks = ticks_between(whole.lowest, whole.highest, MOST_TICKS);
    canvas picture(width, ticks.front(), ticks.back());
    draw_columns(columns, &picture);
    append_rows(picture, width, ticks, with, out);
    append_axis(whole, width, with, out);
    append_losses(columns, with, style.colours, out);
    append_legend(drawn, whole, with, out);
}

}  // namespace perf_measure
