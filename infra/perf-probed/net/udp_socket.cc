// SPDX-License-Identifier: Apache-2.0
// Options of the socket, by family.
#include "perf-probed/net/udp_socket.h"

#include <cerrno>
#include <cstring>
#include <linux/net_tstamp.h>
#include <unistd.h>

namespace probed {
namespace {

constexpr int TEST_PACKET_TTL = 255;

constexpr int RECEIVE_STAMPS = SOF_TIMESTAMPING_RX_SOFTWARE | SOF_TIMESTAMPING_RX_HARDWARE | SOF_TIMESTAMPING_SOFTWARE |
                               SOF_TIMESTAMPING_RAW_HARDWARE;
constexpr int TRANSMIT_STAMPS = SOF_TIMESTAMPING_TX_SOFTWARE | SOF_TIMESTAMPING_OPT_ID | SOF_TIMESTAMPING_OPT_TSONLY;

std::string name_of(const socket_settings &settings) {
    std::string name = text_of(settings.address) + " port " + std::to_string(settings.port);
    return settings.device.empty() ? name : name + " on " + settings.device;
}

pm_error system_error(const std::string &what) {
    const int number = errno;
    return {static_cast<std::uint32_t>(number), what + ": " + std::strerror(number)};
}

}  // namespace

udp_socket &udp_socket::operator=(udp_socket &&other) noexcept {
    std::swap(fd_, other.fd_);
    std::swap(family_, other.family_);
    std::swap(port_, other.port_);
    std::swap(kernel_stamps_, other.kernel_stamps_);
    std::swap(transmit_stamps_, other.transmit_stamps_);
    return *this;
}

void udp_socket::close() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
    fd_ = -1;
}

bool udp_socket::set_option(int level, int name, int value) const {
    return setsockopt(fd_, level, name, &value, sizeof value) == 0;
}

pm_error udp_socket::open(const socket_settings &settings) {
    close();
    family_ = settings.address.family;
    fd_ = socket(family_ == ip_family::ipv4 ? AF_INET : AF_INET6, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd_ < 0) {
        return system_error("cannot open a socket for " + name_of(settings));
    }
    pm_error error = configure(settings);
    if (error) {
        close();
    }
    return error;
}

pm_error udp_socket::configure(const socket_settings &settings) {
    const bool ipv4 = family_ == ip_family::ipv4;
    const bool set = ipv4 ? set_option(IPPROTO_IP, IP_TTL, TEST_PACKET_TTL) && set_option(IPPROTO_IP, IP_RECVTTL, 1) &&
                                set_option(IPPROTO_IP, IP_RECVTOS, 1) && set_option(IPPROTO_IP, IP_PKTINFO, 1)
                          : set_option(IPPROTO_IPV6, IPV6_V6ONLY, 1) &&
                                set_option(IPPROTO_IPV6, IPV6_UNICAST_HOPS, TEST_PACKET_TTL) &&
                                set_option(IPPROTO_IPV6, IPV6_RECVHOPLIMIT, 1) &&
                                set_option(IPPROTO_IPV6, IPV6_RECVTCLASS, 1) &&
                                set_option(IPPROTO_IPV6, IPV6_RECVPKTINFO, 1);
    if (!set) {
        return system_error("cannot set up the socket of " + name_of(settings));
    }
    if (settings.transmit_stamps) {  // with it a full queue is reported as ENOBUFS
        set_option(ipv4 ? IPPROTO_IP : IPPROTO_IPV6, ipv4 ? IP_RECVERR : IPV6_RECVERR, 1);
    }
    set_option(SOL_SOCKET, SO_RCVBUF, settings.receive_buffer);
    set_option(SOL_SOCKET, SO_SNDBUF, settings.receive_buffer);
    if (!settings.device.empty() && setsockopt(fd_, SOL_SOCKET, SO_BINDTODEVICE, settings.device.c_str(),
                                               static_cast<socklen_t>(settings.device.size())) != 0) {
        return system_error("cannot use " + name_of(settings));
    }
    sockaddr_storage address{};
    socklen_t length = to_system({settings.address, settings.port, 0}, &address);
    if (bind(fd_, reinterpret_cast<const sockaddr *>(&address), length) != 0 ||
        getsockname(fd_, reinterpret_cast<sockaddr *>(&address), &length) != 0) {
        return system_error("cannot receive at " + name_of(settings));
    }
    port_ = from_system(address).port;
    request_stamps(settings.transmit_stamps);
    return {};
}

void udp_socket::request_stamps(bool transmit) {
    transmit_stamps_ = transmit;
    kernel_stamps_ = set_option(SOL_SOCKET, SO_TIMESTAMPING, RECEIVE_STAMPS | (transmit ? TRANSMIT_STAMPS : 0));
}

void udp_socket::restart_transmit_numbers() {
    if (kernel_stamps_ && transmit_stamps_) {
        set_option(SOL_SOCKET, SO_TIMESTAMPING, RECEIVE_STAMPS);
        set_option(SOL_SOCKET, SO_TIMESTAMPING, RECEIVE_STAMPS | TRANSMIT_STAMPS);
    }
}

void udp_socket::clear_error() {
    int pending = 0;
    socklen_t size = sizeof pending;
    getsockopt(fd_, SOL_SOCKET, SO_ERROR, &pending, &size);
}

}  // namespace probed
