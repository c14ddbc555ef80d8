// SPDX-License-Identifier: Apache-2.0
// The packets of the sessions: out, and their answers in.
#include <algorithm>
#include <cerrno>

#include "perf-probed/packet/stamp_packet.h"
#include "perf-probed/service/prober.h"

namespace probed {
namespace {

send_failure failure_of(int error, ip_family family) {
    switch (error) {
    case ENETDOWN:
    case ENODEV:
    case ENXIO: return send_failure::interface_down;
    case EADDRNOTAVAIL:
    case EINVAL: return send_failure::no_address;  // the source address of the packet is not there any more
    case ENETUNREACH: return family == ip_family::ipv4 ? send_failure::ipv4_down : send_failure::ipv6_down;
    case EHOSTUNREACH: return send_failure::next_hop_missing;
    default: return send_failure::other;
    }
}

packet_mode mode_of(const session_entry &entry) {
    return entry.key ? packet_mode::authenticated : packet_mode::unauthenticated;
}

}  // namespace

void prober::queue_packet(session_entry *entry, const moment &now) {
    if (outgoing_.full() || (outgoing_.size() > 0 && outgoing_socket_ != entry->socket)) {
        flush();
    }
    outgoing_socket_ = entry->socket;
    const packet_mode mode = mode_of(*entry);
    const std::span<std::uint8_t> packet = outgoing_.room().first(base_size(mode));
    const std::uint32_t sequence = entry->run->next_sequence();
    const sender_fields fields{sequence, encode_stamp(clock_.format, now.wall), estimate_,
                               static_cast<std::uint16_t>(entry->id())};
    if (!write_request(mode, fields, packet)) {
        return;
    }
    if (entry->key) {
        entry->key->sign_packet(packet);
    }
    entry->run->sent(now, fields.stamp);
    queued_[outgoing_.size()] = {entry->id(), sequence};
    const session_plan &plan = entry->plan;
    const bool scoped = plan.address().is_link_local();
    outgoing_.add({packet,
                   {plan.address(), plan.port(), scoped ? entry->from.interface : 0},
                   entry->from.source,
                   entry->from.interface,
                   plan.traffic_class(),
                   plan.kind == session_kind::probe ? plan.probe.hop_limit : std::uint8_t{0}});
}

void prober::flush() {
    const std::size_t count = outgoing_.size();
    if (count == 0) {
        return;
    }
    sender_socket &from = sockets_[outgoing_socket_];
    for (std::size_t index = 0; index < count; ++index) {
        from.left[from.next_number++ % from.left.size()] = queued_[index];
    }
    bool failed = false;
    counters_.sent += outgoing_.flush(from.socket, [&](std::size_t index, int error) {
        failed = true;
        session_entry *const entry = find(queued_[index].session);
        entry->run->send_failed(queued_[index].sequence, failure_of(error, from.family));
        ++entry->revision;
        schedule(entry);
    });
    if (failed) {  // which packets the kernel counted is not known
        stamps_.read(from.socket, [](std::uint32_t, wall_nsec) {});
        from.socket.restart_transmit_numbers();
        from.next_number = 0;
        std::ranges::fill(from.left, sender_socket::left_packet{});
    }
}

void prober::receive(std::size_t socket) {
    sender_socket &at = sockets_[socket];
    constexpr int MOST_BATCHES = 8;
    for (int batch = 0; batch < MOST_BATCHES; ++batch) {
        // Before the answers, so that their delays are those between the kernel's stamps.
        stamps_.read(at.socket, [&](std::uint32_t number, wall_nsec time) {
            const sender_socket::left_packet &packet = at.left[number % at.left.size()];
            if (session_entry *const entry = find(packet.session)) {
                entry->run->on_transmit_stamp(packet.sequence, time);
            }
        });
        const moment now = clocks_->now();
        const std::size_t count = received_.receive(at.socket, now.wall);
        queue_high_ = std::max(queue_high_, static_cast<std::uint32_t>(count));
        for (std::size_t index = 0; index < count; ++index) {
            take_packet(socket, received_[index], now);
        }
        if (count < BATCH_PACKETS) {
            break;
        }
    }
}

void prober::take_packet(std::size_t socket, const received_packet &packet, const moment &now) {
    const unsigned family = packet.from.address.family == ip_family::ipv6 ? 1 : 0;
    ++counters_.received[family];
    counters_.kernel_stamped += packet.origin != stamp_origin::clock ? 1 : 0;
    counters_.hardware_stamped += packet.origin == stamp_origin::hardware ? 1 : 0;
    reflector_fields fields;
    if (!is_allowed(allowed_, packet.from.address)) {
        ++counters_.not_allowed;
        ++counters_.errors[family];
        return;
    }
    if (packet.cut || !read_reply(packet_mode::unauthenticated, packet.data, &fields)) {
        ++counters_.too_short;
        ++counters_.errors[family];
        return;
    }
    session_entry *entry = nullptr;
    if (fields.ssid != 0) {
        entry = find_by_ssid(socket, packet, fields.ssid, packet_mode::unauthenticated);
    } else if (reflector_fields authenticated; read_reply(packet_mode::authenticated, packet.data, &authenticated)) {
        entry = find_by_ssid(socket, packet, authenticated.ssid, packet_mode::authenticated);
    }
    if (entry == nullptr && fields.ssid == 0) {
        entry = find_without_ssid(socket, packet, fields);
    }
    if (entry == nullptr) {
        ++(fields.ssid != 0 ? counters_.invalid_session : counters_.no_session);
        return;
    }
    take_reply(entry, packet, now);
}

session_entry *prober::find_by_ssid(std::size_t socket, const received_packet &packet, std::uint16_t ssid,
                                    packet_mode mode) const {
    session_entry *const entry = find(ssid);
    const bool fits = entry != nullptr && !entry->removed_at && entry->socket == socket && mode_of(*entry) == mode &&
                      entry->plan.address() == packet.from.address && entry->plan.port() == packet.from.port;
    return fits ? entry : nullptr;
}

// Reflectors of TWAMP Light know no SSID: the session is the one that waits for this very answer.
session_entry *prober::find_without_ssid(std::size_t socket, const received_packet &packet,
                                         const reflector_fields &fields) const {
    const auto [first, last] = peers_.equal_range(packet.from.address);
    for (auto each = first; each != last; ++each) {
        session_entry *const entry =
            find_by_ssid(socket, packet, static_cast<std::uint16_t>(each->second), packet_mode::unauthenticated);
        if (entry != nullptr && entry->run->owns(fields.sender.sequence, fields.sender.stamp)) {
            return entry;
        }
    }
    return nullptr;
}

void prober::take_reply(session_entry *entry, const received_packet &packet, const moment &now) {
    reflector_fields fields;
    if (entry->key && !entry->key->check_packet(packet.data)) {
        ++counters_.bad_hmac;
        ++counters_.errors[packet.from.address.family == ip_family::ipv6 ? 1 : 0];
        return;
    }
    if (!read_reply(mode_of(*entry), packet.data, &fields)) {
        return;
    }
    const stamp_format format = decode_estimate(fields.estimate).format;
    const reply answer{fields.sender.sequence,
                       fields.sender.stamp,
                       {now.mono, packet.time},
                       now.offset(),
                       packet.origin != stamp_origin::clock,
                       fields.receive_stamp != 0,
                       fields.stamp != 0,
                       decode_stamp(format, fields.receive_stamp, packet.time),
                       decode_stamp(format, fields.stamp, packet.time)};
    const change_watch before(*entry);
    if (entry->run->on_reply(answer) == reply_kind::timely) {
        entry->request_ttl = fields.ttl;
        entry->used_source = packet.to;
    }
    touched(entry, before);
    schedule(entry);
}

}  // namespace probed
