// SPDX-License-Identifier: Apache-2.0
// The packets that a session sent lately: which answer belongs to which, and what kind of answer it is.
//
// A ring of a power of two slots, indexed by sequence number. An answer must carry the sequence number and
// the 64 time stamp bits of its request, so that nobody who does not see the packets can answer them.
#pragma once

#include <cstdint>
#include <vector>

#include "perf-probed/schedule/clocks.h"

namespace probed {

enum class packet_state : std::uint8_t {
    unused,
    waiting,
    answered,
    lost,    // not answered in time; an answer that still comes is late
    failed,  // never left
};

struct sent_packet {
    std::uint64_t stamp_bits = 0;  // T1 as it is in the packet
    moment sent;                   // T1; the wall time is the kernel's once that is known
    std::int64_t offset = 0;       // wall less monotonic when it was sent
    std::uint32_t sequence = 0;
    std::uint32_t computation = 0;  // the number of the computation that it belongs to
    packet_state state = packet_state::unused;
    bool kernel_stamped = false;
};

enum class reply_kind : std::uint8_t {
    timely,
    late,       // the first answer, after its time
    duplicate,  // answered before
    unknown,    // of no packet that is remembered
};

class packet_window {
public:
    // Room for the packets of `span_usec` microseconds sent `interval_usec` apart, and some more; 16 to 4096.
    packet_window(std::uint64_t span_usec, std::uint32_t interval_usec);

    // The slot of the next packet, whose sequence number is next_sequence(); overwrites the oldest.
    sent_packet &add(const moment &now, std::uint64_t stamp_bits, std::uint32_t computation);
    [[nodiscard]] std::uint32_t next_sequence() const { return next_; }

    // Goes on with the sequence numbers of another window, whose packets are forgotten.
    void continue_from(const packet_window &other);

    // Null when it is not remembered.
    [[nodiscard]] sent_packet *find(std::uint32_t sequence);

    [[nodiscard]] bool owns(std::uint32_t sequence, std::uint64_t stamp_bits) {
        const sent_packet *const packet = find(sequence);
        return packet != nullptr && packet->stamp_bits == stamp_bits;
    }

    // Classifies an answer and marks its packet as answered. `*packet` is null for unknown ones. `*reordered` says
    // whether a timely answer's packet was sent before one that was answered already.
    [[nodiscard]] reply_kind accept(std::uint32_t sequence, std::uint64_t stamp_bits, sent_packet **packet,
                                    bool *reordered);

    // The oldest packet that still waits; null when there is none.
    [[nodiscard]] const sent_packet *oldest_waiting();
    // Marks the oldest waiting packet as lost when it was sent `timeout` or longer ago, and gives it; else null.
    [[nodiscard]] const sent_packet *expire(mono_nsec now, mono_nsec timeout);

    [[nodiscard]] std::size_t capacity() const { return slots_.size(); }

private:
    [[nodiscard]] sent_packet &slot(std::uint32_t sequence) { return slots_[sequence & (slots_.size() - 1)]; }

    std::vector<sent_packet> slots_;
    std::uint32_t next_ = 0;
    std::uint32_t oldest_ = 0;   // none before it waits
    std::uint32_t highest_ = 0;  // sequence number after the newest one that was answered
};

}  // namespace probed
