// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_address_text.h"

#include "base/pm_format.h"
#include "pm_utils/address_text.h"
#include "pm_utils/text_ring.h"

namespace {

// Text of an IP address, borrowed from the platform; null for an address of another type.
const char *ip_text(const pm_address_type &address) {
    switch (address.type) {
    case PM_ADDRESS_IPV4: return inet_ntoa_r(pm_address_ipv4(address));
    case PM_ADDRESS_IPV6: return inet6_ntoa_r(address.value);
    default: return nullptr;
    }
}

}  // namespace

const char *pm_address_to_str(const pm_address_type *address) {
    char *slot = pm_next_text_slot();
    if (address == nullptr) {
        return "Unknown";
    }
    const char *value =
        address->type == PM_ADDRESS_ETHERNET ? pm_mac_to_dotted_str(address->value, PM_MAC_SIZE) : ip_text(*address);
    pm_format_text<"%s%s%s">(slot, PM_UTILS_MAX_STRING_LEN, pm_address_type_str(address->type),
                             value != nullptr ? " " : "", value != nullptr ? value : "");
    return slot;
}

const char *pm_address_value_str(const pm_address_type *address) {
    if (address == nullptr) {
        return nullptr;
    }
    return address->type == PM_ADDRESS_ETHERNET ? pm_mac_str(address->value) : ip_text(*address);
}

const char *pm_mac_str(const std::uint8_t *mac) {
    char *slot = pm_next_text_slot();
    pm_format_text<"%02x%02x.%02x%02x.%02x%02x">(slot, PM_UTILS_MAX_STRING_LEN, mac[0], mac[1], mac[2], mac[3], mac[4],
                                                 mac[5]);
    return slot;
}

void pm_endpoint_key_str(const pm_address_type *addr, const char *vrf, char *dst, std::size_t n) {
    if (addr == nullptr || vrf == nullptr || dst == nullptr || n == 0) {
        return;
    }
    pm_format_text<"%s-%s-vrf-%s">(dst, n, pm_address_family_prefix_str(addr->type), pm_address_value_str(addr), vrf);
    dst[n - 1] = '\0';
}
