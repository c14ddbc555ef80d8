// SPDX-License-Identifier: Apache-2.0
// JSON as text.
#include "perf-measure/json/json_text.h"

#include "perf-store/datasets/value_text.h"

namespace perf_measure {

namespace {

constexpr std::size_t INDENT = 2;

void append_line_break(std::size_t depth, std::string *out) {
    *out += '\n';
    out->append(depth * INDENT, ' ');
}

// The end of the string that begins at `at`.
std::size_t end_of_string(std::string_view text, std::size_t at) {
    for (++at; text[at] != '"'; ++at) {
        at += text[at] == '\\' ? 1 : 0;
    }
    return at + 1;
}

}  // namespace

void append_json_number(std::uint64_t value, std::string *out) {
    const bool as_text = value > perf_store::LARGEST_JSON_NUMBER;
    *out += as_text ? "\"" : "";
    *out += std::to_string(value);
    *out += as_text ? "\"" : "";
}

void append_json_any_text(std::string_view text, std::string *out) {
    if (perf_store::append_json_text(text, out)) {
        return;
    }
    static_cast<void>(perf_store::append_json_text(perf_store::as_utf8(text), out));
}

std::string indented_json(std::string_view compact) {
    std::string out;
    std::size_t depth = 0;
    for (std::size_t at = 0; at < compact.size();) {
        const char letter = compact[at];
        if (letter == '"') {
            const std::size_t end = end_of_string(compact, at);
            out += compact.substr(at, end - at);
            at = end;
            continue;
        }
        const bool opens = letter == '{' || letter == '[';
        const bool closes = letter == '}' || letter == ']';
        const bool is_empty = opens && (compact[at + 1] == '}' || compact[at + 1] == ']');
        if (is_empty) {
            out += compact.substr(at, 2);
            at += 2;
            continue;
        }
        depth += opens ? 1 : 0;
        depth -= closes ? 1 : 0;
        if (closes) {
            append_line_break(depth, &out);
        }
        out += letter;
        out += letter == ':' ? " " : "";
        if (opens || letter == ',') {
            append_line_break(depth, &out);
        }
        ++at;
    }
    return out + '\n';
}

}  // namespace perf_measure
