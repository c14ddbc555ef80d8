// SPDX-License-Identifier: Apache-2.0
// IP addresses, prefixes and UDP endpoints.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <netinet/in.h>
#include <span>
#include <string>
#include <string_view>
#include <sys/socket.h>

namespace probed {

enum class ip_family : std::uint8_t { none, ipv4, ipv6 };

struct ip_address {
    ip_family family = ip_family::none;
    std::array<std::uint8_t, 16> octets{};  // the first four for IPv4, the rest zero

    bool operator==(const ip_address &) const = default;
    [[nodiscard]] explicit operator bool() const { return family != ip_family::none; }
    [[nodiscard]] bool is_any() const;        // 0.0.0.0 or ::
    [[nodiscard]] bool is_multicast() const;  // or broadcast
    [[nodiscard]] bool is_link_local() const;
    [[nodiscard]] bool is_loopback() const;
    [[nodiscard]] std::size_t size() const { return family == ip_family::ipv4 ? 4 : 16; }
};

// Dotted IPv4 or IPv6 text; false for anything else.
[[nodiscard]] bool parse_address(std::string_view text, ip_address *address);
// Empty for no address.
[[nodiscard]] std::string text_of(const ip_address &address);

struct ip_prefix {
    ip_address address;
    std::uint8_t length = 0;  // bits

    bool operator==(const ip_prefix &) const = default;
    [[nodiscard]] bool contains(const ip_address &other) const;
};

// "10.0.0.0/8" or a single address. False for anything else, and when bits beyond the length are set.
[[nodiscard]] bool parse_prefix(std::string_view text, ip_prefix *prefix);

// Whether any of the prefixes contains the address. An empty list allows every address.
[[nodiscard]] bool is_allowed(std::span<const ip_prefix> prefixes, const ip_address &address);

struct udp_endpoint {
    ip_address address;
    std::uint16_t port = 0;
    std::uint32_t scope = 0;  // interface of a link-local IPv6 address

    bool operator==(const udp_endpoint &) const = default;
};

// The system's form, and back. The length is that of the family's structure.
socklen_t to_system(const udp_endpoint &endpoint, sockaddr_storage *out);
[[nodiscard]] udp_endpoint from_system(const sockaddr_storage &from);

}  // namespace probed

template <>
struct std::hash<probed::ip_address> {
    std::size_t operator()(const probed::ip_address &address) const noexcept {
        return std::hash<std::string_view>()(
            {reinterpret_cast<const char *>(address.octets.data()), address.octets.size()});
    }
};
