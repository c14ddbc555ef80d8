// SPDX-License-Identifier: Apache-2.0
// One component of a filter key, read once for a whole listing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/address.h"

namespace item_filter {

struct wanted_component {
    explicit wanted_component(std::string_view component);

    // Whether a value is the one that is asked for. Not for the wildcard, which asks for none.
    [[nodiscard]] bool is(std::uint32_t value) const { return number == value; }
    [[nodiscard]] bool is(const char *value) const { return value != nullptr && text == value; }
    [[nodiscard]] bool is_ipv4(std::uint32_t value) const;  // network byte order
    [[nodiscard]] bool is_ipv6(const std::uint8_t *octets) const;

    bool any;                             // the wildcard
    std::string text;                     // as it was given
    std::optional<std::uint32_t> number;  // of "0x1f"; none when the text is something else
    ip_address address{};                 // of family 0 when the text is something else
};

}  // namespace item_filter
