// SPDX-License-Identifier: Apache-2.0
// The words that are red.
#include "perf-measure/terminal/colours.h"

#include <algorithm>
#include <cstdlib>
#include <unistd.h>

namespace perf_measure {

namespace {

// How far the red of a word goes.
enum class reach { word, line };

struct alarm {
    std::string_view text;
    reach how_far;
};

constexpr alarm ALARMS[] = {
    {"Down", reach::word},           {"DOWN", reach::word},
    {"Not running", reach::line},    {"PM process is not running", reach::line},
    {"Item not found", reach::line}, {"Store is damaged", reach::word},
};

// Of names too, so that a policy called Down-2 stays as it is.
bool is_part_of_word(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9') ||
           letter == '-' || letter == '_' || letter == '.' || static_cast<unsigned char>(letter) >= 0x80;
}

bool is_whole_word(std::string_view line, std::size_t begin, std::size_t end) {
    return (begin == 0 || !is_part_of_word(line[begin - 1])) && (end == line.size() || !is_part_of_word(line[end]));
}

}  // namespace

std::vector<text_range> alarms_in(std::string_view line) {
    std::vector<text_range> found;
    for (const alarm &each : ALARMS) {
        for (std::size_t at = line.find(each.text); at != std::string_view::npos; at = line.find(each.text, at + 1)) {
            std::size_t end = at + each.text.size();
            if (!is_whole_word(line, at, end)) {
                continue;
            }
            if (each.how_far == reach::line) {
                end = line.find_last_not_of(" \n") + 1;
            }
            found.push_back({at, end});
        }
    }
    std::ranges::sort(found, {}, &text_range::begin);
    std::size_t covered = 0;  // a word within what is red already
    std::erase_if(found, [&](const text_range &range) {
        const bool inside = range.begin < covered;
        covered = std::max(covered, range.end);
        return inside;
    });
    return found;
}

void append_coloured(std::string_view line, std::string *out) {
    std::size_t done = 0;
    for (const text_range &range : alarms_in(line)) {
        *out += line.substr(done, range.begin - done);
        *out += RED;
        *out += line.substr(range.begin, range.end - range.begin);
        *out += PLAIN;
        done = range.end;
    }
    *out += line.substr(done);
}

bool wants_colours(int descriptor) {
    const char *const forbidden = std::getenv("NO_COLOR");
    const char *const terminal = std::getenv("TERM");
    return ::isatty(descriptor) != 0 && (forbidden == nullptr || *forbidden == '\0') && terminal != nullptr &&
           std::string_view(terminal) != "dumb";
}

}  // namespace perf_measure
