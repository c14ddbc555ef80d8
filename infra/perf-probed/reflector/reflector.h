// SPDX-License-Identifier: Apache-2.0
// The session-reflector: answers what arrives at its sockets, and counts by interface and reason.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "perf-probed/net/address.h"
#include "perf-probed/net/packet_batch.h"
#include "perf-probed/net/udp_socket.h"
#include "perf-probed/reflector/reply_builder.h"
#include "perf-probed/schedule/clocks.h"

namespace probed {

struct reflector_counters {
    std::uint64_t received = 0;
    std::uint64_t answered = 0;
    std::uint64_t send_errors = 0;
    std::uint64_t no_route = 0;  // of the send errors, those without a way back
    std::array<std::uint64_t, REFUSALS> refused{};
    std::uint64_t malformed_tlv = 0;     // answered, with M
    std::uint64_t integrity_failed = 0;  // answered, with I
    std::uint64_t without_kernel_stamp = 0;

    [[nodiscard]] std::uint64_t refused_for(refusal why) const { return refused[static_cast<std::size_t>(why)]; }
    void add(const reflector_counters &other);
};

struct reflector_interface {
    std::uint32_t index = 0;  // of the system; 0: of all for which there was no room
    reflector_counters counters;
    std::uint32_t rate = 0;  // packets in the last whole second
    std::uint32_t rate_high = 0;
    std::uint64_t at_last_tick = 0;
    mono_nsec last_packet = 0;
};

class reflector {
public:
    static constexpr std::size_t MOST_INTERFACES = 64;

    reflector();

    // Only packets from these are answered; empty: from everywhere.
    void allow(std::vector<ip_prefix> prefixes) { allowed_ = std::move(prefixes); }

    // Answers what is there, MOST_BATCHES batches of it at most. Returns whether more may be waiting.
    bool serve(udp_socket &socket, const reply_settings &settings, const clock_source_interface &clocks);

    // Once a second: rates. Interfaces without a packet for FORGET_AFTER go.
    void tick(mono_nsec now);

    // In the order of their first packets.
    [[nodiscard]] const std::vector<reflector_interface> &interfaces() const { return interfaces_; }
    [[nodiscard]] reflector_counters totals() const;
    [[nodiscard]] std::uint64_t received(ip_family family) const {
        return received_by_family_[family == ip_family::ipv6];
    }
    [[nodiscard]] std::uint32_t rate() const { return rate_; }
    [[nodiscard]] std::uint32_t rate_high() const { return rate_high_; }
    [[nodiscard]] std::uint32_t queue_high() const { return queue_high_; }  // packets found waiting at once

    static constexpr mono_nsec FORGET_AFTER = 3600 * NSEC_PER_SEC;

private:
    [[nodiscard]] refusal check_source(const received_packet &request, const udp_socket &socket) const;
    [[nodiscard]] reflector_interface &counted_at(std::uint32_t index);
    void answer(const received_packet &request, const udp_socket &socket, const reply_settings &settings,
                mono_nsec now);
    void send_replies(udp_socket &socket, const reply_settings &settings, const clock_source_interface &clocks);

    std::vector<ip_prefix> allowed_;
    receive_batch batch_;
    send_batch replies_;
    std::array<std::span<std::uint8_t>, BATCH_PACKETS> reply_data_;
    std::array<std::uint32_t, BATCH_PACKETS> reply_interfaces_{};
    std::vector<reflector_interface> interfaces_;  // room for all is made at the start
    reflector_counters forgotten_;                 // of interfaces that went
    std::uint64_t received_by_family_[2] = {};
    std::uint32_t rate_ = 0;
    std::uint32_t rate_high_ = 0;
    std::uint32_t queue_high_ = 0;
};

}  // namespace probed
