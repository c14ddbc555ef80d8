// SPDX-License-Identifier: Apache-2.0
// Interfaces and addresses from getifaddrs, neighbours from the routing socket.
#include "perf-probed/net/host_state.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ifaddrs.h>
#include <linux/neighbour.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <netpacket/packet.h>
#include <unistd.h>

namespace probed {
namespace {

host_interface &found_or_added(host_state *host, const char *name) {
    const auto found = std::ranges::find(host->interfaces, std::string_view(name), &host_interface::name);
    if (found != host->interfaces.end()) {
        return *found;
    }
    host_interface &added = host->interfaces.emplace_back();
    added.name = name;
    added.index = if_nametoindex(name);
    return added;
}

void take_link(const sockaddr *from, host_interface *to) {
    sockaddr_ll link;
    std::memcpy(&link, from, sizeof link);
    to->type = link.sll_hatype;
    if (link.sll_halen == to->mac.size()) {
        std::memcpy(to->mac.data(), link.sll_addr, to->mac.size());
    }
}

void take_address(const sockaddr *from, host_interface *to) {
    sockaddr_storage address{};
    std::memcpy(&address, from, from->sa_family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6));
    to->addresses.push_back(from_system(address).address);
}

// Asks for all neighbours of both families; the answer ends with NLMSG_DONE.
bool ask_for_neighbours(int socket) {
    struct {
        nlmsghdr header;
        ndmsg body;
    } request{};
    request.header.nlmsg_len = sizeof request;
    request.header.nlmsg_type = RTM_GETNEIGH;
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    return send(socket, &request, sizeof request, 0) == static_cast<ssize_t>(sizeof request);
}

void take_neighbour(const nlmsghdr *header, std::vector<host_neighbour> *out) {
    const auto *const body = static_cast<const ndmsg *>(NLMSG_DATA(header));
    if (body->ndm_family != AF_INET && body->ndm_family != AF_INET6) {
        return;
    }
    host_neighbour neighbour;
    neighbour.interface = static_cast<std::uint32_t>(body->ndm_ifindex);
    neighbour.failed = (body->ndm_state & NUD_FAILED) != 0;
    neighbour.address.family = body->ndm_family == AF_INET ? ip_family::ipv4 : ip_family::ipv6;
    auto length = static_cast<int>(header->nlmsg_len - NLMSG_LENGTH(sizeof *body));
    const auto *attribute =
        reinterpret_cast<const rtattr *>(reinterpret_cast<const char *>(body) + NLMSG_ALIGN(sizeof *body));
    for (; RTA_OK(attribute, length); attribute = RTA_NEXT(attribute, length)) {
        if (attribute->rta_type == NDA_DST && RTA_PAYLOAD(attribute) == neighbour.address.size()) {
            std::memcpy(neighbour.address.octets.data(), RTA_DATA(attribute), RTA_PAYLOAD(attribute));
        } else if (attribute->rta_type == NDA_LLADDR && RTA_PAYLOAD(attribute) == neighbour.mac.size()) {
            std::memcpy(neighbour.mac.data(), RTA_DATA(attribute), RTA_PAYLOAD(attribute));
        }
    }
    out->push_back(neighbour);
}

std::vector<host_neighbour> read_neighbours() {
    std::vector<host_neighbour> neighbours;
    const int socket = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE);
    if (socket < 0) {
        return neighbours;
    }
    alignas(nlmsghdr) char buffer[32768];
    bool done = !ask_for_neighbours(socket);
    while (!done) {
        const ssize_t size = recv(socket, buffer, sizeof buffer, 0);
        if (size <= 0) {
            break;
        }
        auto left = static_cast<unsigned>(size);
        for (auto *header = reinterpret_cast<nlmsghdr *>(buffer); NLMSG_OK(header, left);
             header = NLMSG_NEXT(header, left)) {
            if (header->nlmsg_type == RTM_NEWNEIGH) {
                take_neighbour(header, &neighbours);
            } else {
                done = true;  // the end or an error
            }
        }
    }
    close(socket);
    return neighbours;
}

}  // namespace

bool host_interface::has(const ip_address &address) const {
    return std::ranges::find(addresses, address) != addresses.end();
}

ip_address host_interface::first(ip_family family, bool link_local) const {
    ip_address second_choice;
    for (const ip_address &address : addresses) {
        if (address.family != family) {
            continue;
        }
        if (family == ip_family::ipv4 || address.is_link_local() == link_local) {
            return address;
        }
        second_choice = second_choice ? second_choice : address;
    }
    return link_local ? ip_address{} : second_choice;
}

const host_interface *host_state::find(std::string_view name) const {
    const auto found = std::ranges::find(interfaces, name, &host_interface::name);
    return found == interfaces.end() ? nullptr : &*found;
}

const host_interface *host_state::find(std::uint32_t index) const {
    const auto found = std::ranges::find(interfaces, index, &host_interface::index);
    return found == interfaces.end() ? nullptr : &*found;
}

const host_neighbour *host_state::find_neighbour(std::uint32_t interface, const ip_address &address) const {
    const auto found = std::ranges::find_if(
        neighbours, [&](const host_neighbour &each) { return each.interface == interface && each.address == address; });
    return found == neighbours.end() ? nullptr : &*found;
}

bool host_state::has(const ip_address &address) const {
    return std::ranges::any_of(interfaces, [&](const host_interface &each) { return each.has(address); });
}

bool host_state::has_family(ip_family family) const {
    return std::ranges::any_of(interfaces, [family](const host_interface &each) {
        return std::ranges::any_of(each.addresses, [family](const ip_address &address) {
            return address.family == family && !address.is_loopback();
        });
    });
}

host_state read_host_state() {
    host_state host;
    ifaddrs *list = nullptr;
    if (getifaddrs(&list) != 0) {
        return host;
    }
    for (const ifaddrs *each = list; each != nullptr; each = each->ifa_next) {
        host_interface &interface = found_or_added(&host, each->ifa_name);
        interface.admin_up = (each->ifa_flags & IFF_UP) != 0;
        interface.is_running = (each->ifa_flags & IFF_RUNNING) != 0;
        if (each->ifa_addr == nullptr) {
            continue;
        }
        if (each->ifa_addr->sa_family == AF_PACKET) {
            take_link(each->ifa_addr, &interface);
        } else if (each->ifa_addr->sa_family == AF_INET || each->ifa_addr->sa_family == AF_INET6) {
            take_address(each->ifa_addr, &interface);
        }
    }
    freeifaddrs(list);
    host.neighbours = read_neighbours();
    return host;
}

host_watch::host_watch() : fd_(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE)) {
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR | RTMGRP_NEIGH;
    if (fd_ >= 0 && bind(fd_, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) {
        close(fd_);
        fd_ = -1;
    }
}

host_watch::~host_watch() {
    if (fd_ >= 0) {
        close(fd_);
    }
}

void host_watch::drain() {
    char buffer[8192];
    while (recv(fd_, buffer, sizeof buffer, MSG_DONTWAIT) > 0 || errno == ENOBUFS) {
        errno = 0;
    }
}

}  // namespace probed
