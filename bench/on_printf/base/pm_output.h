// SPDX-License-Identifier: Apache-2.0
// The program's output routines on the C library's printf, for the benchmark's peer of perf-show. The build of that
// peer finds this header where all others find infra/perf-measure/src/base/pm_output.h.
#pragma once

#include <cstddef>
#include <cstdio>
#include <utility>

#include "base/pm_format.h"

namespace pm_printf_detail {

// The conversion that takes the argument of that index.
template <pm_format_literal Format>
consteval pm_format_detail::segment conversion_of(std::size_t index) {
    const auto &format = pm_format_detail::PARSED_FORMAT<Format>;
    std::size_t found = 0;
    for (std::size_t i = 0; i < format.count; ++i) {
        if (format.segments[i].conversion != 0 && format.segments[i].argument <= index) {
            found = i;
        }
    }
    return format.segments[found];
}

// An argument in the type that printf takes at its place.
template <pm_format_literal Format, std::size_t Index, class Argument>
auto promoted(Argument argument) {
    using pm_format_detail::ARGUMENT;
    constexpr pm_format_detail::segment Segment = conversion_of<Format>(Index);
    constexpr std::size_t value =
        Segment.argument + (Segment.width == ARGUMENT ? 1 : 0) + (Segment.precision == ARGUMENT ? 1 : 0);
    if constexpr (Index != value) {
        return static_cast<int>(argument);
    } else if constexpr (Segment.conversion == 's') {
        return static_cast<const char *>(argument);
    } else if constexpr (Segment.is_long) {
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

template <pm_format_literal Format, class... Arguments>
void pm_print(Arguments... arguments) {
    pm_printf_detail::call<Format>([](const char *format, auto... values) { std::printf(format, values...); },
                                   arguments...);
}

template <pm_format_literal Format, std::size_t Longest, class... Arguments>
void pm_print_cut(int indent, Arguments... arguments) {
    char line[Longest + 1];
    pm_printf_detail::call<Format>(
        [&](const char *format, auto... values) { std::snprintf(line, sizeof line, format, values...); }, arguments...);
    std::printf("%*s%s", indent, "", line);
}

void pm_output_flush();

// Called by the platform too, which knows the other header only.
void pm_output_error(const char *message, std::size_t length);

template <pm_format_literal Format, class... Arguments>
void pm_print_error(Arguments... arguments) {
    pm_output_flush();
    pm_printf_detail::call<Format>([](const char *format, auto... values) { std::fprintf(stderr, format, values...); },
                                   arguments...);
}
