// SPDX-License-Identifier: Apache-2.0
// The value of a hexadecimal digit, whatever the locale.
#pragma once

// -1 for anything else; upper and lower case are the same.
[[nodiscard]] constexpr int pm_hex_digit(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}
