// SPDX-License-Identifier: Apache-2.0
// Addresses as text, as prefixes and in the system's structures.
#include "perf-probed/net/address.h"

#include <algorithm>
#include <arpa/inet.h>
#include <charconv>
#include <cstring>

namespace probed {
namespace {

bool all_zero(std::span<const std::uint8_t> octets) {
    return std::ranges::all_of(octets, [](std::uint8_t octet) { return octet == 0; });
}

}  // namespace

bool ip_address::is_any() const { return family != ip_family::none && all_zero({octets.data(), size()}); }

bool ip_address::is_multicast() const {
    if (family == ip_family::ipv6) {
        return octets[0] == 0xFF;
    }
    const bool is_broadcast = octets[0] == 255 && octets[1] == 255 && octets[2] == 255 && octets[3] == 255;
    return family == ip_family::ipv4 && ((octets[0] & 0xF0) == 0xE0 || is_broadcast);
}

bool ip_address::is_link_local() const {
    return family == ip_family::ipv6 ? octets[0] == 0xFE && (octets[1] & 0xC0) == 0x80
                                     : family == ip_family::ipv4 && octets[0] == 169 && octets[1] == 254;
}

bool ip_address::is_loopback() const {
    return family == ip_family::ipv6 ? all_zero({octets.data(), 15}) && octets[15] == 1
                                     : family == ip_family::ipv4 && octets[0] == 127;
}

bool parse_address(std::string_view text, ip_address *address) {
    const std::string terminated(text);
    ip_address parsed;
    if (inet_pton(AF_INET, terminated.c_str(), parsed.octets.data()) == 1) {
        parsed.family = ip_family::ipv4;
    } else if (inet_pton(AF_INET6, terminated.c_str(), parsed.octets.data()) == 1) {
        parsed.family = ip_family::ipv6;
    } else {
        return false;
    }
    *address = parsed;
    return true;
}

std::string text_of(const ip_address &address) {
    char text[INET6_ADDRSTRLEN] = "";
    if (address) {
        inet_ntop(address.family == ip_family::ipv4 ? AF_INET : AF_INET6, address.octets.data(), text, sizeof text);
    }
    return text;
}

bool ip_prefix::contains(const ip_address &other) const {
    if (other.family != address.family || !address) {
        return false;
    }
    const std::size_t whole = length / 8;
    if (!std::equal(address.octets.begin(), address.octets.begin() + static_cast<std::ptrdiff_t>(whole),
                    other.octets.begin())) {
        return false;
    }
    const unsigned rest = length % 8;
    const unsigned mask = (0xFF00U >> rest) & 0xFF;
    return rest == 0 || ((address.octets[whole] ^ other.octets[whole]) & mask) == 0;
}

bool parse_prefix(std::string_view text, ip_prefix *prefix) {
    const std::size_t slash = text.find('/');
    ip_prefix parsed;
    if (!parse_address(text.substr(0, slash), &parsed.address)) {
        return false;
    }
    unsigned length = static_cast<unsigned>(parsed.address.size()) * 8;
    if (slash != std::string_view::npos) {
        const std::string_view digits = text.substr(slash + 1);
        unsigned given = 0;
        const auto [end, failure] = std::from_chars(digits.data(), digits.data() + digits.size(), given);
        if (failure != std::errc() || end != digits.data() + digits.size() || given > length) {
            return false;
        }
        length = given;
    }
    parsed.length = static_cast<std::uint8_t>(length);
    ip_address network = parsed.address;
    for (std::size_t bit = length; bit < network.size() * 8; ++bit) {
        network.octets[bit / 8] = static_cast<std::uint8_t>(network.octets[bit / 8] & ~(0x80U >> (bit % 8)));
    }
    if (network != parsed.address) {
        return false;
    }
    *prefix = parsed;
    return true;
}

bool is_allowed(std::span<const ip_prefix> prefixes, const ip_address &address) {
    return prefixes.empty() ||
           std::ranges::any_of(prefixes, [&](const ip_prefix &prefix) { return prefix.contains(address); });
}

socklen_t to_system(const udp_endpoint &endpoint, sockaddr_storage *out) {
    if (endpoint.address.family == ip_family::ipv4) {
        sockaddr_in ipv4{};
        ipv4.sin_family = AF_INET;
        ipv4.sin_port = htons(endpoint.port);
        std::memcpy(&ipv4.sin_addr, endpoint.address.octets.data(), sizeof ipv4.sin_addr);
        std::memcpy(out, &ipv4, sizeof ipv4);
        return sizeof ipv4;
    }
    sockaddr_in6 ipv6{};
    ipv6.sin6_family = AF_INET6;
    ipv6.sin6_port = htons(endpoint.port);
    ipv6.sin6_scope_id = endpoint.scope;
    std::memcpy(&ipv6.sin6_addr, endpoint.address.octets.data(), sizeof ipv6.sin6_addr);
    std::memcpy(out, &ipv6, sizeof ipv6);
    return sizeof ipv6;
}

udp_endpoint from_system(const sockaddr_storage &from) {
    udp_endpoint endpoint;
    if (from.ss_family == AF_INET) {
        sockaddr_in ipv4;
        std::memcpy(&ipv4, &from, sizeof ipv4);
        endpoint.address.family = ip_family::ipv4;
        endpoint.port = ntohs(ipv4.sin_port);
        std::memcpy(endpoint.address.octets.data(), &ipv4.sin_addr, sizeof ipv4.sin_addr);
    } else if (from.ss_family == AF_INET6) {
        sockaddr_in6 ipv6;
        std::memcpy(&ipv6, &from, sizeof ipv6);
        endpoint.address.family = ip_family::ipv6;
        endpoint.port = ntohs(ipv6.sin6_port);
        std::memcpy(endpoint.address.octets.data(), &ipv6.sin6_addr, sizeof ipv6.sin6_addr);
        endpoint.scope = endpoint.address.is_link_local() ? ipv6.sin6_scope_id : 0;
    }
    return endpoint;
}

}  // namespace probed
