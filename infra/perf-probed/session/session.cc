// SPDX-License-Identifier: Apache-2.0
// The parts that all kinds of sessions share.
#include "perf-probed/session/session.h"

#include <cstdlib>

namespace probed {
namespace {

bool clock_was_set(const sent_packet &packet, const reply &answer) {
    return std::llabs(answer.offset - packet.offset) > CLOCK_STEP_NSEC;
}

}  // namespace

void session::set_reason(pm_probe_running_error_reason reason, const moment &now, mono_nsec delay) {
    if (reason == reason_) {
        return;
    }
    reason_ = reason;
    if (reason == PM_NOT_RUNNING_NONE) {
        started(now, delay);
    } else {
        next_send_ = NEVER;
        stopped(now, reason);
    }
}

mono_nsec session::next_after(mono_nsec due, mono_nsec interval, mono_nsec now) {
    const mono_nsec next = due + interval;
    return next > now ? next : due + ((now - due) / interval + 1) * interval;
}

std::int64_t two_way_delay(const sent_packet &packet, const reply &answer) {
    const std::int64_t elapsed =
        clock_was_set(packet, answer) ? answer.arrival.mono - packet.sent.mono : answer.arrival.wall - packet.sent.wall;
    const std::int64_t inside = answer.transmit_time - answer.receive_time;
    return inside < 0 ? -1 : elapsed - inside;
}

std::int64_t near_end_delay(const sent_packet &packet, const reply &answer) {
    return clock_was_set(packet, answer) ? -1 : answer.receive_time - packet.sent.wall;
}

}  // namespace probed
