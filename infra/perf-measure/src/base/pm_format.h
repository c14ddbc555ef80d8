// SPDX-License-Identifier: Apache-2.0
// Formatting with printf formats that are checked and taken apart at compile time.
//
// A format is a template argument: pm_format_text<"%-34s: %u\n">(buffer, size, label, value). The
// conversions are those the displays need, with printf's meaning: %s %c %d %u %x (32 bits of the
// argument), %ld %lu %lx %llu (64 bits), %%; flags '-' and '0'; width and precision as a number or
// '*'. Anything else, or arguments of the wrong number or kind, does not compile, and the compiler
// says why. A text is a const char * or, where its length is known, a pm_text. A null text prints "(null)". Nothing is
// allocated.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>

#include "base/pm_format_parser.h"
#include "base/pm_text.h"

namespace pm_format_detail {

inline constexpr std::size_t MAX_DIGITS = 20;  // of a 64-bit number, its sign included

inline constexpr auto DIGIT_PAIRS = [] {
    std::array<char, 200> pairs{};
    for (std::size_t number = 0; number < 100; ++number) {
        pairs[2 * number] = static_cast<char>('0' + number / 10);
        pairs[2 * number + 1] = static_cast<char>('0' + number % 10);
    }
    return pairs;
}();

// Writes the digits of `value` so that they end before `end`; returns where they begin.
template <class Unsigned>
inline char *write_decimal(char *end, Unsigned value) {
    while (value >= 100) {
        end -= 2;
        std::memcpy(end, &DIGIT_PAIRS[static_cast<std::size_t>(value % 100) * 2], 2);
        value /= 100;
    }
    if (value >= 10) {
        end -= 2;
        std::memcpy(end, &DIGIT_PAIRS[static_cast<std::size_t>(value) * 2], 2);
        return end;
    }
    *--end = static_cast<char>('0' + value);
    return end;
}

template <class Unsigned>
inline char *write_hexadecimal(char *end, Unsigned value) {
    do {
        *--end = "0123456789abcdef"[value & 0xF];
        value >>= 4;
    } while (value != 0);
    return end;
}

// One conversion with its argument, reduced to the bytes to print and the padding around them.
struct field {
    const char *bytes;
    std::size_t length;
    std::size_t blanks_before;
    std::size_t zeros_before;  // after the sign
    std::size_t blanks_after;
    bool negative;
    std::array<char, MAX_DIGITS> digits;
};

template <segment Segment, class Argument>
inline void convert(field &out, Argument argument, int precision) {
    out.negative = false;
    if constexpr (std::is_same_v<Argument, pm_text>) {
        static_assert(Segment.conversion == 's' && Segment.precision == NONE, "a text is printed by a plain %s");
        out.bytes = argument.bytes;
        out.length = argument.length;
    } else if constexpr (Segment.conversion == 's') {
        static_assert(std::is_convertible_v<Argument, const char *>, "%s takes a text");
        const char *text = argument;
        if (text == nullptr) {  // as the C library: a precision too small for the word prints nothing
            text = precision >= 0 && precision < 6 ? "" : "(null)";
        }
        out.bytes = text;
        out.length = std::strlen(text);
        if (precision >= 0) {
            out.length = std::min(out.length, static_cast<std::size_t>(precision));
        }
    } else {
        static_assert(std::is_integral_v<Argument> || std::is_enum_v<Argument>, "a number conversion takes a number");
        const auto value = static_cast<std::uint64_t>(argument);
        char *end = out.digits.data() + out.digits.size();
        char *begin = end;
        if constexpr (Segment.conversion == 'c') {
            *--begin = static_cast<char>(value);
        } else if constexpr (Segment.conversion == 'x') {
            begin = Segment.is_long ? write_hexadecimal(end, value)
                                    : write_hexadecimal(end, static_cast<std::uint32_t>(value));
        } else if constexpr (Segment.conversion == 'd') {
            const auto number = Segment.is_long ? static_cast<std::int64_t>(value)
                                                : static_cast<std::int64_t>(static_cast<std::int32_t>(value));
            out.negative = number < 0;
            begin = write_decimal(
                end, number < 0 ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number));
        } else {
            begin = Segment.is_long ? write_decimal(end, value) : write_decimal(end, static_cast<std::uint32_t>(value));
        }
        out.bytes = begin;
        out.length = static_cast<std::size_t>(end - begin);
    }
}

