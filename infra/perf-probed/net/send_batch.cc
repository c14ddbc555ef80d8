// SPDX-License-Identifier: Apache-2.0
// Sending: each packet with the source address, interface, DSCP and hop limit that it needs.
#include <algorithm>
#include <cerrno>
#include <cstring>

#include "perf-probed/net/packet_batch.h"

namespace probed {
namespace {

constexpr std::size_t CONTROL_ROOM = 160;

// Control messages written one after the other into a buffer.
class control_writer {
public:
    explicit control_writer(char *to) : to_(to) {}

    template <class T>
    void add(int level, int type, const T &value) {
        auto *const control = reinterpret_cast<cmsghdr *>(to_ + size_);
        control->cmsg_level = level;
        control->cmsg_type = type;
        control->cmsg_len = CMSG_LEN(sizeof value);
        std::memcpy(CMSG_DATA(control), &value, sizeof value);
        size_ += CMSG_SPACE(sizeof value);
    }
    [[nodiscard]] std::size_t size() const { return size_; }

private:
    char *to_;
    std::size_t size_ = 0;
};

std::size_t write_ipv4(const outgoing_packet &packet, char *to) {
    control_writer controls(to);
    if (packet.from || packet.interface != 0) {
        in_pktinfo info{};
        info.ipi_ifindex = static_cast<int>(packet.interface);
        std::memcpy(&info.ipi_spec_dst, packet.from.octets.data(), sizeof info.ipi_spec_dst);
        controls.add(IPPROTO_IP, IP_PKTINFO, info);
    }
    if (packet.traffic_class != 0) {
        controls.add(IPPROTO_IP, IP_TOS, int{packet.traffic_class});
    }
    if (packet.hop_limit != 0) {
        controls.add(IPPROTO_IP, IP_TTL, int{packet.hop_limit});
    }
    return controls.size();
}

std::size_t write_ipv6(const outgoing_packet &packet, char *to) {
    control_writer controls(to);
    if (packet.from || packet.interface != 0) {
        in6_pktinfo info{};
        info.ipi6_ifindex = packet.interface;
        std::memcpy(&info.ipi6_addr, packet.from.octets.data(), sizeof info.ipi6_addr);
        controls.add(IPPROTO_IPV6, IPV6_PKTINFO, info);
    }
    if (packet.traffic_class != 0) {
        controls.add(IPPROTO_IPV6, IPV6_TCLASS, int{packet.traffic_class});
    }
    if (packet.hop_limit != 0) {
        controls.add(IPPROTO_IPV6, IPV6_HOPLIMIT, int{packet.hop_limit});
    }
    return controls.size();
}

constexpr int MOST_STALE_ERRORS = 4;

bool may_be_stale(int error) {
    return error == ECONNREFUSED || error == EHOSTUNREACH || error == ENETUNREACH || error == EPROTO ||
           error == EMSGSIZE || error == EINTR || error == EHOSTDOWN || error == EACCES;
}

}  // namespace

struct send_batch::slot {
    std::uint8_t data[PACKET_ROOM];
    alignas(cmsghdr) char control[CONTROL_ROOM];
    sockaddr_storage to;
    iovec vector;
};

send_batch::send_batch() : slots_(BATCH_PACKETS), messages_(BATCH_PACKETS) {
    for (std::size_t index = 0; index < BATCH_PACKETS; ++index) {
        msghdr &header = messages_[index].msg_hdr;
        header.msg_name = &slots_[index].to;
        header.msg_iov = &slots_[index].vector;
        header.msg_iovlen = 1;
        header.msg_control = slots_[index].control;
    }
}

send_batch::~send_batch() = default;

std::span<std::uint8_t> send_batch::room() { return slots_[count_].data; }

void send_batch::add(const outgoing_packet &packet) {
    slot &each = slots_[count_];
    msghdr &header = messages_[count_].msg_hdr;
    each.vector = {const_cast<std::uint8_t *>(packet.data.data()), packet.data.size()};
    header.msg_namelen = to_system(packet.to, &each.to);
    header.msg_control = each.control;
    if (packet.to.address.family == ip_family::ipv4) {
        header.msg_controllen = write_ipv4(packet, each.control);
    } else {
        header.msg_controllen = write_ipv6(packet, each.control);
    }
    if (header.msg_controllen == 0) {
        header.msg_control = nullptr;
    }
    ++count_;
}

std::size_t send_batch::send_from(udp_socket &socket, std::size_t first, int *error) {
    for (int tries = 0;; ++tries) {
        const int count =
            sendmmsg(socket.fd(), messages_.data() + first, static_cast<unsigned>(count_ - first), MSG_DONTWAIT);
        if (count > 0) {
            return static_cast<std::size_t>(count);
        }
        *error = errno;
        if (!may_be_stale(*error) || tries == MOST_STALE_ERRORS) {
            return 0;
        }
        socket.clear_error();
    }
}

}  // namespace probed
