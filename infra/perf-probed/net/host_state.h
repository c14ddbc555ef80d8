// SPDX-License-Identifier: Apache-2.0
// The interfaces of this host, their addresses and neighbours, and a socket that tells when they change.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "perf-probed/net/address.h"

namespace probed {

using mac_address = std::array<std::uint8_t, 6>;

struct host_interface {
    std::uint32_t index = 0;
    std::string name;
    std::uint16_t type = 0;   // ARPHRD_*
    bool admin_up = false;    // somebody switched it on
    bool is_running = false;  // it has a carrier
    mac_address mac{};
    std::vector<ip_address> addresses;  // both families, link-local ones included

    [[nodiscard]] bool has(const ip_address &address) const;
    // The first one of a family: a global one when there is one; of IPv6 a link-local one if `link_local` says so.
    [[nodiscard]] ip_address first(ip_family family, bool link_local = false) const;
};

struct host_neighbour {
    std::uint32_t interface = 0;
    ip_address address;
    mac_address mac{};
    bool failed = false;  // nobody answers for it
};

struct host_state {
    std::vector<host_interface> interfaces;
    std::vector<host_neighbour> neighbours;

    [[nodiscard]] const host_interface *find(std::string_view name) const;
    [[nodiscard]] const host_interface *find(std::uint32_t index) const;
    [[nodiscard]] const host_neighbour *find_neighbour(std::uint32_t interface, const ip_address &address) const;
    [[nodiscard]] bool has(const ip_address &address) const;
    // Whether there is an address of a family that reaches beyond this host.
    [[nodiscard]] bool has_family(ip_family family) const;
};

[[nodiscard]] host_state read_host_state();

// Becomes readable when an interface, an address or a neighbour changed.
class host_watch {
public:
    host_watch();
    ~host_watch();
    host_watch(const host_watch &) = delete;
    host_watch &operator=(const host_watch &) = delete;

    [[nodiscard]] int fd() const { return fd_; }  // -1: the system has no such socket
    // Reads away what was told.
    void drain();

private:
    int fd_;
};

}  // namespace probed
