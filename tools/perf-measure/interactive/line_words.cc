// SPDX-License-Identifier: Apache-2.0
// Words, quotes and backslashes.
#include "perf-measure/interactive/line_words.h"

namespace perf_measure {

line_words split_line(std::string_view line) {
    line_words result;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char letter = line[at];
        if (result.quote == '\0' && (letter == ' ' || letter == '\t')) {
            if (result.in_word) {
                result.words.push_back(result.last);
                result.last.clear();
                result.in_word = false;
            }
            continue;
        }
        result.in_word = true;
        if (letter == '\\' && result.quote != '\'' && at + 1 < line.size()) {
            result.last += line[++at];
        } else if (letter == result.quote) {
            result.quote = '\0';
        } else if (result.quote == '\0' && (letter == '\'' || letter == '"')) {
            result.quote = letter;
        } else {
            result.last += letter;
        }
    }
    return result;
}

std::string typed(std::string_view word) {
    std::string result;
    for (const char letter : word) {
        const bool is_special = letter == ' ' || letter == '\t' || letter == '\'' || letter == '"' || letter == '\\';
        result += is_special ? "\\" : "";
        result += letter;
    }
    return result;
}

}  // namespace perf_measure
