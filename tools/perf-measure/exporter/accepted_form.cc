// SPDX-License-Identifier: Apache-2.0
// The media ranges of an Accept header and their weights (RFC 9110).
#include "perf-measure/exporter/accepted_form.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

namespace exporter {

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
        text.remove_prefix(1);
    }
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    return text;
}

// Takes what is before the next separator off the text.
std::string_view take_part(std::string_view *text, char separator) {
    const std::size_t end = std::min(text->find(separator), text->size());
    const std::string_view part = trimmed(text->substr(0, end));
    text->remove_prefix(std::min(end + 1, text->size()));
    return part;
}

bool same_word(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right,
                              [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

// The largest weight that the header gives to a media type; 0 when it does not name it.
double weight_of(std::string_view accept, std::string_view type) {
    double best = 0;
    while (!accept.empty()) {
        std::string_view range = take_part(&accept, ',');
        if (!same_word(take_part(&range, ';'), type)) {
            continue;
        }
        double weight = 1;
        while (!range.empty()) {
            const std::string_view parameter = take_part(&range, ';');
            if (parameter.starts_with("q=") || parameter.starts_with("Q=")) {
                weight = std::atof(std::string(parameter.substr(2)).c_str());
            }
        }
        best = std::max(best, weight);
    }
    return best;
}

}  // namespace

bool wants_openmetrics(std::string_view accept) {
    const double weight = weight_of(accept, "application/openmetrics-text");
    return weight > 0 && weight >= weight_of(accept, "text/plain");
}

}  // namespace exporter
