// SPDX-License-Identifier: Apache-2.0
// Texts of IP addresses.
#include "platform/address.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <string_view>

#include "base/pm_address_text.h"
#include "base/pm_hex_digit.h"

namespace {

constexpr std::size_t IPV4_OCTETS = 4;
constexpr std::size_t IPV6_OCTETS = 16;
constexpr std::size_t SLOTS = 16;

// The next of the rotating text buffers.
char *next_slot() {
    static char slots[SLOTS][PM_IPV6_TEXT_SIZE + 1];
    static std::size_t next = 0;
    char *slot = slots[next];
    next = (next + 1) % SLOTS;
    return slot;
}

// Two digits an octet; false for anything else.
bool read_hexadecimal(std::string_view text, std::uint8_t *octets) {
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

std::size_t octets_of(std::uint32_t family) {
    return family == IP_FAMILY_IPV4 ? IPV4_OCTETS : family == IP_FAMILY_IPV6 ? IPV6_OCTETS : 0;
}

}  // namespace

const char *inet_ntoa_r(std::uint32_t address) {
    std::uint8_t octets[IPV4_OCTETS];
    std::memcpy(octets, &address, sizeof octets);
    char *const text = next_slot();
    *pm_write_ipv4(text, octets) = '\0';
    return text;
}

const char *inet6_ntoa_r(const std::uint8_t *octets) {
    char *const text = next_slot();
    *pm_write_ipv6(text, octets) = '\0';
    return text;
}

const char *ip_addr_string(const ip_prefix *prefix) {
    if (prefix->family == IP_FAMILY_IPV4) {
        std::uint32_t address = 0;
        std::memcpy(&address, prefix->octets, sizeof address);
        return inet_ntoa_r(address);
    }
    return prefix->family == IP_FAMILY_IPV6 ? inet6_ntoa_r(prefix->octets) : "Unknown";
}

std::uint8_t *ip_addr_ptr(ip_prefix *prefix) { return prefix->octets; }

int hex_string2ip_addr(const char *text, ip_address *address) {
    ip_address result{};
    const std::string_view digits(text);
    if (digits.size() == 2 * IPV4_OCTETS && read_hexadecimal(digits, result.octets)) {
        result.family = IP_FAMILY_IPV4;
    } else if (digits.size() == 2 * IPV6_OCTETS && read_hexadecimal(digits, result.octets)) {
        result.family = IP_FAMILY_IPV6;
    } else if (inet_pton(AF_INET, text, result.octets) == 1) {
        result.family = IP_FAMILY_IPV4;
    } else if (inet_pton(AF_INET6, text, result.octets) == 1) {
        result.family = IP_FAMILY_IPV6;
    } else {
        return 1;
    }
    *address = result;
    return 0;
}

int ip_addr2hex_string2(const ip_address *address, char *buffer, std::size_t size) {
    const std::size_t octets = octets_of(address->family);
    if (octets == 0 || size <= 2 * octets) {
        return 1;
    }
    *pm_write_hexadecimal(buffer, address->octets, octets) = '\0';
    return 0;
}
