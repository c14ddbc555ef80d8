// SPDX-License-Identifier: Apache-2.0
// Numbers in base units, without the detour over floating point where the record has an integer.
#include "perf-measure/metrics/metric_value.h"

#include <algorithm>
#include <charconv>

#include "perf-store/datasets/value_text.h"

namespace perf_measure {

namespace {

// Writes `number` / 10^`digits` with no needless zero at its end; the end of what was written.
char *write_fraction(std::uint64_t number, unsigned digits, char *at, char *end) {
    std::uint64_t scale = 1;
    for (unsigned i = 0; i < digits; ++i) {
        scale *= 10;
    }
    at = std::to_chars(at, end, number / scale).ptr;
    std::uint64_t rest = number % scale;
    if (rest == 0) {
        return at;
    }
    *at++ = '.';
    for (; rest != 0; rest = rest * 10 % scale) {
        *at++ = static_cast<char>('0' + rest * 10 / scale);
    }
    return at;
}

bool is_plain(char letter) { return letter >= ' ' && letter <= '~' && letter != '"' && letter != '\\'; }

}  // namespace

metric_value metric_value::of_number(std::uint64_t number) {
    metric_value value;
    value.length_ =
        static_cast<std::uint8_t>(std::to_chars(value.text_, value.text_ + LONGEST, number).ptr - value.text_);
    return value;
}

metric_value metric_value::of_flag(bool flag) { return of_number(flag ? 1 : 0); }

metric_value metric_value::of_microseconds(std::uint32_t microseconds) {
    metric_value value;
    value.length_ =
        static_cast<std::uint8_t>(write_fraction(microseconds, 6, value.text_, value.text_ + LONGEST) - value.text_);
    return value;
}

metric_value metric_value::of_moment(std::uint64_t milliseconds) {
    metric_value value;
    if (milliseconds != 0) {
        value.length_ = static_cast<std::uint8_t>(write_fraction(milliseconds, 3, value.text_, value.text_ + LONGEST) -
                                                  value.text_);
    }
    return value;
}

metric_value metric_value::of_loss(std::uint64_t sent, std::uint64_t received) {
    metric_value value;
    if (sent == 0) {
        return value;
    }
    // More than was sent comes back where packets are doubled on their way.
    const std::uint64_t lost = sent > received ? sent - received : 0;
    const double ratio = static_cast<double>(lost) / static_cast<double>(sent);
    value.length_ =
        static_cast<std::uint8_t>(std::to_chars(value.text_, value.text_ + LONGEST, ratio).ptr - value.text_);
    return value;
}

void append_label_value(std::string_view value, std::string *out) {
    if (std::ranges::all_of(value, is_plain)) {
        *out += value;
        return;
    }
    const std::string valid = perf_store::as_utf8(value);
    for (const char letter : valid) {
        switch (letter) {
        case '\\': *out += "\\\\"; break;
        case '"': *out += "\\\""; break;
        case '\n': *out += "\\n"; break;
        default: *out += letter;
        }
    }
}

void append_label(std::string_view name, std::string_view value, std::string *out) {
    if (value.empty()) {
        return;
    }
    *out += out->empty() ? "" : ",";
    *out += name;
    *out += "=\"";
    append_label_value(value, out);
    *out += '"';
}

}  // namespace perf_measure
