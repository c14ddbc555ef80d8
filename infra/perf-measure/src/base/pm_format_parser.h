// SPDX-License-Identifier: Apache-2.0
// Taking printf formats apart at compile time. pm_format.h says which formats there are.
//
// A format is a template argument. One that cannot be understood does not compile: the compiler's message names
// the routine of pm_format_error that says why.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

// A format literal as a template argument.
template <std::size_t Size>
struct pm_format_literal {
    char text[Size]{};

    consteval pm_format_literal(const char (&literal)[Size]) { std::copy_n(literal, Size, text); }
    [[nodiscard]] static constexpr std::size_t length() { return Size - 1; }
};

// What can be wrong with a format. None of them is defined: a call cannot be evaluated at compile time, so the
// compiler shows its name.
namespace pm_format_error {

void unknown_conversion();
void a_text_takes_no_length_modifier_and_no_zero_flag();
void a_number_takes_no_precision();

}  // namespace pm_format_error

namespace pm_format_detail {

inline constexpr int NONE = -1;      // no width or precision
inline constexpr int ARGUMENT = -2;  // '*': taken from the arguments

// One segment of a format: a run of literal text or one conversion.
struct segment {
    char conversion = 0;  // 0: literal text
    bool is_long = false;
    bool left = false;
    bool zero = false;
    int width = NONE;
    int precision = NONE;
    std::size_t begin = 0;  // literal text: its place in the format
    std::size_t length = 0;
    std::size_t argument = 0;  // index of the first argument that the conversion takes
};

// A format taken apart. `arguments` is how many it takes.
template <std::size_t Capacity>
struct parsed {
    std::array<segment, Capacity> segments{};
    std::size_t count = 0;
    std::size_t arguments = 0;
};

// Reads a format from its first character to its last; used at compile time only.
struct parser {
    const char *text;
    std::size_t length;
    std::size_t at = 0;
    std::size_t arguments = 0;  // taken so far

    consteval segment next() { return text[at] != '%' || text[at + 1] == '%' ? literal() : conversion(); }

private:
    consteval segment literal() {
        segment result;
        result.begin = at;
        if (text[at] == '%') {  // "%%" means its first character
            result.length = 1;
            at += 2;
        } else {
            while (at < length && text[at] != '%') {
                ++at;
            }
            result.length = at - result.begin;
        }
        return result;
    }

    consteval segment conversion() {
        segment result;
        result.argument = arguments;
        for (++at; text[at] == '-' || text[at] == '0'; ++at) {
            (text[at] == '-' ? result.left : result.zero) = true;
        }
        result.width = number(NONE);
        if (text[at] == '.') {
            ++at;
            result.precision = number(0);
        }
        for (; text[at] == 'l'; ++at) {
            result.is_long = true;
        }
        result.conversion = text[at++];
        ++arguments;
        check(result);
        return result;
    }

    // A width or a precision.
    consteval int number(int absent) {
        if (text[at] == '*') {
            ++at;
            ++arguments;
            return ARGUMENT;
        }
        int value = absent;
        for (; text[at] >= '0' && text[at] <= '9'; ++at) {
            value = std::max(value, 0) * 10 + (text[at] - '0');
        }
        return value;
    }

    static consteval void check(const segment &conversion) {
        switch (conversion.conversion) {
        case 's':
        case 'c':
            if (conversion.is_long || conversion.zero) {
                pm_format_error::a_text_takes_no_length_modifier_and_no_zero_flag();
            }
            break;
        case 'd':
        case 'u':
        case 'x':
            if (conversion.precision != NONE) {
                pm_format_error::a_number_takes_no_precision();
            }
            break;
        default: pm_format_error::unknown_conversion();
        }
    }
};

template <pm_format_literal Format>
consteval auto parse() {
    parsed<Format.length() + 1> result{};
    parser reader{Format.text, Format.length()};
    while (reader.at < reader.length) {
        result.segments[result.count++] = reader.next();
    }
    result.arguments = reader.arguments;
    return result;
}

template <pm_format_literal Format>
inline constexpr auto PARSED_FORMAT = parse<Format>();

}  // namespace pm_format_detail