// Pads a converted field to its width; returns how many bytes it prints in all.
template <segment Segment>
inline std::size_t pad(field &out, int width) {
    bool left = Segment.left;
    std::size_t columns = 0;
    if constexpr (Segment.width == ARGUMENT) {
        left = left || width < 0;  // a negative width from the arguments means the '-' flag
        columns = static_cast<std::size_t>(width < 0 ? -static_cast<std::int64_t>(width) : width);
    } else if constexpr (Segment.width != NONE) {
        columns = static_cast<std::size_t>(Segment.width);
    }
    const std::size_t used = out.length + (out.negative ? 1 : 0);
    const std::size_t padding = columns > used ? columns - used : 0;
    const bool zeros = Segment.zero && !left;
    out.blanks_before = left || zeros ? 0 : padding;
    out.zeros_before = zeros ? padding : 0;
    out.blanks_after = left ? padding : 0;
    return used + padding;
}

// What a format prints of given arguments: its conversions, and the bytes in all.
template <pm_format_literal Format>
struct prepared {
    std::array<field, PARSED_FORMAT<Format>.count> fields;
    std::size_t size;
};

template <pm_format_literal Format, std::size_t Index, class Arguments>
inline void prepare_segment(prepared<Format> &out, const Arguments &arguments) {
    constexpr segment Segment = PARSED_FORMAT<Format>.segments[Index];
    if constexpr (Segment.conversion == 0) {
        out.size += Segment.length;
    } else {
        constexpr std::size_t after_width = Segment.argument + (Segment.width == ARGUMENT ? 1 : 0);
        constexpr std::size_t after_precision = after_width + (Segment.precision == ARGUMENT ? 1 : 0);
        int width = Segment.width;
        int precision = Segment.precision;
        if constexpr (Segment.width == ARGUMENT) {
            width = static_cast<int>(std::get<Segment.argument>(arguments));
        }
        if constexpr (Segment.precision == ARGUMENT) {
            precision = static_cast<int>(std::get<after_width>(arguments));
        }
        convert<Segment>(out.fields[Index], std::get<after_precision>(arguments), precision);
        out.size += pad<Segment>(out.fields[Index], width);
    }
}

// Converts the arguments. Texts of numbers are kept inside the result, which must not move.
template <pm_format_literal Format, class... Arguments>
inline void prepare(prepared<Format> &out, Arguments... arguments) {
    constexpr auto &format = PARSED_FORMAT<Format>;
    static_assert(format.arguments == sizeof...(Arguments), "the format takes another number of arguments");
    out.size = 0;
    const std::tuple<Arguments...> tuple{arguments...};
    [&]<std::size_t... Index>(std::index_sequence<Index...>) { (prepare_segment<Format, Index>(out, tuple), ...); }
    (std::make_index_sequence<format.count>{});
}

template <pm_format_literal Format, std::size_t Index, class Writer>
inline void write_segment(Writer &writer, const prepared<Format> &text) {
    constexpr segment Segment = PARSED_FORMAT<Format>.segments[Index];
    if constexpr (Segment.conversion == 0) {
        writer.put(Format.text + Segment.begin, Segment.length);
    } else {
        const field &converted = text.fields[Index];
        if constexpr (Segment.width != NONE && !Segment.left) {
            writer.fill(' ', converted.blanks_before);
        }
        if constexpr (Segment.conversion == 'd') {
            writer.fill('-', converted.negative ? 1 : 0);
        }
        if constexpr (Segment.zero) {
            writer.fill('0', converted.zeros_before);
        }
        writer.put(converted.bytes, converted.length);
        if constexpr (Segment.width == ARGUMENT || Segment.left) {
            writer.fill(' ', converted.blanks_after);
        }
    }
}

