// SPDX-License-Identifier: Apache-2.0
// A session that only sends: packets along a path, to be seen by those who are on it. Answers are not waited for.
#pragma once

#include <cstdint>

#include "perf-probed/session/profile.h"
#include "perf-probed/session/session.h"

namespace probed {

class probe_session final : public session {
public:
    probe_session(std::uint32_t id, const probe_profile &profile, std::uint32_t tx_interval_usec)
        : session(id, session_kind::probe), profile_(profile), tx_interval_usec_(tx_interval_usec) {}

    void reconfigure(const probe_profile &profile, std::uint32_t tx_interval_usec, const moment &now) {
        const bool same_times = tx_interval_usec == tx_interval_usec_;
        profile_ = profile;
        tx_interval_usec_ = tx_interval_usec;
        if (!same_times && is_running()) {
            started(now, 0);
        }
    }

    void resize_histories(const history_sizes &) override {}
    [[nodiscard]] mono_nsec deadline() override { return next_send_; }
    [[nodiscard]] bool on_timer(const moment &now) override {
        if (now.mono < next_send_) {
            return false;
        }
        lateness_ = now.mono - next_send_;
        next_send_ = next_after(next_send_, tx_interval_usec_ * NSEC_PER_USEC, now.mono);
        return true;
    }
    void sent(const moment &, std::uint64_t) override {
        ++sequence_;
        ++counters_.sent;
    }
    void send_failed(std::uint32_t, send_failure reason) override {
        --counters_.sent;
        count_failure(reason);
    }
    [[nodiscard]] std::uint32_t next_sequence() const override { return sequence_; }
    [[nodiscard]] bool owns(std::uint32_t, std::uint64_t) override { return false; }
    void on_transmit_stamp(std::uint32_t, wall_nsec) override {}
    reply_kind on_reply(const reply &) override { return reply_kind::unknown; }

    [[nodiscard]] const probe_profile &profile() const { return profile_; }
    [[nodiscard]] std::uint32_t tx_interval_usec() const { return tx_interval_usec_; }

private:
    void started(const moment &now, mono_nsec delay) override { next_send_ = now.mono + delay; }
    void stopped(const moment &, pm_probe_running_error_reason) override {}

    probe_profile profile_;
    std::uint32_t tx_interval_usec_;
    std::uint32_t sequence_ = 0;
};

}  // namespace probed
