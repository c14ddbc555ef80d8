// SPDX-License-Identifier: Apache-2.0
// The checks in the order in which their reasons go before each other.
#include "perf-probed/service/resolve.h"

#include <algorithm>
#include <iterator>
#include <net/if_arp.h>

namespace probed {
namespace {

// Kinds of interfaces that carry IP.
constexpr std::uint16_t IP_TYPES[] = {ARPHRD_ETHER,   ARPHRD_LOOPBACK,   ARPHRD_PPP,    ARPHRD_TUNNEL,
                                      ARPHRD_TUNNEL6, ARPHRD_SIT,        ARPHRD_IPGRE,  ARPHRD_NONE,
                                      ARPHRD_RAWIP,   ARPHRD_INFINIBAND, ARPHRD_IEEE802};

resolved not_running(pm_probe_running_error_reason reason) { return {reason, {}, 0}; }

pm_probe_running_error_reason check_settings(bool suspended, bool has_profile, pm_delay_mode_e mode) {
    if (suspended) {
        return PM_NOT_RUNNING_SUSPENDED;
    }
    if (!has_profile) {
        return PM_NOT_RUNNING_NO_PROFILE;
    }
    return mode == PM_DELAY_MODE_LOOPBACK ? PM_NOT_RUNNING_LOOPBACK_UNSUPPORTED : PM_NOT_RUNNING_NONE;
}

pm_probe_running_error_reason check_link(const host_interface &link) {
    if (std::ranges::find(IP_TYPES, link.type) == std::end(IP_TYPES)) {
        return PM_NOT_RUNNING_INTERFACE_TYPE_UNSUPPORTED;
    }
    if (!link.admin_up) {
        return PM_NOT_RUNNING_INTERFACE_ADMIN_DOWN;
    }
    return link.is_running ? PM_NOT_RUNNING_NONE : PM_NOT_RUNNING_INTERFACE_DOWN;
}

pm_probe_running_error_reason check_next_hop(const ip_address &next_hop, const host_interface &link) {
    const bool ipv4 = static_cast<bool>(link.first(ip_family::ipv4));
    const bool ipv6 = link.first(ip_family::ipv6) || link.first(ip_family::ipv6, true);
    if (!next_hop) {
        return ipv4 || ipv6 ? PM_NOT_RUNNING_NO_NEXT_HOP : PM_NOT_RUNNING_IPV4_IPV6_DOWN;
    }
    if (next_hop.is_multicast() || next_hop.is_any()) {
        return PM_NOT_RUNNING_NEXT_HOP_TYPE;
    }
    if (!ipv4 && !ipv6) {
        return PM_NOT_RUNNING_NO_IP_ADDRESS;
    }
    if (next_hop.family == ip_family::ipv4) {
        return ipv4 ? PM_NOT_RUNNING_NONE : PM_NOT_RUNNING_IPV4_DOWN;
    }
    return ipv6 ? PM_NOT_RUNNING_NONE : PM_NOT_RUNNING_IPV6_DOWN;
}

}  // namespace

resolved resolve(const endpoint_config &endpoint, bool has_profile, pm_delay_mode_e mode, const host_state &host) {
    if (const auto reason = check_settings(endpoint.suspended, has_profile, mode); reason != PM_NOT_RUNNING_NONE) {
        return not_running(reason);
    }
    if (!endpoint.vrf.empty() && host.find(endpoint.vrf) == nullptr) {
        return not_running(PM_NOT_RUNNING_NO_VRF);
    }
    if (!endpoint.source) {
        const bool reachable =
            endpoint.address.is_loopback() || host.has(endpoint.address) || host.has_family(endpoint.address.family);
        return not_running(reachable ? PM_NOT_RUNNING_NONE : PM_NOT_RUNNING_NO_SOURCE_ADDRESS);
    }
    if (endpoint.source.family != endpoint.address.family) {
        return not_running(PM_NOT_RUNNING_SOURCE_FAMILY_MISMATCH);
    }
    if (endpoint.source == endpoint.address) {
        return not_running(PM_NOT_RUNNING_INVALID_SOURCE_ADDRESS);
    }
    if (!host.has(endpoint.source) && !endpoint.source.is_loopback()) {
        return not_running(PM_NOT_RUNNING_NO_IP_ADDRESS);
    }
    return {PM_NOT_RUNNING_NONE, endpoint.source, 0};
}

resolved resolve(const interface_config &interface, bool has_profile, pm_delay_mode_e mode, const host_state &host) {
    if (const auto reason = check_settings(interface.suspended, has_profile, mode); reason != PM_NOT_RUNNING_NONE) {
        return not_running(reason);
    }
    const host_interface *const link = host.find(interface.name);
    if (link == nullptr) {
        return not_running(PM_NOT_RUNNING_NO_INTERFACE);
    }
    if (const auto reason = check_link(*link); reason != PM_NOT_RUNNING_NONE) {
        return not_running(reason);
    }
    if (const auto reason = check_next_hop(interface.next_hop, *link); reason != PM_NOT_RUNNING_NONE) {
        return not_running(reason);
    }
    if (!interface.source) {
        const bool link_local = interface.next_hop.is_link_local();
        return {PM_NOT_RUNNING_NONE, link->first(interface.next_hop.family, link_local), link->index};
    }
    if (interface.source.family != interface.next_hop.family) {
        return not_running(PM_NOT_RUNNING_SOURCE_FAMILY_MISMATCH);
    }
    if (interface.source == interface.next_hop) {
        return not_running(PM_NOT_RUNNING_INVALID_SOURCE_ADDRESS);
    }
    if (!link->has(interface.source)) {
        return not_running(PM_NOT_RUNNING_NO_SOURCE_ADDRESS);
    }
    return {PM_NOT_RUNNING_NONE, interface.source, link->index};
}

}  // namespace probed
