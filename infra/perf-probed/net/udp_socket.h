// SPDX-License-Identifier: Apache-2.0
// A UDP socket of one address family for test packets: TTL 255 out, and with each packet received its time,
// TTL, DSCP, destination address and interface.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "base/pm_error.h"
#include "perf-probed/net/address.h"
#include "perf-probed/packet/time_stamp.h"

namespace probed {

struct socket_settings {
    ip_address address;            // to receive at; its family is the socket's, all zero: any address
    std::uint16_t port = 0;        // 0: one that the system chooses
    std::string device;            // receive and send there only (an interface or a VRF); empty: everywhere
    bool transmit_stamps = false;  // of each packet sent (read_transmit_stamps), and errors of sending are reported
    int receive_buffer = 4 << 20;  // bytes wished for
};

class udp_socket {
public:
    udp_socket() = default;
    ~udp_socket() { close(); }
    udp_socket(udp_socket &&other) noexcept { *this = std::move(other); }
    udp_socket &operator=(udp_socket &&other) noexcept;
    udp_socket(const udp_socket &) = delete;
    udp_socket &operator=(const udp_socket &) = delete;

    // Opens it, non-blocking. The error names the address and port; its code is the errno.
    [[nodiscard]] pm_error open(const socket_settings &settings);
    void close();

    [[nodiscard]] bool is_open() const { return fd_ >= 0; }
    [[nodiscard]] int fd() const { return fd_; }
    [[nodiscard]] ip_family family() const { return family_; }
    [[nodiscard]] std::uint16_t port() const { return port_; }
    // Whether the kernel stamps what is received, and what is sent.
    [[nodiscard]] bool kernel_stamps() const { return kernel_stamps_; }

    // Numbers the transmit time stamps from 0 again, as after a send that failed nobody knows whether the kernel
    // counted its packet.
    void restart_transmit_numbers();
    // Forgets an error that an ICMP message left, which the next call would report in its place.
    void clear_error();

private:
    [[nodiscard]] pm_error configure(const socket_settings &settings);
    bool set_option(int level, int name, int value) const;
    void request_stamps(bool transmit);

    int fd_ = -1;
    ip_family family_ = ip_family::none;
    std::uint16_t port_ = 0;
    bool kernel_stamps_ = false;
    bool transmit_stamps_ = false;
};

}  // namespace probed
