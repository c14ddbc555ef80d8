// SPDX-License-Identifier: Apache-2.0
// Addresses, digit by digit.
#include "base/pm_address_text.h"

#include <array>

namespace {

constexpr char DIGITS[] = "0123456789abcdef";
constexpr std::size_t IPV4_OCTETS = 4;
constexpr std::size_t IPV6_WORDS = 8;
constexpr std::size_t MAC_OCTETS = 6;

// A run of zero words.
struct zero_run {
    std::size_t begin = 0;
    std::size_t length = 0;
};

zero_run longest_zero_run(const std::array<std::uint16_t, IPV6_WORDS> &words) {
    zero_run longest;
    for (std::size_t i = 0; i < IPV6_WORDS; ++i) {
        const std::size_t begin = i;
        while (i < IPV6_WORDS && words[i] == 0) {
            ++i;
        }
        if (i - begin > longest.length) {
            longest = {begin, i - begin};
        }
    }
    return longest.length >= 2 ? longest : zero_run{};
}

char *write_octet(char *to, std::uint8_t value) {
    if (value >= 100) {
        *to++ = static_cast<char>('0' + value / 100);
    }
    if (value >= 10) {
        *to++ = static_cast<char>('0' + value / 10 % 10);
    }
    *to++ = static_cast<char>('0' + value % 10);
    return to;
}

// Without leading zeros.
char *write_word(char *to, std::uint16_t word) {
    for (int shift = word >= 0x1000 ? 12 : word >= 0x100 ? 8 : word >= 0x10 ? 4 : 0; shift >= 0; shift -= 4) {
        *to++ = DIGITS[(word >> shift) & 0xF];
    }
    return to;
}

}  // namespace

char *pm_write_ipv4(char *to, const std::uint8_t *octets) {
    to = write_octet(to, octets[0]);
    for (std::size_t i = 1; i < IPV4_OCTETS; ++i) {
        *to++ = '.';
        to = write_octet(to, octets[i]);
    }
    return to;
}

char *pm_write_ipv6(char *to, const std::uint8_t *octets) {
    std::array<std::uint16_t, IPV6_WORDS> words{};
    for (std::size_t i = 0; i < IPV6_WORDS; ++i) {
        words[i] = static_cast<std::uint16_t>(octets[2 * i] << 8 | octets[2 * i + 1]);
    }
    const zero_run zeros = longest_zero_run(words);
    const bool ends_dotted = zeros.begin == 0 && (zeros.length == 6 || (zeros.length == 5 && words[5] == 0xFFFF));
    const std::size_t end = ends_dotted ? IPV6_WORDS - 2 : IPV6_WORDS;
    for (std::size_t i = 0; i < end; ++i) {
        if (i == zeros.begin && zeros.length > 0) {
            *to++ = ':';
            i += zeros.length - 1;
            continue;
        }
        if (i != 0) {
            *to++ = ':';
        }
        to = write_word(to, words[i]);
    }
    if (ends_dotted) {
        *to++ = ':';
        return pm_write_ipv4(to, octets + 2 * end);
    }
    if (zeros.length > 0 && zeros.begin + zeros.length == IPV6_WORDS) {
        *to++ = ':';
    }
    return to;
}

char *pm_write_hexadecimal(char *to, const std::uint8_t *octets, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        *to++ = DIGITS[octets[i] >> 4];
        *to++ = DIGITS[octets[i] & 0xF];
    }
    return to;
}

char *pm_write_mac(char *to, const std::uint8_t *octets) {
    to = pm_write_hexadecimal(to, octets, 1);
    for (std::size_t i = 1; i < MAC_OCTETS; ++i) {
        *to++ = ':';
        to = pm_write_hexadecimal(to, octets + i, 1);
    }
    return to;
}
