// SPDX-License-Identifier: Apache-2.0
// Texts of IP addresses.
#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr std::uint32_t IP_FAMILY_IPV4 = 2;
inline constexpr std::uint32_t IP_FAMILY_IPV6 = 10;

// An address with its family; all zero is "never given".
struct ip_address {
    std::uint32_t family;
    std::uint8_t octets[16];  // the first 4 for IPv4; network byte order
};
static_assert(sizeof(ip_address) == 20);

// An address prefix.
struct ip_prefix {
    std::uint8_t family;
    std::uint8_t length;  // bits
    std::uint8_t octets[16];
};

// Texts of an IPv4 address in network byte order and of 16 IPv6 address bytes, the latter the
// shortest form that inet_ntop writes. Borrowed; valid until the next call but fifteen of either.
[[nodiscard]] const char *inet_ntoa_r(std::uint32_t address);
[[nodiscard]] const char *inet6_ntoa_r(const std::uint8_t *octets);

// Text of a prefix's address, "Unknown" for another family. Borrowed as above.
[[nodiscard]] const char *ip_addr_string(const ip_prefix *prefix);
// The address bytes of a prefix.
[[nodiscard]] std::uint8_t *ip_addr_ptr(ip_prefix *prefix);

// Reads 8 or 32 hexadecimal digits, dotted IPv4 or IPv6 text. Non-zero on failure, which leaves
// `*address` as it was.
[[nodiscard]] int hex_string2ip_addr(const char *text, ip_address *address);
// Writes 8 or 32 lower-case hexadecimal digits. Non-zero on failure: another family, or a buffer
// that is too small.
[[nodiscard]] int ip_addr2hex_string2(const ip_address *address, char *buffer, std::size_t size);
