// SPDX-License-Identifier: Apache-2.0
// Packets written by hand as hexadecimal text.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Blanks and line ends are passed over.
inline std::vector<std::uint8_t> from_hex(std::string_view text) {
    std::vector<std::uint8_t> octets;
    int high = -1;
    for (const char letter : text) {
        const int digit = letter >= '0' && letter <= '9'   ? letter - '0'
                          : letter >= 'a' && letter <= 'f' ? letter - 'a' + 10
                                                           : -1;
        if (digit < 0) {
            continue;
        }
        if (high < 0) {
            high = digit;
        } else {
            octets.push_back(static_cast<std::uint8_t>(high * 16 + digit));
            high = -1;
        }
    }
    return octets;
}

inline std::string to_hex(std::span<const std::uint8_t> octets) {
    constexpr char DIGITS[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t octet : octets) {
        text += DIGITS[octet >> 4];
        text += DIGITS[octet & 15];
    }
    return text;
}
