// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_address.h"

#include <algorithm>
#include <cstring>

#include "base/pm_assert.h"
#include "platform/bounded.h"
#include "pm_utils/name_table.h"

namespace {

constexpr std::uint8_t ZEROS[PM_IPV6_SIZE] = {};

constexpr pm_name ADDRESS_TYPES[] = {
    {PM_ADDRESS_UNKNOWN, "Unknown address"},
    {PM_ADDRESS_ETHERNET, "Ethernet"},
    {PM_ADDRESS_IPV4, "IPv4"},
    {PM_ADDRESS_IPV6, "IPv6"},
};

constexpr pm_name ADDRESS_FAMILY_PREFIXES[] = {
    {PM_ADDRESS_ETHERNET, "Ethernet"},
    {PM_ADDRESS_IPV4, "IPv4"},
    {PM_ADDRESS_IPV6, "IPv6"},
};

// Bytes of an IP address; 0 for a type that is not IP.
std::size_t ip_size(std::uint32_t type) {
    switch (type) {
    case PM_ADDRESS_IPV4: return PM_IPV4_SIZE;
    case PM_ADDRESS_IPV6: return PM_IPV6_SIZE;
    default: return 0;
    }
}

bool is_valid_unicast_ipv4(const std::uint8_t *octets) {
    constexpr std::uint8_t LOOPBACK = 127;
    constexpr std::uint8_t MULTICAST_BEGIN = 224;  // beyond it the reserved block and the broadcast address
    const bool is_unspecified = std::equal(octets, octets + PM_IPV4_SIZE, ZEROS);
    return !is_unspecified && octets[0] != LOOPBACK && octets[0] < MULTICAST_BEGIN;
}

bool is_valid_unicast_ipv6(const std::uint8_t *octets) {
    const bool is_multicast = octets[0] == 0xFF;
    const bool is_link_local = octets[0] == 0xFE && (octets[1] & 0xC0) == 0x80;
    const bool is_unspecified_or_loopback =
        std::equal(octets, octets + PM_IPV6_SIZE - 1, ZEROS) && octets[PM_IPV6_SIZE - 1] <= 1;
    return !is_multicast && !is_link_local && !is_unspecified_or_loopback;
}

}  // namespace

const char *pm_address_type_str(std::uint32_t type) { return pm_name_of(ADDRESS_TYPES, type, "Invalid address"); }

const char *pm_address_family_prefix_str(std::uint32_t type) { return pm_name_of(ADDRESS_FAMILY_PREFIXES, type, ""); }

std::uint32_t pm_address_type_to_af(std::uint32_t type) {
    switch (type) {
    case PM_ADDRESS_IPV4: return 1;
    case PM_ADDRESS_IPV6: return 2;
    default: return 0;
    }
}

void pm_address_set_ipv4(pm_address_type *address, std::uint32_t ipv4) {
    if (address == nullptr) {
        return;
    }
    address->type = PM_ADDRESS_IPV4;
    std::memcpy(address->value, &ipv4, PM_IPV4_SIZE);
}

void pm_address_set_ipv4_from_ptr(pm_address_type *address, const std::uint32_t *ipv4) {
    if (address != nullptr) {
        pm_address_set_ipv4(address, *ipv4);
    }
}

void pm_address_set_ipv6(pm_address_type *address, const std::uint8_t *octets) {
    if (address == nullptr) {
        return;
    }
    address->type = PM_ADDRESS_IPV6;
    std::memcpy(address->value, octets != nullptr ? octets : ZEROS, PM_IPV6_SIZE);
}

std::uint32_t pm_address_ipv4(const pm_address_type &address) {
    std::uint32_t ipv4;
    std::memcpy(&ipv4, address.value, PM_IPV4_SIZE);
    return ipv4;
}

bool pm_address_equal(const pm_address_type *a, const pm_address_type *b) {
    if (a == nullptr || b == nullptr || a->type != b->type) {
        return false;
    }
    const std::size_t size = ip_size(a->type);
    return size != 0 && std::memcmp(a->value, b->value, size) == 0;
}

bool pm_addr_to_prefix(const pm_address_type *pm_addr, pm_prefix_t *out_prefix) {
    constexpr char PROTOTYPE[] = "bool pm_addr_to_prefix(const pm_address_type *, pm_prefix_t *)";
    PM_ASSERT(pm_addr != nullptr, "NULL != pm_addr", "pm_utils", PROTOTYPE);
    PM_ASSERT(out_prefix != nullptr, "NULL != out_prefix", "pm_utils", PROTOTYPE);
    const std::size_t size = ip_size(pm_addr->type);
    if (size == 0) {
        return false;
    }
    out_prefix->family = static_cast<std::uint8_t>(pm_addr->type == PM_ADDRESS_IPV4 ? IP_FAMILY_IPV4 : IP_FAMILY_IPV6);
    out_prefix->length = static_cast<std::uint8_t>(size * 8);
    memcpy_s(ip_addr_ptr(out_prefix), sizeof out_prefix->octets, pm_addr->value, size);
    return true;
}

bool pm_ipv4_is_loopback(std::uint32_t addr_network_order) {
    std::uint8_t first_octet;
    std::memcpy(&first_octet, &addr_network_order, 1);
    return first_octet == 127;
}

bool pm_ipv6_is_loopback(const std::uint8_t *addr) {
    constexpr std::uint8_t MAPPED_LOOPBACK_BLOCK[] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 127};
    if (addr == nullptr) {
        return false;
    }
    // The address to compare with is all zeros and not ::1, on purpose.
    return std::memcmp(addr, MAPPED_LOOPBACK_BLOCK, sizeof MAPPED_LOOPBACK_BLOCK) == 0 ||
           std::memcmp(addr, ZEROS, PM_IPV6_SIZE) == 0;
}

bool pm_address_is_valid_unicast(const pm_address_type *addr) {
    if (addr == nullptr) {
        return false;
    }
    switch (addr->type) {
    case PM_ADDRESS_IPV4: return is_valid_unicast_ipv4(addr->value);
    case PM_ADDRESS_IPV6: return is_valid_unicast_ipv6(addr->value);
    default: return false;
    }
}
