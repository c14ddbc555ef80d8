// SPDX-License-Identifier: Apache-2.0
// Texts of addresses, without printf: displays and data sets hold many.
//
// Each routine writes at `to`, without a terminator, and returns where the text ends.
#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr std::size_t PM_IPV4_TEXT_SIZE = 15;  // of the longest text: "255.255.255.255"
inline constexpr std::size_t PM_IPV6_TEXT_SIZE = 39;

// 4 bytes in network byte order, dotted.
char *pm_write_ipv4(char *to, const std::uint8_t *octets);
// 16 bytes in network byte order, in the shortest form, which is the one of inet_ntop(): "::" in place of the longest
// run of two or more zero words, the first of several; the last 4 bytes dotted after 6 zero words or after "::ffff:".
char *pm_write_ipv6(char *to, const std::uint8_t *octets);

// Two lower-case hexadecimal digits for each byte.
char *pm_write_hexadecimal(char *to, const std::uint8_t *octets, std::size_t count);
// 6 bytes: "00:11:22:33:44:55".
inline constexpr std::size_t PM_MAC_TEXT_SIZE = 17;
char *pm_write_mac(char *to, const std::uint8_t *octets);
