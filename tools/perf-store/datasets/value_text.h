// SPDX-License-Identifier: Apache-2.0
// Texts of single values in data sets: numbers in C notation, addresses, hexadecimal digits.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace perf_store {

enum class number_result { ok, not_a_number, out_of_range };

// Reads an integer: decimal, 0x hexadecimal or 0 octal, with an optional minus. The value is the two's
// complement; `*negative` tells a negative one. out_of_range beyond 64 bits.
[[nodiscard]] number_result parse_integer(std::string_view text, std::uint64_t *value, bool *negative);

// Dotted IPv4 text into 4 bytes, IPv6 text into 16, both in network byte order.
[[nodiscard]] bool parse_ipv4(std::string_view text, std::uint8_t *octets);
[[nodiscard]] bool parse_ipv6(std::string_view text, std::uint8_t *octets);
// "00:11:22:33:44:55" or "0011.2233.4455" into 6 bytes.
[[nodiscard]] bool parse_mac(std::string_view text, std::uint8_t *octets);
// An even number of hexadecimal digits into half as many bytes.
[[nodiscard]] bool parse_hexadecimal(std::string_view text, std::uint8_t *octets);

template <class Integer>
void append_number(Integer value, std::string *out) {
    char digits[20];
    char *end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    out->append(digits, static_cast<std::size_t>(end - digits));
}
void append_ipv4(const std::uint8_t *octets, std::string *out);
void append_ipv6(const std::uint8_t *octets, std::string *out);
void append_mac(const std::uint8_t *octets, std::string *out);
void append_hexadecimal(const std::uint8_t *octets, std::size_t count, std::string *out);

[[nodiscard]] bool is_utf8(std::string_view text);
// The text with the replacement character U+FFFD for each byte that is not UTF-8.
[[nodiscard]] std::string as_utf8(std::string_view text);

// Appends a JSON string with its quotes. False, with nothing appended, for a text that is not UTF-8.
[[nodiscard]] bool append_json_text(std::string_view text, std::string *out);

// Numbers above this are written as text, so that every JSON reader keeps them.
inline constexpr std::uint64_t LARGEST_JSON_NUMBER = 1ULL << 53;

}  // namespace perf_store
