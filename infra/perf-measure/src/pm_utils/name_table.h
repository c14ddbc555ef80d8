// SPDX-License-Identifier: Apache-2.0
// Tables of names and the one lookup that reads them. For the files of pm_utils only.
#pragma once

#include <cstddef>
#include <cstdint>

// One row: a value and its text.
struct pm_name {
    std::int32_t value;
    const char *text;
};

// One row of an enumeration that has a short form for the columns of a table.
struct pm_long_and_short_name {
    std::int32_t value;
    const char *text;
    const char *short_text;
};

// The text of `value`, or `fallback` when no row has it. The rows need no order and may leave
// values out. Signed and unsigned 32-bit values both fit the parameter, so no value aliases another.
template <class Row, std::size_t Count>
[[nodiscard]] constexpr const char *pm_name_of(const Row (&rows)[Count], std::int64_t value, const char *fallback,
                                               const char *Row::*text = &Row::text) {
    for (const Row &row : rows) {
        if (row.value == value) {
            return row.*text;
        }
    }
    return fallback;
}
