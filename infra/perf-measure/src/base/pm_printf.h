// The formats printed with the C library, which the benchmarks compare with. A build with PM_WITH_PRINTF prints
// all of standard output this way.
#pragma once

#include <cstdio>
#include <utility>

#include "base/pm_format.h"

#ifdef PM_WITH_PRINTF
inline constexpr bool pm_prints_with_printf = true;
#else
inline constexpr bool pm_prints_with_printf = false;
#endif

namespace pm_printf_detail {

// The conversion that takes the argument of that index.
template <pm_format_literal Format>
consteval pm_format_detail::piece conversion_of(std::size_t index) {
    const auto &parsed = pm_format_detail::parsed_format<Format>;
    std::size_t found = 0;
    for (std::size_t i = 0; i < parsed.count; ++i) {
        if (parsed.pieces[i].conversion != 0 && parsed.pieces[i].argument <= index) {
            found = i;
        }
    }
    return parsed.pieces[found];
}

// An argument in the type that printf takes at its place.
template <pm_format_literal Format, std::size_t Index, class Argument>
auto promoted(Argument argument) {
    using pm_format_detail::ARGUMENT;
    constexpr pm_format_detail::piece Piece = conversion_of<Format>(Index);
    constexpr std::size_t value =
        Piece.argument + (Piece.width == ARGUMENT ? 1 : 0) + (Piece.precision == ARGUMENT ? 1 : 0);
    if constexpr (Index != value) {
        return static_cast<int>(argument);
    } else if constexpr (Piece.conversion == 's') {
        return static_cast<const char *>(argument);
    } else if constexpr (Piece.is_long) {
        return static_cast<unsigned long long>(argument);
    } else {
        return static_cast<unsigned>(argument);
    }
}

// Calls `print` with the format and the promoted arguments.
template <pm_format_literal Format, class Print, class... Arguments>
void call(Print print, Arguments... arguments) {
    [&]<std::size_t... Index>(std::index_sequence<Index...>) {
        print(Format.text, promoted<Format, Index>(arguments)...);
    }
    (std::index_sequence_for<Arguments...>{});
}

}  // namespace pm_printf_detail

// Prints to standard output.
template <pm_format_literal Format, class... Arguments>
void pm_printf(Arguments... arguments) {
    pm_printf_detail::call<Format>([](const char *format, auto... values) { std::printf(format, values...); },
                                   arguments...);
}

// Formats into a buffer, like std::snprintf.
template <pm_format_literal Format, class... Arguments>
void pm_snprintf_text(char *buffer, std::size_t size, Arguments... arguments) {
    pm_printf_detail::call<Format>(
        [&](const char *format, auto... values) { std::snprintf(buffer, size, format, values...); }, arguments...);
}
