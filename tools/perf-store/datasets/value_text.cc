// SPDX-License-Identifier: Apache-2.0
// Numbers, addresses and JSON strings, read and written.
#include "perf-store/datasets/value_text.h"

#include <arpa/inet.h>
#include <cstring>

#include "base/pm_address_text.h"
#include "base/pm_hex_digit.h"

namespace perf_store {

namespace {

constexpr std::size_t MAC_OCTETS = 6;

// Most numbers: up to 18 decimal digits, the first of which is no 0 that makes them octal.
bool parse_short_decimal(std::string_view text, std::uint64_t *value) {
    if (text.empty() || text.size() > 18 || (text[0] == '0' && text.size() > 1)) {
        return false;
    }
    std::uint64_t number = 0;
    for (const char c : text) {
        const auto digit = static_cast<unsigned char>(c - '0');
        if (digit > 9) {
            return false;
        }
        number = number * 10 + digit;
    }
    *value = number;
    return true;
}

bool parse_address(int family, std::string_view text, std::uint8_t *octets) {
    char terminated[INET6_ADDRSTRLEN];
    if (text.size() >= sizeof terminated || text.find('\0') != std::string_view::npos) {
        return false;
    }
    std::memcpy(terminated, text.data(), text.size());
    terminated[text.size()] = '\0';
    return inet_pton(family, terminated, octets) == 1;
}

// Bytes of the UTF-8 sequence at the front of `text`; 0 when there is none (RFC 3629).
std::size_t utf8_length(std::string_view text) {
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    const auto continues = [&](std::size_t i) { return (byte(i) & 0xC0) == 0x80; };
    const unsigned first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first <= 0xDF && continues(1)) {
        return 2;
    }
    if ((first & 0xF0) == 0xE0 && continues(1) && continues(2)) {
        const bool overlong = first == 0xE0 && byte(1) < 0xA0;
        const bool surrogate = first == 0xED && byte(1) >= 0xA0;
        return overlong || surrogate ? 0 : 3;
    }
    if (first >= 0xF0 && first <= 0xF4 && continues(1) && continues(2) && continues(3)) {
        const bool overlong = first == 0xF0 && byte(1) < 0x90;
        const bool beyond = first == 0xF4 && byte(1) >= 0x90;
        return overlong || beyond ? 0 : 4;
    }
    return 0;
}

// Bytes at the front of `text` that are ASCII and written as they are in a JSON string.
std::size_t plain_length(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && text[length] >= ' ' && text[length] < '\x7F' && text[length] != '"' &&
           text[length] != '\\') {
        ++length;
    }
    return length;
}

}  // namespace

number_result parse_integer(std::string_view text, std::uint64_t *value, bool *negative) {
    if (parse_short_decimal(text, value)) {
        *negative = false;
        return number_result::ok;
    }
    *negative = text.starts_with('-');
    text.remove_prefix(*negative ? 1 : 0);
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    } else if (text.size() > 1 && text[0] == '0') {
        base = 8;
        text.remove_prefix(1);
    }
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *value, base);
    if (error == std::errc::invalid_argument || stop != end) {
        return number_result::not_a_number;
    }
    if (error != std::errc{} || (*negative && *value > 1ULL << 63)) {
        return number_result::out_of_range;
    }
    *value = *negative ? 0 - *value : *value;
    *negative = *negative && *value != 0;
    return number_result::ok;
}

bool parse_ipv4(std::string_view text, std::uint8_t *octets) { return parse_address(AF_INET, text, octets); }
bool parse_ipv6(std::string_view text, std::uint8_t *octets) { return parse_address(AF_INET6, text, octets); }

bool parse_mac(std::string_view text, std::uint8_t *octets) {
    const bool dotted = text.size() == 14;  // three groups of four digits, else six of two
    const std::size_t group = dotted ? 4 : 2;
    const char separator = dotted ? '.' : ':';
    if (!dotted && text.size() != 17) {
        return false;
    }
    char digits[2 * MAC_OCTETS];
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i % (group + 1) == group) {
            if (text[i] != separator) {
                return false;
            }
        } else {
            digits[count++] = text[i];
        }
    }
    return parse_hexadecimal({digits, count}, octets);
}

bool parse_hexadecimal(std::string_view text, std::uint8_t *octets) {
    if (text.size() % 2 != 0) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = pm_hex_digit(text[i]);
        const int low = pm_hex_digit(text[i + 1]);
        if (high < 0 || low < 0) {
            return false;
        }
        octets[i / 2] = static_cast<std::uint8_t>(high * 16 + low);
    }
    return true;
}

void append_ipv4(const std::uint8_t *octets, std::string *out) {
    char text[PM_IPV4_TEXT_SIZE];
    out->append(text, pm_write_ipv4(text, octets));
}

void append_ipv6(const std::uint8_t *octets, std::string *out) {
    char text[PM_IPV6_TEXT_SIZE];
    out->append(text, pm_write_ipv6(text, octets));
}

void append_mac(const std::uint8_t *octets, std::string *out) {
    char text[PM_MAC_TEXT_SIZE];
    out->append(text, pm_write_mac(text, octets));
}

void append_hexadecimal(const std::uint8_t *octets, std::size_t count, std::string *out) {
    const std::size_t before = out->size();
    out->resize(before + 2 * count);
    pm_write_hexadecimal(out->data() + before, octets, count);
}

bool is_utf8(std::string_view text) {
    constexpr std::uint64_t HIGH_BITS = 0x8080808080808080ULL;
    std::uint64_t eight = 0;
    while (text.size() >= sizeof eight) {  // most texts are ASCII
        std::memcpy(&eight, text.data(), sizeof eight);
        if ((eight & HIGH_BITS) != 0) {
            break;
        }
        text.remove_prefix(sizeof eight);
    }
    while (!text.empty()) {
        const std::size_t length = utf8_length(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string as_utf8(std::string_view text) {
    constexpr char REPLACEMENT[] = "\xEF\xBF\xBD";
    std::string valid;
    while (!text.empty()) {
        const std::size_t length = utf8_length(text);
        valid += length != 0 ? text.substr(0, length) : REPLACEMENT;
        text.remove_prefix(length != 0 ? length : 1);
    }
    return valid;
}

bool append_json_text(std::string_view text, std::string *out) {
    const std::size_t begin = out->size();
    out->push_back('"');
    while (!text.empty()) {
        const std::size_t plain = plain_length(text);
        out->append(text, 0, plain);
        text.remove_prefix(plain);
        if (text.empty()) {
            break;
        }
        const auto byte = static_cast<std::uint8_t>(text[0]);
        std::size_t length = 1;
        if (byte == '"' || byte == '\\') {
            out->push_back('\\');
            out->push_back(text[0]);
        } else if (byte < 0x20 || byte == 0x7F) {
            out->append("\\u00");
            append_hexadecimal(&byte, 1, out);
        } else {
            length = utf8_length(text);
            if (length == 0) {
                out->resize(begin);
                return false;
            }
            out->append(text, 0, length);
        }
        text.remove_prefix(length);
    }
    out->push_back('"');
    return true;
}

}  // namespace perf_store
