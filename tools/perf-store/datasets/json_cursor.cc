// SPDX-License-Identifier: Apache-2.0
// Strings and numbers.
#include "perf-store/datasets/json_cursor.h"

#include <array>

#include "perf-store/datasets/value_text.h"

namespace perf_store {

namespace {

// What a byte of a string is to its reader.
enum class in_string : std::uint8_t { stop, ascii, other };

constexpr std::array<in_string, 256> make_classes() {
    std::array<in_string, 256> classes{};  // control characters end the reading
    for (std::size_t i = ' '; i < classes.size(); ++i) {
        classes[i] = i < 0x80 ? in_string::ascii : in_string::other;
    }
    classes['"'] = classes['\\'] = in_string::stop;
    return classes;
}

constexpr std::array<in_string, 256> CLASSES = make_classes();

in_string class_of(char c) { return CLASSES[static_cast<unsigned char>(c)]; }

constexpr std::ptrdiff_t SAFE_DIGITS = 18;  // that no sum of digits passes 64 bits

unsigned digit_of(char c) { return static_cast<unsigned char>(c - '0'); }

}  // namespace

bool json_cursor::take_text(std::string_view *text) {
    if (!take('"')) {
        return false;
    }
    const char *const begin = at_;
    bool plain = true;
    for (in_string what{}; (what = class_of(*at_)) != in_string::stop; ++at_) {
        plain = plain && what == in_string::ascii;
    }
    *text = {begin, static_cast<std::size_t>(at_ - begin)};
    return take_bytes("\"") && (plain || is_utf8(*text));
}

bool json_cursor::take_integer(std::uint64_t *value, bool *negative) {
    if (next() == '"') {
        std::string_view text;
        return take_text(&text) && parse_integer(text, value, negative) == number_result::ok;
    }
    const char *const begin = at_;
    at_ += *at_ == '-' ? 1 : 0;
    const char *const digits = at_;
    std::uint64_t number = 0;
    for (; digit_of(*at_) <= 9; ++at_) {
        number = number * 10 + digit_of(*at_);
    }
    const std::ptrdiff_t count = at_ - digits;
    if (count == 0 || (*digits == '0' && count > 1)) {
        return false;
    }
    if (digits == begin && count <= SAFE_DIGITS) {
        *value = number;
        *negative = false;
        return true;
    }
    const std::string_view token(begin, static_cast<std::size_t>(at_ - begin));
    return parse_integer(token, value, negative) == number_result::ok;
}

}  // namespace perf_store
