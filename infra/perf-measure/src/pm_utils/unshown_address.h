// SPDX-License-Identifier: Apache-2.0
// Called by no show: addresses as the measurement engine has them, and what can be asked about an address.
//
// Their texts are in unshown_address_text.h. Records carry addresses in a form of their own
// (pm_addr_type_e, where IPv4 is 0); nothing converts between the two.
#pragma once

#include <cstddef>
#include <cstdint>

#include "pm_utils/address_text.h"

enum pm_address_kind : std::uint32_t {
    PM_ADDRESS_UNKNOWN = 0,
    PM_ADDRESS_ETHERNET = 1,
    PM_ADDRESS_IPV4 = 2,
    PM_ADDRESS_IPV6 = 3,
};

inline constexpr std::size_t PM_IPV4_SIZE = 4;
inline constexpr std::size_t PM_IPV6_SIZE = 16;

struct pm_address_type {
    std::uint32_t type;                 // a pm_address_kind, or any other value
    alignas(8) std::uint8_t value[16];  // the first 6 bytes for Ethernet, 4 for IPv4; network byte order
};
static_assert(offsetof(pm_address_type, value) == 8);
static_assert(sizeof(pm_address_type) == 24);

// Constant words for `type` of an address: "Unknown address", "Ethernet", "IPv4", "IPv6"; else
// "Invalid address".
[[nodiscard]] const char *pm_address_type_str(std::uint32_t type);

// The same as a prefix for keys: "" for an unknown or invalid address.
[[nodiscard]] const char *pm_address_family_prefix_str(std::uint32_t type);

// Address family number for a type: IPv4 1, IPv6 2, else 0.
[[nodiscard]] std::uint32_t pm_address_type_to_af(std::uint32_t type);

// These set type and value; the value's bytes beyond the address stay as they were. A null
// `address` does nothing. IPv4 is in network byte order and its pointer is never null; null IPv6
// octets mean the address of zeros.
void pm_address_set_ipv4(pm_address_type *address, std::uint32_t ipv4);
void pm_address_set_ipv4_from_ptr(pm_address_type *address, const std::uint32_t *ipv4);
void pm_address_set_ipv6(pm_address_type *address, const std::uint8_t *octets);

// The value of an IPv4 address, network byte order. Only the type's owner may say that it is IPv4.
[[nodiscard]] std::uint32_t pm_address_ipv4(const pm_address_type &address);

// Whether both are the same IP address. False for null and for every type that is not IP, even
// beside its own copy.
[[nodiscard]] bool pm_address_equal(const pm_address_type *a, const pm_address_type *b);

// Makes the host prefix of an IP address. False, and the prefix as it was, for another type.
// Neither may be null; null aborts.
bool pm_addr_to_prefix(const pm_address_type *pm_addr, pm_prefix_t *out_prefix);

// Whether an IPv4 address in network byte order lies in 127.0.0.0/8.
[[nodiscard]] bool pm_ipv4_is_loopback(std::uint32_t addr_network_order);

// Whether 16 bytes are the start of the IPv4-mapped loopback block, ::ffff:127.0.0.0/104, or all
// zeros. ::1 is not. Null is false.
[[nodiscard]] bool pm_ipv6_is_loopback(const std::uint8_t *addr);

// Whether an address can be that of a host on a network: IP, and not multicast, reserved,
// loopback, link-local (IPv6) or all zeros. Null is false.
[[nodiscard]] bool pm_address_is_valid_unicast(const pm_address_type *addr);
