// SPDX-License-Identifier: Apache-2.0
// Comparing two texts, and drawing a line with what has changed.
#include "perf-measure/terminal/changes.h"

#include <algorithm>
#include <cstddef>

#include "perf-measure/terminal/colours.h"

namespace perf_measure {

namespace {

constexpr char REVERSE[] = "\033[7m";

// The characters of a UTF-8 text; a control character counts as one and is drawn as '?'.
std::vector<std::string_view> characters_of(std::string_view text) {
    std::vector<std::string_view> characters;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t end = at + 1;
        while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
            ++end;
        }
        characters.push_back(text.substr(at, end - at));
        at = end;
    }
    return characters;
}

bool is_control(std::string_view character) {
    return static_cast<unsigned char>(character.front()) < ' ' || character.front() == '\x7F';
}

// How a character is drawn.
struct style {
    bool changed = false;
    bool alarm = false;
    bool operator==(const style &) const = default;
};

void append_style(const style &wanted, std::string *out) {
    *out += PLAIN;
    *out += wanted.alarm ? RED : "";
    *out += wanted.changed ? REVERSE : "";
}

}  // namespace

std::vector<std::string_view> lines_of(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.push_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::vector<std::size_t> counterparts(const std::vector<std::string_view> &before,
                                      const std::vector<std::string_view> &now) {
    std::vector<std::size_t> result(now.size(), NO_LINE);
    const std::size_t shorter = std::min(before.size(), now.size());
    std::size_t head = 0;
    while (head < shorter && before[head] == now[head]) {
        result[head] = head;
        ++head;
    }
    std::size_t tail = 0;
    while (tail < shorter - head && before[before.size() - 1 - tail] == now[now.size() - 1 - tail]) {
        ++tail;
        result[now.size() - tail] = before.size() - tail;
    }
    for (std::size_t i = head; i + tail < now.size() && i + tail < before.size(); ++i) {
        result[i] = i;
    }
    return result;
}

void append_marked(std::string_view line, const std::string_view *counterpart, std::size_t first, std::size_t columns,
                   bool colours, std::string *out) {
    const std::vector<std::string_view> now = characters_of(line);
    const std::vector<std::string_view> before =
        characters_of(counterpart != nullptr ? *counterpart : std::string_view());
    const std::vector<text_range> alarms = colours ? alarms_in(line) : std::vector<text_range>();
    style current;
    for (std::size_t i = first; i < now.size() && i < first + columns; ++i) {
        const auto at = static_cast<std::size_t>(now[i].data() - line.data());
        const style wanted = {
            .changed = i >= before.size() || before[i] != now[i],
            .alarm = std::ranges::any_of(alarms,
                                         [at](const text_range &range) { return at >= range.begin && at < range.end; }),
        };
        if (wanted != current) {
            append_style(wanted, out);
            current = wanted;
        }
        *out += is_control(now[i]) ? "?" : now[i];
    }
    if (current != style{}) {
        append_style({}, out);
    }
}

}  // namespace perf_measure
