// SPDX-License-Identifier: Apache-2.0
// Lines that many blocks of a session share, each with its one wording.
#pragma once

#include <cstdint>

#include "base/pm_text.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_clock.h"
#include "schema/pm_records.h"

namespace pm_session_lines {

// Whether a text is absent or empty.
[[nodiscard]] inline bool is_empty(const char *text) { return text == nullptr || *text == '\0'; }

inline void print_sentence(int indent, pm_text sentence) { pm_print_indented<"%s\n">(indent, sentence); }

// The lines of a session's identifiers.
[[nodiscard]] constexpr pm_lines identity_lines(int indent) { return {indent, indent + 20}; }

// "Advertised at: <time> (<age> seconds ago)". The time stamp is in milliseconds since the epoch.
inline void print_since(int indent, pm_text event, std::uint64_t timestamp_msec) {
    const pm_duration age = pm_age_of(timestamp_msec);
    pm_print_indented<"%s at: %s (%u.%u seconds ago)\n">(indent, event, pm_time_str(timestamp_msec), age.seconds,
                                                         age.msec);
}

// "Measured delays (uSec): ...". The values are in microseconds.
inline void print_delays(int indent, pm_text which, const pm_values_parcel &values) {
    pm_print_indented<"%s delays (uSec): avg: %u, min: %u, max: %u, variance: %u\n">(
        indent, which, values.Average, values.Minimum, values.Maximum, values.Variance);
}

inline void print_packets(int indent, std::uint32_t sent, std::uint32_t received) {
    pm_print_indented<"Packets Sent: %u, received: %u\n">(indent, sent, received);
}

// What a probe waits for; tables have the same words.
inline constexpr char PROBE_WILL_START[] = "Probe will start in";
inline constexpr char NEXT_PACKET[] = "Next packet will be sent in";

inline void print_wait(int indent, pm_text event, std::uint32_t remaining_msec) {
    const pm_duration wait = pm_duration_of(remaining_msec);
    pm_print_indented<"%s %u.%u seconds\n">(indent, event, wait.seconds, wait.msec);
}

inline void print_next_probe(int indent, std::uint32_t remaining_msec) {
    const pm_duration wait = pm_duration_of(remaining_msec);
    pm_print_indented<"Next probe scheduled at: %s (in %u.%u seconds)\n">(
        indent, pm_time_str(pm_show_now_msec + remaining_msec), wait.seconds, wait.msec);
}

// Seconds and microseconds, unpadded; the line ends in a blank when the interval is not stretched.
inline void print_packet_interval(int indent, std::uint32_t interval_usec, std::uint32_t is_stretched) {
    pm_print_indented<"Packet sent every %u.%u seconds %s\n">(
        indent, interval_usec / 1000000, interval_usec % 1000000,
        is_stretched != 0 ? "(value stretched for rate-limiting)" : "");
}

}  // namespace pm_session_lines
