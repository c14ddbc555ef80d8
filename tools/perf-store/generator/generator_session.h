// SPDX-License-Identifier: Apache-2.0
// The state of one measurement session, from which all its records are made, so that they agree.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <span>

#include "perf-store/generator/generator_random.h"
#include "schema/pm_records.h"

namespace perf_store {

inline constexpr std::uint64_t GEN_BASE_MSEC = 1709647380000;  // start of the newest probe that is complete
inline constexpr std::uint32_t GEN_PROBE_INTERVAL_MSEC = 30000;
inline constexpr std::uint32_t GEN_BURST_INTERVAL_MSEC = 3000;
inline constexpr std::uint32_t GEN_TX_INTERVAL_USEC = 3000000;
inline constexpr std::uint32_t GEN_PACKETS_PER_PROBE = 10;
inline constexpr std::uint32_t GEN_ADVERTISEMENT_INTERVAL_SEC = 120;
inline constexpr std::uint32_t GEN_LIVENESS_MULTIPLIER = 3;
inline constexpr std::uint32_t GEN_LEAST_DELAY_USEC = 50;
inline constexpr std::uint32_t GEN_MOST_DELAY_USEC = 20000;

// How a session's packets travel.
enum class session_family { ipv4, ipv6, mpls, srv6 };

struct session_state {
    pm_measurement_type_e kind = PM_MEASUREMENT_DELAY;
    pm_transport_type_e transport = PM_TRANSPORT_INTERFACE;
    session_family family = session_family::ipv4;
    bool named_profile = false;
    std::uint32_t id = 0;
    pm_probe_running_error_reason reason = PM_NOT_RUNNING_NONE;

    std::uint32_t typical_usec = 0;
    pm_values_parcel current{};
    pm_values_parcel last{};  // of the newest probe that is complete
    std::uint32_t current_sent = 0;
    std::uint32_t current_received = 0;
    std::uint32_t last_sent = 0;
    std::uint32_t last_received = 0;

    pm_values_parcel advertised{};
    std::uint64_t advertised_msec = 0;  // 0: never advertised
    pm_advert_reason_e advertisement_reason = PM_ADVERT_REASON_NONE;

    bool is_up = false;  // found by liveness detection
    std::uint64_t changed_msec = 0;

    pm_querier_delay_counters_parcel counters{};
    pm_intf_exclusive_delay_counters_info_parcel interface_errors{};
    std::uint64_t label_missing = 0;
    std::uint64_t missed = 0;  // liveness: queries without a reply

    random_source random;  // for what the records add

    [[nodiscard]] bool running() const { return reason == PM_NOT_RUNNING_NONE; }
    [[nodiscard]] bool is_liveness() const { return kind == PM_MEASUREMENT_LIVENESS; }
};

// A reason for one object in about 25, none for the others.
[[nodiscard]] pm_probe_running_error_reason gen_reason(random_source *random, pm_transport_type_e transport);

// Delays around a typical one: minimum <= average <= maximum.
[[nodiscard]] pm_values_parcel gen_delays(random_source *random, std::uint32_t typical_usec);

// Fills in what happened to a session whose kind, transport, family, profile, id, typical delay and
// reason are set: counters, delays, advertisements, liveness.
void gen_run_session(random_source *random, session_state *session);

// What a segment list or candidate path shows of the sessions below it: sums and combined delays. Its
// kind, transport, family and profile are those of `like`.
[[nodiscard]] session_state gen_combined(const session_state &like, std::span<const session_state> sessions);

// Adds records that are nothing but 64-bit counters.
template <class Counters>
void gen_add(Counters *to, const Counters &from) {
    using words = std::array<std::uint64_t, sizeof(Counters) / sizeof(std::uint64_t)>;
    auto sum = std::bit_cast<words>(*to);
    const auto added = std::bit_cast<words>(from);
    for (std::size_t i = 0; i < sum.size(); ++i) {
        sum[i] += added[i];
    }
    *to = std::bit_cast<Counters>(sum);
}

}  // namespace perf_store
