// SPDX-License-Identifier: Apache-2.0
// A session that measures in computations of a fixed length, each of some packets.
//
// A packet belongs to the computation in which it was sent. A computation that has ended stays open until each of
// its packets is answered or lost, so that no answer is counted in the wrong one; then it is handed to whoever makes
// something of it.
#pragma once

#include <cstdint>

#include "perf-probed/session/answered_session.h"
#include "perf-probed/session/profile.h"
#include "perf-probed/session/statistics.h"

namespace probed {

// What one packet contributes: a delay in nanoseconds, or nothing.
inline constexpr std::int64_t NO_VALUE = -1;

struct computation {
    std::uint32_t number = 0;  // 0: there is none
    std::uint64_t start_msec = 0;
    std::uint32_t sent = 0;
    std::uint32_t received = 0;  // answers in time, with a value
    std::uint32_t settled = 0;   // packets that are answered, lost or never left
    delay_statistics delays;     // of all that contributed a value

    [[nodiscard]] bool active() const { return number != 0; }
};

// When the packets of a computation are sent.
struct pace {
    std::uint32_t computation_interval_sec = 0;
    std::uint32_t tx_interval_usec = 0;
    std::uint32_t packets = 0;  // of one computation
    std::uint32_t response_timeout_msec = 0;

    bool operator==(const pace &) const = default;
};
// `tx_interval_usec`: the profile's, or a longer one when the packet rate is limited.
[[nodiscard]] pace pace_of(const computing_profile &profile, std::uint32_t tx_interval_usec);

class computing_session : public answered_session {
public:
    [[nodiscard]] mono_nsec deadline() final;
    [[nodiscard]] bool on_timer(const moment &now) final;
    void sent(const moment &now, std::uint64_t stamp_bits) final;
    reply_kind on_reply(const reply &answer) final;

    [[nodiscard]] const computation &current() const { return current_; }
    [[nodiscard]] mono_nsec computation_end() const { return end_; }

protected:
    computing_session(std::uint32_t id, session_kind kind, const pace &pace);

    [[nodiscard]] const pace &paced() const { return pace_; }
    // Begins a new computation.
    void change_pace(const pace &pace, const moment &now);

    // What an answer in time contributes to its computation; NO_VALUE: it is no answer worth counting.
    [[nodiscard]] virtual std::int64_t value_of(const sent_packet &packet, const reply &answer) = 0;
    // What a lost packet contributes.
    [[nodiscard]] virtual std::int64_t value_of_loss() const { return NO_VALUE; }
    // The session forgets what it has of the computation under way, as another one begins or none.
    virtual void computation_begins() = 0;
    virtual void computed(const computation &done, const moment &now) = 0;
    virtual void halted(const moment &now, pm_probe_running_error_reason reason) = 0;

private:
    void started(const moment &now, mono_nsec delay) final;
    void stopped(const moment &now, pm_probe_running_error_reason reason) final;
    void taken_back(const sent_packet &packet) final;
    void abandon();
    void begin_computation(const moment &now);
    void end_computation(const moment &now);
    void finish(computation *done, const moment &now);
    void settle(const sent_packet &packet, bool answered, std::int64_t value);
    void expire(const moment &now);
    void finish_when_settled(const moment &now);
    [[nodiscard]] computation *computation_of(const sent_packet &packet);
    [[nodiscard]] mono_nsec timeout() const { return pace_.response_timeout_msec * NSEC_PER_MSEC; }

    pace pace_;
    computation current_;
    computation closing_;
    std::uint32_t next_number_ = 1;
    std::uint32_t to_send_ = 0;  // packets of the computation under way
    mono_nsec end_ = NEVER;      // of the computation under way; its start while none is
};

}  // namespace probed
