// SPDX-License-Identifier: Apache-2.0
// Values and labels of metrics as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace perf_measure {

// A value's text; empty for one that is absent, of which nothing is written.
class metric_value {
public:
    metric_value() = default;  // absent

    [[nodiscard]] static metric_value of_number(std::uint64_t number);
    [[nodiscard]] static metric_value of_flag(bool flag);
    // In seconds: of microseconds, and of a moment in milliseconds since the epoch, where 0 is absent.
    [[nodiscard]] static metric_value of_microseconds(std::uint32_t microseconds);
    [[nodiscard]] static metric_value of_moment(std::uint64_t milliseconds);
    // The part of `sent` that is not in `received`; absent when nothing was sent.
    [[nodiscard]] static metric_value of_loss(std::uint64_t sent, std::uint64_t received);

    [[nodiscard]] std::string_view text() const { return {text_, length_}; }

private:
    static constexpr std::size_t LONGEST = 31;
    char text_[LONGEST];
    std::uint8_t length_ = 0;
};

// Appends a label's value: a backslash, a quotation mark and a line break are escaped, and what is not UTF-8 becomes
// the replacement character U+FFFD.
void append_label_value(std::string_view value, std::string *out);

// Appends NAME="VALUE" and a comma where others are before it. Nothing for an empty value, which means the same as no
// label.
void append_label(std::string_view name, std::string_view value, std::string *out);

}  // namespace perf_measure
