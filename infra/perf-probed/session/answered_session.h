// SPDX-License-Identifier: Apache-2.0
// A session whose packets are answered: which of them are remembered, and what becomes of them.
#pragma once

#include <cstdint>

#include "perf-probed/session/packet_window.h"
#include "perf-probed/session/session.h"

namespace probed {

class answered_session : public session {
public:
    void send_failed(std::uint32_t sequence, send_failure reason) final;
    [[nodiscard]] std::uint32_t next_sequence() const final { return window_.next_sequence(); }
    [[nodiscard]] bool owns(std::uint32_t sequence, std::uint64_t stamp_bits) final {
        return window_.owns(sequence, stamp_bits);
    }
    void on_transmit_stamp(std::uint32_t sequence, wall_nsec time) final;

    [[nodiscard]] std::uint32_t tx_interval_usec() const { return tx_interval_usec_; }

protected:
    // `span_usec`: how long a packet has to be remembered.
    answered_session(std::uint32_t id, session_kind kind, std::uint64_t span_usec, std::uint32_t tx_interval_usec)
        : session(id, kind), window_(span_usec, tx_interval_usec), tx_interval_usec_(tx_interval_usec) {}

    // Other times: what was sent before is forgotten, its sequence numbers are not used again.
    void change_window(std::uint64_t span_usec, std::uint32_t tx_interval_usec);
    void note_sent(const moment &now, std::uint64_t stamp_bits, std::uint32_t computation);
    // Classifies and counts an answer. `*packet` is null for unknown ones.
    reply_kind classify(const reply &answer, sent_packet **packet);
    // A packet that was reported as sent never left. It is counted.
    virtual void taken_back(const sent_packet &packet) = 0;

    [[nodiscard]] const sent_packet *oldest_waiting() { return window_.oldest_waiting(); }
    // The next packet that was not answered within the timeout, which is counted as lost; null when there is none.
    [[nodiscard]] const sent_packet *next_lost(mono_nsec now, mono_nsec timeout);
    [[nodiscard]] mono_nsec tx_interval() const { return tx_interval_usec_ * NSEC_PER_USEC; }

private:
    packet_window window_;
    std::uint32_t tx_interval_usec_;
};

}  // namespace probed
