// SPDX-License-Identifier: Apache-2.0
// A session that tells whether an endpoint answers: up at the first answer, down when as many packets in a row
// as the multiplier says were not answered before the next one was due.
#pragma once

#include <cstdint>

#include "perf-probed/session/answered_session.h"
#include "perf-probed/session/history.h"
#include "perf-probed/session/profile.h"

namespace probed {

struct liveness_change {
    std::uint64_t time_msec = 0;  // wall clock
    bool is_up = false;
};

class liveness_session final : public answered_session {
public:
    liveness_session(std::uint32_t id, const liveness_profile &profile, std::uint32_t tx_interval_usec,
                     const history_sizes &sizes);

    // Other settings for the same session, which stays in its state.
    void reconfigure(const liveness_profile &profile, std::uint32_t tx_interval_usec, const moment &now);

    void resize_histories(const history_sizes &sizes) override { changes_.resize(sizes.liveness); }
    [[nodiscard]] mono_nsec deadline() override;
    [[nodiscard]] bool on_timer(const moment &now) override;
    void sent(const moment &now, std::uint64_t stamp_bits) override;
    reply_kind on_reply(const reply &answer) override;

    [[nodiscard]] const liveness_profile &profile() const { return profile_; }
    [[nodiscard]] bool is_up() const { return is_up_; }
    [[nodiscard]] std::uint32_t missed_in_a_row() const { return missed_; }
    [[nodiscard]] std::uint64_t last_change_msec() const { return last_change_msec_; }  // 0: it never was up
    [[nodiscard]] std::uint64_t change_count() const { return change_count_; }          // ever
    [[nodiscard]] const history<liveness_change> &changes() const { return changes_; }

private:
    void started(const moment &now, mono_nsec delay) override;
    void stopped(const moment &now, pm_probe_running_error_reason reason) override;
    void taken_back(const sent_packet &packet) override;
    void change(bool up, const moment &now);
    void miss(const moment &now);

    liveness_profile profile_;
    history<liveness_change> changes_;
    std::uint64_t last_change_msec_ = 0;
    std::uint64_t change_count_ = 0;
    std::uint32_t missed_ = 0;
    bool is_up_ = false;
};

}  // namespace probed
