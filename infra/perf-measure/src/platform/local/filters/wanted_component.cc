// SPDX-License-Identifier: Apache-2.0
// Reads the components of filter keys.
#include "platform/local/filters/wanted_component.h"

#include <charconv>
#include <cstring>

#include "paths/filter_keys.h"

namespace item_filter {

namespace {

// "0x1f"; none for anything else.
std::optional<std::uint32_t> read_number(std::string_view text) {
    constexpr std::string_view BASE = "0x";
    if (!text.starts_with(BASE)) {
        return std::nullopt;
    }
    std::uint32_t number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + BASE.size(), end, number, 16);
    return error == std::errc{} && stop == end ? std::optional(number) : std::nullopt;
}

ip_address read_address(const std::string &text) {
    ip_address address{};
    return hex_string2ip_addr(text.c_str(), &address) == 0 ? address : ip_address{};
}

}  // namespace

wanted_component::wanted_component(std::string_view component)
    : any(component == path_grammar::WILDCARD),
      text(component),
      number(read_number(component)),
      address(read_address(text)) {}

bool wanted_component::is_ipv4(std::uint32_t value) const {
    return address.family == IP_FAMILY_IPV4 && std::memcmp(address.octets, &value, sizeof value) == 0;
}

bool wanted_component::is_ipv6(const std::uint8_t *octets) const {
    return address.family == IP_FAMILY_IPV6 && std::memcmp(address.octets, octets, sizeof address.octets) == 0;
}

}  // namespace item_filter
