// SPDX-License-Identifier: Apache-2.0
// A session that measures delay: computations of a fixed length, each of some packets.
//
// A packet belongs to the computation in which it was sent. A computation that has ended stays open until each of
// its packets is answered or lost, so that no answer is counted in the wrong one; then its delays go into the
// history and to the advertiser.
#pragma once

#include <cstdint>
#include <optional>

#include "perf-probed/session/advertiser.h"
#include "perf-probed/session/history.h"
#include "perf-probed/session/packet_window.h"
#include "perf-probed/session/profile.h"
#include "perf-probed/session/session.h"
#include "perf-probed/session/statistics.h"

namespace probed {

struct computation {
    std::uint32_t number = 0;  // 0: there is none
    std::uint64_t start_msec = 0;
    std::uint32_t sent = 0;
    std::uint32_t received = 0;  // answers in time, with a delay
    std::uint32_t settled = 0;   // packets that are answered, lost or never left
    delay_statistics delays;

    [[nodiscard]] bool active() const { return number != 0; }
};

struct probe_sample {  // of a whole computation
    std::uint64_t start_msec = 0;
    std::uint32_t sent = 0;
    std::uint32_t received = 0;
    delay_values values;
};

struct delay_sample {  // of one packet
    std::uint64_t arrival_msec = 0;
    std::uint64_t delay_nsec = 0;
};

class delay_session final : public session {
public:
    // `tx_interval_usec`: the profile's, or a longer one when the packet rate is limited.
    delay_session(std::uint32_t id, const delay_profile &profile, std::uint32_t tx_interval_usec,
                  const history_sizes &sizes);

    // Other settings for the same session. Other times begin a new computation; histories and counters stay.
    void reconfigure(const delay_profile &profile, std::uint32_t tx_interval_usec, const moment &now);
    void set_static_delay(std::optional<std::uint32_t> delay_usec, const moment &now);
    // Takes back what is advertised: cleared by a person, or as the session is about to be removed.
    void withdraw(pm_advert_reason_e reason, const moment &now) { advertiser_.withdraw(reason, now); }

    void resize_histories(const history_sizes &sizes) override {
        probes_.resize(sizes.probe);
        advertiser_.resize_histories(sizes);
    }
    [[nodiscard]] mono_nsec deadline() override;
    [[nodiscard]] bool on_timer(const moment &now) override;
    void sent(const moment &now, std::uint64_t stamp_bits) override;
    void send_failed(std::uint32_t sequence, send_failure reason) override;
    [[nodiscard]] std::uint32_t next_sequence() const override { return window_.next_sequence(); }
    [[nodiscard]] bool owns(std::uint32_t sequence, std::uint64_t stamp_bits) override {
        return window_.owns(sequence, stamp_bits);
    }
    void on_transmit_stamp(std::uint32_t sequence, wall_nsec time) override;
    reply_kind on_reply(const reply &answer) override;

    [[nodiscard]] const delay_profile &profile() const { return profile_; }
    [[nodiscard]] std::uint32_t tx_interval_usec() const { return tx_interval_usec_; }
    [[nodiscard]] const computation &current() const { return current_; }
    [[nodiscard]] mono_nsec computation_end() const { return end_; }
    // Delays of the packets of the computation under way, the newest MOST_SAMPLES of them.
    [[nodiscard]] const history<delay_sample> &samples() const { return samples_; }
    [[nodiscard]] const history<probe_sample> &probes() const { return probes_; }
    [[nodiscard]] const class advertiser &advertiser() const { return advertiser_; }

    static constexpr std::size_t MOST_SAMPLES = 100;

private:
    void started(const moment &now, mono_nsec delay) override;
    void stopped(const moment &now, pm_probe_running_error_reason reason) override;
    void begin_computation(const moment &now);
    void end_computation(const moment &now);
    void finish(computation *done, const moment &now);
    void settle(const sent_packet &packet, std::int64_t delay_nsec);
    void expire(const moment &now);
    void finish_when_settled(const moment &now);
    [[nodiscard]] mono_nsec timeout() const { return profile_.response_timeout_msec * NSEC_PER_MSEC; }
    [[nodiscard]] mono_nsec tx_interval() const { return tx_interval_usec_ * NSEC_PER_USEC; }

    delay_profile profile_;
    std::uint32_t tx_interval_usec_;
    packet_window window_;
    class advertiser advertiser_;
    history<delay_sample> samples_;
    history<probe_sample> probes_;
    computation current_;
    computation closing_;
    std::uint32_t next_number_ = 1;
    std::uint32_t to_send_ = 0;  // packets of the computation under way
    mono_nsec end_ = NEVER;      // of the computation under way; its start while none is
};

}  // namespace probed