// Writes a prepared text: to anything with put(bytes, length) and fill(byte, length).
template <pm_format_literal Format, class Writer>
inline void write(Writer &writer, const prepared<Format> &text) {
    [&]<std::size_t... Index>(std::index_sequence<Index...>) { (write_segment<Format, Index>(writer, text), ...); }
    (std::make_index_sequence<PARSED_FORMAT<Format>.count>{});
}

// Copies of the few bytes that most texts have, without a call.
inline void copy_short(char *to, const char *from, std::size_t length) {
    if (length > 32) {
        std::memcpy(to, from, length);
    } else if (length >= 16) {
        std::memcpy(to, from, 16);
        std::memcpy(to + length - 16, from + length - 16, 16);
    } else if (length >= 8) {
        std::memcpy(to, from, 8);
        std::memcpy(to + length - 8, from + length - 8, 8);
    } else if (length >= 4) {
        std::memcpy(to, from, 4);
        std::memcpy(to + length - 4, from + length - 4, 4);
    } else {
        for (std::size_t i = 0; i < length; ++i) {
            to[i] = from[i];
        }
    }
}

}  // namespace pm_format_detail

// Bytes beyond its text that a pm_fast_writer may overwrite.
inline constexpr std::size_t PM_WRITER_SLACK = 64;

// Writes where there is room for the whole text and PM_WRITER_SLACK more.
class pm_fast_writer {
public:
    explicit pm_fast_writer(char *cursor) : cursor_(cursor) {}

    void put(const char *bytes, std::size_t length) {
        pm_format_detail::copy_short(cursor_, bytes, length);
        cursor_ += length;
    }
    void fill(char byte, std::size_t length) {
        std::memset(cursor_, byte, PM_WRITER_SLACK);  // of a fixed size: two or four stores
        if (length > PM_WRITER_SLACK) {
            std::memset(cursor_, byte, length);
        }
        cursor_ += length;
    }
    [[nodiscard]] char *cursor() const { return cursor_; }

private:
    char *cursor_;
};

// Writes into [cursor, end) and cuts what does not fit.
class pm_text_writer {
public:
    pm_text_writer(char *begin, char *end) : cursor_(begin), end_(end) {}

    void put(const char *bytes, std::size_t length) {
        length = std::min(length, room());
        std::memcpy(cursor_, bytes, length);
        cursor_ += length;
    }
    void fill(char byte, std::size_t length) {
        length = std::min(length, room());
        std::memset(cursor_, byte, length);
        cursor_ += length;
    }
    [[nodiscard]] char *cursor() const { return cursor_; }

private:
    [[nodiscard]] std::size_t room() const { return static_cast<std::size_t>(end_ - cursor_); }

    char *cursor_;
    char *end_;
};

// Formats into a writer: anything with put(bytes, length) and fill(byte, length).
template <pm_format_literal Format, class Writer, class... Arguments>
inline void pm_format(Writer &writer, Arguments... arguments) {
    pm_format_detail::prepared<Format> text;
    pm_format_detail::prepare<Format>(text, arguments...);
    pm_format_detail::write<Format>(writer, text);
}

// Formats into a buffer of `size` bytes, at least one, terminator included; a text that does not fit is cut.
// Returns the length of what was written.
template <pm_format_literal Format, class... Arguments>
inline std::size_t pm_format_text(char *buffer, std::size_t size, Arguments... arguments) {
    pm_text_writer writer(buffer, buffer + size - 1);
    pm_format<Format>(writer, arguments...);
    *writer.cursor() = '\0';
    return static_cast<std::size_t>(writer.cursor() - buffer);
}
