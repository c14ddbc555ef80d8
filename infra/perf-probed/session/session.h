// SPDX-License-Identifier: Apache-2.0
// What every session has: its identity, whether it runs, its counters, and when it is due.
//
// A session knows neither sockets nor clocks. The service tells it the time, sends what it asks for, and
// brings the answers; a test does the same with times of its own.
#pragma once

#include <cstdint>
#include <limits>
#include <string>

#include "perf-probed/schedule/clocks.h"
#include "perf-probed/session/packet_window.h"
#include "perf-probed/session/profile.h"
#include "schema/pm_enums.h"

namespace probed {

inline constexpr mono_nsec NEVER = std::numeric_limits<mono_nsec>::max();

// A wall clock that moved by more than this against the monotonic one between two readings was set.
inline constexpr std::int64_t CLOCK_STEP_NSEC = NSEC_PER_MSEC;

// Why a packet was not sent, as far as the shows tell it apart.
enum class send_failure : std::uint8_t {
    none,
    interface_down,  // ENETDOWN
    no_address,      // EADDRNOTAVAIL: the source address is not this host's
    ipv4_down,
    ipv6_down,
    ipv4_ipv6_down,
    next_hop_missing,  // EHOSTUNREACH
    other,             // ENOBUFS and everything else
};

struct session_counters {
    std::uint64_t sent = 0;
    std::uint64_t send_errors[static_cast<unsigned>(send_failure::other) + 1] = {};  // by reason; none is unused
    std::uint64_t received = 0;  // answers of any kind to this session's packets
    std::uint64_t negative_delay = 0;
    std::uint64_t late = 0;
    std::uint64_t missing_tx_stamp = 0;  // of the reflector
    std::uint64_t missing_rx_stamp = 0;
    std::uint64_t duplicate = 0;
    std::uint64_t unknown = 0;  // of no packet that is remembered
    std::uint64_t reordered = 0;
    std::uint64_t lost = 0;
    std::uint64_t probes_started = 0;
    std::uint64_t probes_complete = 0;
    std::uint64_t probes_incomplete = 0;
    std::uint64_t liveness_missed = 0;
    std::uint64_t kernel_stamped = 0;  // answers whose delay rests on the kernel's time stamps at both ends here

    [[nodiscard]] std::uint64_t errors(send_failure reason) const { return send_errors[static_cast<unsigned>(reason)]; }
};

// An answer, read and checked as far as that can be done without the session.
struct reply {
    std::uint32_t sequence = 0;    // of the request
    std::uint64_t stamp_bits = 0;  // of the request: T1
    moment arrival;                // T4; the wall time is the kernel's when `kernel_stamped`
    std::int64_t offset = 0;       // wall less monotonic, by this process's own clocks
    bool kernel_stamped = false;
    bool has_receive_stamp = true;   // T2 is not zero
    bool has_transmit_stamp = true;  // T3 is not zero
    wall_nsec receive_time = 0;      // T2
    wall_nsec transmit_time = 0;     // T3
};

enum class session_kind : std::uint8_t { delay, liveness, probe, loss };

class session {
public:
    session(std::uint32_t id, session_kind kind) : id_(id), kind_(kind) {}
    virtual ~session() = default;
    session(const session &) = delete;
    session &operator=(const session &) = delete;

    [[nodiscard]] std::uint32_t id() const { return id_; }
    [[nodiscard]] session_kind kind() const { return kind_; }
    [[nodiscard]] pm_probe_running_error_reason not_running_reason() const { return reason_; }
    [[nodiscard]] bool is_running() const { return reason_ == PM_NOT_RUNNING_NONE; }
    [[nodiscard]] const session_counters &counters() const { return counters_; }

    // Starts, stops, or changes the reason. Starting sends the first packet `delay` later.
    void set_reason(pm_probe_running_error_reason reason, const moment &now, mono_nsec delay = 0);

    // Other sizes of its histories, which keep the newest entries.
    virtual void resize_histories(const history_sizes &sizes) = 0;

    // When on_timer is due next; NEVER while nothing is.
    [[nodiscard]] virtual mono_nsec deadline() = 0;
    // Does what is due. Returns whether a packet is to be sent now: the caller then reports it with `sent`.
    [[nodiscard]] virtual bool on_timer(const moment &now) = 0;

    // A packet with the sequence number next_sequence() and these time stamp bits goes out now.
    virtual void sent(const moment &now, std::uint64_t stamp_bits) = 0;
    // It did not: the packet that was reported with `sent` is taken back.
    virtual void send_failed(std::uint32_t sequence, send_failure reason) = 0;
    [[nodiscard]] virtual std::uint32_t next_sequence() const = 0;
    // Whether a packet with this number and these time stamp bits was sent lately.
    [[nodiscard]] virtual bool owns(std::uint32_t sequence, std::uint64_t stamp_bits) = 0;
    // The kernel says when a packet left.
    virtual void on_transmit_stamp(std::uint32_t sequence, wall_nsec time) = 0;
    // Returns how the answer was classified.
    virtual reply_kind on_reply(const reply &answer) = 0;

    // When the next packet is due; NEVER when none is planned.
    [[nodiscard]] mono_nsec next_send() const { return next_send_; }
    // How late the packet that on_timer asked for is, in nanoseconds.
    [[nodiscard]] mono_nsec lateness() const { return lateness_; }

protected:
    virtual void started(const moment &now, mono_nsec delay) = 0;
    // It does not run any more, or for another reason than before.
    virtual void stopped(const moment &now, pm_probe_running_error_reason reason) = 0;

    void count_failure(send_failure reason) { ++counters_.send_errors[static_cast<unsigned>(reason)]; }
    // The time after `due`, a whole number of intervals on, that is not past: packets that could not be sent in
    // time, as the process was suspended, are left out and not made up for.
    [[nodiscard]] static mono_nsec next_after(mono_nsec due, mono_nsec interval, mono_nsec now);

    session_counters counters_;
    mono_nsec next_send_ = NEVER;
    mono_nsec lateness_ = 0;

private:
    std::uint32_t id_;
    session_kind kind_;
    pm_probe_running_error_reason reason_ = PM_NOT_RUNNING_CLIENT_NOT_READY;
};

// The delay that an answer shows, in nanoseconds; negative when the clocks contradict each other. When the wall clock
// was set between the packet and its answer, the monotonic clock takes its place in the two-way delay.
[[nodiscard]] std::int64_t two_way_delay(const sent_packet &packet, const reply &answer);
// From here to there; only means something with synchronised clocks. Negative when this clock was set meanwhile.
[[nodiscard]] std::int64_t near_end_delay(const sent_packet &packet, const reply &answer);

}  // namespace probed
