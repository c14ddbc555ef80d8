// SPDX-License-Identifier: Apache-2.0
// The loop over what arrived, and the counters.
#include "perf-probed/reflector/reflector.h"

#include <algorithm>
#include <cerrno>

namespace probed {
namespace {

constexpr int MOST_BATCHES = 16;  // before others get their turn

}  // namespace

void reflector_counters::add(const reflector_counters &other) {
    received += other.received;
    answered += other.answered;
    send_errors += other.send_errors;
    no_route += other.no_route;
    for (std::size_t why = 0; why < REFUSALS; ++why) {
        refused[why] += other.refused[why];
    }
    malformed_tlv += other.malformed_tlv;
    integrity_failed += other.integrity_failed;
    without_kernel_stamp += other.without_kernel_stamp;
}

reflector::reflector() { interfaces_.reserve(MOST_INTERFACES); }

bool reflector::serve(udp_socket &socket, const reply_settings &settings, const clock_source_interface &clocks) {
    for (int batch = 0; batch < MOST_BATCHES; ++batch) {
        const moment now = clocks.now();
        const std::size_t count = batch_.receive(socket, now.wall);
        queue_high_ = std::max(queue_high_, static_cast<std::uint32_t>(count));
        for (std::size_t index = 0; index < count; ++index) {
            answer(batch_[index], socket, settings, now.mono);
        }
        send_replies(socket, settings, clocks);
        if (count < BATCH_PACKETS) {
            return false;
        }
    }
    return true;
}

refusal reflector::check_source(const received_packet &request, const udp_socket &socket) const {
    const ip_address &from = request.from.address;
    if (from.is_any() || from.is_multicast()) {
        return refusal::source_address;
    }
    if (request.from.port == 0 || request.from.port == socket.port()) {
        return refusal::source_port;
    }
    return is_allowed(allowed_, from) ? refusal::none : refusal::not_allowed;
}

void reflector::answer(const received_packet &request, const udp_socket &socket, const reply_settings &settings,
                       mono_nsec now) {
    reflector_interface &at = counted_at(request.interface);
    at.last_packet = now;
    ++at.counters.received;
    ++received_by_family_[request.from.address.family == ip_family::ipv6];
    at.counters.without_kernel_stamp += request.origin == stamp_origin::clock ? 1 : 0;
    const refusal refused = check_source(request, socket);
    const std::span<std::uint8_t> room = replies_.room();
    const built_reply built =
        refused == refusal::none ? build_reply(settings, request, room) : built_reply{refused, 0, 0, false, false};
    if (built.refused != refusal::none) {
        ++at.counters.refused[static_cast<std::size_t>(built.refused)];
        return;
    }
    at.counters.malformed_tlv += built.malformed_tlv ? 1 : 0;
    at.counters.integrity_failed += built.integrity_failed ? 1 : 0;
    const std::size_t place = replies_.size();
    reply_data_[place] = room.first(built.size);
    reply_interfaces_[place] = request.interface;
    const bool scoped = request.from.address.is_link_local();
    replies_.add({reply_data_[place], request.from, request.to.is_multicast() ? ip_address{} : request.to,
                  scoped ? request.interface : 0, built.traffic_class, 0});
}

void reflector::send_replies(udp_socket &socket, const reply_settings &settings, const clock_source_interface &clocks) {
    const std::size_t count = replies_.size();
    if (count == 0) {
        return;
    }
    const wall_nsec now = clocks.now().wall;
    for (std::size_t index = 0; index < count; ++index) {
        complete_reply(settings, now, reply_data_[index]);
        ++counted_at(reply_interfaces_[index]).counters.answered;
    }
    replies_.flush(socket, [this](std::size_t index, int error) {
        reflector_counters &counters = counted_at(reply_interfaces_[index]).counters;
        --counters.answered;
        ++counters.send_errors;
        counters.no_route += error == ENETUNREACH || error == EHOSTUNREACH ? 1 : 0;
    });
}

reflector_interface &reflector::counted_at(std::uint32_t index) {
    const auto found = std::ranges::find(interfaces_, index, &reflector_interface::index);
    if (found != interfaces_.end()) {
        return *found;
    }
    if (interfaces_.size() + 1 < MOST_INTERFACES || (index == 0 && interfaces_.size() < MOST_INTERFACES)) {
        return interfaces_.emplace_back(reflector_interface{index, {}, 0, 0, 0, 0});
    }
    return index == 0 ? interfaces_.back() : counted_at(0);
}

void reflector::tick(mono_nsec now) {
    rate_ = 0;
    for (reflector_interface &each : interfaces_) {
        each.rate = static_cast<std::uint32_t>(each.counters.received - each.at_last_tick);
        each.rate_high = std::max(each.rate_high, each.rate);
        each.at_last_tick = each.counters.received;
        rate_ += each.rate;
        if (now - each.last_packet >= FORGET_AFTER) {
            forgotten_.add(each.counters);
        }
    }
    rate_high_ = std::max(rate_high_, rate_);
    std::erase_if(interfaces_,
                  [now](const reflector_interface &each) { return now - each.last_packet >= FORGET_AFTER; });
}

reflector_counters reflector::totals() const {
    reflector_counters all = forgotten_;
    for (const reflector_interface &each : interfaces_) {
        all.add(each.counters);
    }
    return all;
}

}  // namespace probed
