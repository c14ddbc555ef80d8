// SPDX-License-Identifier: Apache-2.0
// A session in simulated time: a clock that a test moves, and a path whose delays and losses it sets.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "perf-probed/session/session.h"

namespace simulated {

using namespace probed;

inline constexpr wall_nsec START_WALL = 1'709'647'390'000'000'000;
inline constexpr std::uint64_t START_MSEC = 1'709'647'390'000;
inline constexpr mono_nsec START_MONO = 5'000 * NSEC_PER_SEC;
inline constexpr std::int64_t USEC = NSEC_PER_USEC;
inline constexpr std::int64_t MSEC = NSEC_PER_MSEC;
inline constexpr std::int64_t SEC = NSEC_PER_SEC;

// What happens to one packet: when its answers come, after how long; none: it is lost.
struct fate {
    std::vector<std::int64_t> delays;
    std::int64_t inside = 0;  // time at the reflector, not part of the delay
};

class simulation {
public:
    explicit simulation(session *of) : session_(of) {}

    std::function<fate(std::uint32_t sequence)> path = [](std::uint32_t) { return fate{{100 * USEC}}; };
    send_failure failure = send_failure::none;
    std::vector<std::uint32_t> sent_sequences;
    std::vector<std::int64_t> sent_at;  // nanoseconds after the start

    [[nodiscard]] moment now() const { return {START_MONO + time_, START_WALL + time_ + wall_moved_}; }
    [[nodiscard]] std::int64_t elapsed() const { return time_; }

    void start(mono_nsec delay = 0) { session_->set_reason(PM_NOT_RUNNING_NONE, now(), delay); }
    void stop(pm_probe_running_error_reason reason) { session_->set_reason(reason, now()); }

    // Somebody sets the wall clock.
    void move_wall_clock(std::int64_t by) { wall_moved_ += by; }

    // Nothing runs for a while: what came meanwhile is handled late.
    void suspend(std::int64_t nsec) { time_ += nsec; }

    // Runs until `nsec` after the start; what is due at that very moment happens.
    void run_until(std::int64_t nsec) {
        while (true) {
            const mono_nsec timer = session_->deadline();
            const std::int64_t arrival = arrivals_.empty() ? NEVER : arrivals_.begin()->first;
            const std::int64_t due = std::min(timer == NEVER ? NEVER : timer - START_MONO, arrival);
            if (due > nsec) {
                break;
            }
            time_ = std::max(time_, due);
            if (arrival == due) {
                deliver();
            } else if (session_->on_timer(now())) {
                send();
            }
        }
        time_ = std::max(time_, nsec);
    }

private:
    void send() {
        const std::uint32_t sequence = session_->next_sequence();
        const std::uint64_t bits = 0xABC0000000000000U + sequence;
        session_->sent(now(), bits);
        if (failure != send_failure::none) {
            session_->send_failed(sequence, failure);
            return;
        }
        sent_sequences.push_back(sequence);
        sent_at.push_back(time_);
        const fate its = path(sequence);
        for (const std::int64_t delay : its.delays) {
            reply answer;
            answer.sequence = sequence;
            answer.stamp_bits = bits;
            // The reflector's clock is an hour ahead.
            answer.receive_time = now().wall + delay / 2 + 3600 * SEC;
            answer.transmit_time = answer.receive_time + its.inside;
            arrivals_.emplace(time_ + delay + its.inside, answer);
        }
    }

    void deliver() {
        reply answer = arrivals_.begin()->second;
        answer.arrival = {START_MONO + time_, START_WALL + arrivals_.begin()->first + wall_moved_};
        answer.offset = now().offset();
        arrivals_.erase(arrivals_.begin());
        session_->on_reply(answer);
    }

    session *session_;
    std::int64_t time_ = 0;
    std::int64_t wall_moved_ = 0;
    std::multimap<std::int64_t, reply> arrivals_;
};

}  // namespace simulated
