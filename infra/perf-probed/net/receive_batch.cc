// SPDX-License-Identifier: Apache-2.0
// Receiving: packets with what the kernel says of them, and the time stamps of packets that left.
#include <cerrno>
#include <cstring>
#include <ctime>
#include <linux/errqueue.h>
#include <linux/net_tstamp.h>

#include "perf-probed/net/packet_batch.h"

namespace probed {
namespace {

constexpr std::size_t CONTROL_ROOM = 512;

template <class T>
T read_as(const cmsghdr *control) {
    T value{};
    if (control->cmsg_len >= CMSG_LEN(sizeof value)) {
        std::memcpy(&value, CMSG_DATA(control), sizeof value);
    }
    return value;
}

wall_nsec nsec_of(const timespec &time) { return time.tv_sec * NSEC_PER_SEC + time.tv_nsec; }

template <class Visit>
void for_each_control(msghdr *message, Visit visit) {
    for (cmsghdr *control = CMSG_FIRSTHDR(message); control != nullptr; control = CMSG_NXTHDR(message, control)) {
        visit(control);
    }
}

// A network card's clock is not the system's, unless something keeps them together; so the software stamp goes first.
void take_stamp(const cmsghdr *control, received_packet *packet) {
    const auto stamps = read_as<scm_timestamping>(control);
    if (const wall_nsec software = nsec_of(stamps.ts[0]); software != 0) {
        packet->time = software;
        packet->origin = nsec_of(stamps.ts[2]) != 0 ? stamp_origin::hardware : stamp_origin::kernel;
    }
}

void take_destination(ip_address *to, const void *octets, ip_family family) {
    to->family = family;
    std::memcpy(to->octets.data(), octets, to->size());
}

void take_control(const cmsghdr *control, received_packet *packet) {
    if (control->cmsg_level == SOL_SOCKET && control->cmsg_type == SCM_TIMESTAMPING) {
        take_stamp(control, packet);
    } else if (control->cmsg_level == IPPROTO_IP) {
        switch (control->cmsg_type) {
        case IP_TTL: packet->ttl = static_cast<std::uint8_t>(read_as<int>(control)); break;
        case IP_TOS: packet->traffic_class = *CMSG_DATA(control); break;
        case IP_PKTINFO: {
            const auto info = read_as<in_pktinfo>(control);
            packet->interface = static_cast<std::uint32_t>(info.ipi_ifindex);
            take_destination(&packet->to, &info.ipi_spec_dst, ip_family::ipv4);
            break;
        }
        default: break;
        }
    } else if (control->cmsg_level == IPPROTO_IPV6) {
        switch (control->cmsg_type) {
        case IPV6_HOPLIMIT: packet->ttl = static_cast<std::uint8_t>(read_as<int>(control)); break;
        case IPV6_TCLASS: packet->traffic_class = static_cast<std::uint8_t>(read_as<int>(control)); break;
        case IPV6_PKTINFO: {
            const auto info = read_as<in6_pktinfo>(control);
            packet->interface = info.ipi6_ifindex;
            take_destination(&packet->to, &info.ipi6_addr, ip_family::ipv6);
            break;
        }
        default: break;
        }
    }
}

bool tells_of_the_past(int error) {  // an ICMP message about a packet that was sent before
    return error == ECONNREFUSED || error == EHOSTUNREACH || error == ENETUNREACH || error == EPROTO ||
           error == EMSGSIZE || error == EINTR || error == EHOSTDOWN || error == ENETDOWN || error == EACCES;
}

constexpr int MOST_STALE_ERRORS = 8;

}  // namespace

struct receive_batch::slot {
    std::uint8_t data[PACKET_ROOM];
    alignas(cmsghdr) char control[CONTROL_ROOM];
    sockaddr_storage from;
    iovec vector;
};

receive_batch::receive_batch() : slots_(BATCH_PACKETS), messages_(BATCH_PACKETS), packets_(BATCH_PACKETS) {
    for (std::size_t index = 0; index < BATCH_PACKETS; ++index) {
        slot &each = slots_[index];
        each.vector = {each.data, sizeof each.data};
        msghdr &header = messages_[index].msg_hdr;
        header.msg_name = &each.from;
        header.msg_iov = &each.vector;
        header.msg_iovlen = 1;
        header.msg_control = each.control;
    }
}

receive_batch::~receive_batch() = default;

std::size_t receive_batch::receive(udp_socket &socket, wall_nsec now) {
    for (mmsghdr &message : messages_) {
        message.msg_hdr.msg_namelen = sizeof(sockaddr_storage);
        message.msg_hdr.msg_controllen = CONTROL_ROOM;
    }
    int count = -1;
    for (int tries = 0; count < 0 && tries < MOST_STALE_ERRORS; ++tries) {
        count = recvmmsg(socket.fd(), messages_.data(), BATCH_PACKETS, MSG_DONTWAIT, nullptr);
        if (count < 0 && !tells_of_the_past(errno)) {
            return 0;
        }
    }
    for (int index = 0; index < count; ++index) {
        const auto place = static_cast<std::size_t>(index);
        msghdr &header = messages_[place].msg_hdr;
        received_packet &packet = packets_[place];
        packet = {};
        packet.data = {slots_[place].data, messages_[place].msg_len};
        packet.cut = (header.msg_flags & MSG_TRUNC) != 0;
        packet.from = from_system(slots_[place].from);
        packet.time = now;
        for_each_control(&header, [&](const cmsghdr *control) { take_control(control, &packet); });
    }
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

struct transmit_stamps::slot {
    alignas(cmsghdr) char control[CONTROL_ROOM];
};

transmit_stamps::transmit_stamps() : slots_(BATCH_PACKETS), messages_(BATCH_PACKETS), found_(BATCH_PACKETS) {
    for (std::size_t index = 0; index < BATCH_PACKETS; ++index) {
        messages_[index].msg_hdr.msg_control = slots_[index].control;
    }
}

transmit_stamps::~transmit_stamps() = default;

std::size_t transmit_stamps::read_some(udp_socket &socket) {
    for (mmsghdr &message : messages_) {
        message.msg_hdr.msg_controllen = CONTROL_ROOM;
    }
    const int count = recvmmsg(socket.fd(), messages_.data(), BATCH_PACKETS, MSG_DONTWAIT | MSG_ERRQUEUE, nullptr);
    for (int index = 0; index < count; ++index) {
        const auto place = static_cast<std::size_t>(index);
        stamp &found = found_[place];
        found = {};
        bool is_stamp = false;
        for_each_control(&messages_[place].msg_hdr, [&](const cmsghdr *control) {
            if (control->cmsg_level == SOL_SOCKET && control->cmsg_type == SCM_TIMESTAMPING) {
                found.time = nsec_of(read_as<scm_timestamping>(control).ts[0]);
            } else if ((control->cmsg_level == IPPROTO_IP && control->cmsg_type == IP_RECVERR) ||
                       (control->cmsg_level == IPPROTO_IPV6 && control->cmsg_type == IPV6_RECVERR)) {
                const auto error = read_as<sock_extended_err>(control);
                is_stamp = error.ee_origin == SO_EE_ORIGIN_TIMESTAMPING;
                found.number = error.ee_data;
            }
        });
        found.time = is_stamp ? found.time : 0;
    }
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

}  // namespace probed
