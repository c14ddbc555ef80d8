// SPDX-License-Identifier: Apache-2.0
// What happens to a session: packets, delays, advertisements, liveness.
#include "perf-store/generator/generator_session.h"

#include <algorithm>

namespace perf_store {

namespace {

constexpr std::uint32_t MSEC_PER_MINUTE = 60000;

// Reasons that the counters of the transport can explain.
constexpr pm_probe_running_error_reason INTERFACE_REASONS[] = {PM_NOT_RUNNING_INTERFACE_DOWN,
                                                               PM_NOT_RUNNING_NO_MPLS_CAPS, PM_NOT_RUNNING_IPV4_DOWN,
                                                               PM_NOT_RUNNING_NO_NEXT_HOP_MAC};
constexpr pm_probe_running_error_reason POLICY_REASONS[] = {PM_NOT_RUNNING_NO_IP_ADDRESS,
                                                            PM_NOT_RUNNING_NO_SOURCE_ADDRESS};
constexpr pm_probe_running_error_reason TUNNEL_REASONS[] = {PM_NOT_RUNNING_NO_IP_ADDRESS};
constexpr pm_probe_running_error_reason ENDPOINT_REASONS[] = {PM_NOT_RUNNING_NO_IP_ADDRESS,
                                                              PM_NOT_RUNNING_NO_SEGMENT_LIST};

constexpr pm_advert_reason_e ADVERTISEMENT_REASONS[] = {
    PM_ADVERT_REASON_PERIODIC_AVERAGE, PM_ADVERT_REASON_PERIODIC_MINIMUM, PM_ADVERT_REASON_PERIODIC_MAXIMUM,
    PM_ADVERT_REASON_PERIODIC_AVERAGE, PM_ADVERT_REASON_ACCELERATED_AVERAGE};

std::span<const pm_probe_running_error_reason> reasons_of(pm_transport_type_e transport) {
    switch (transport) {
    case PM_TRANSPORT_RSVP_TE: return TUNNEL_REASONS;
    case PM_TRANSPORT_SR_POLICY: return POLICY_REASONS;
    case PM_TRANSPORT_ENDPOINT: return ENDPOINT_REASONS;
    case PM_TRANSPORT_INTERFACE:
    case PM_TRANSPORT_GENERIC: break;
    }
    return INTERFACE_REASONS;
}

// The counter that tells why packets could not be sent.
std::uint64_t *explanation(session_state *session) {
    pm_intf_exclusive_delay_counters_info_parcel &of_interface = session->interface_errors;
    switch (session->reason) {
    case PM_NOT_RUNNING_INTERFACE_DOWN: return &of_interface.QueryPacketSentErrorInterfaceDown;
    case PM_NOT_RUNNING_NO_MPLS_CAPS: return &of_interface.QueryPacketSentErrorNoMPLSCaps;
    case PM_NOT_RUNNING_IPV4_DOWN: return &of_interface.QueryPacketSentErrorIPv4DownWithV4NextHop;
    case PM_NOT_RUNNING_NO_NEXT_HOP_MAC: return &of_interface.QueryPacketSentErrorNextHopMACMissing;
    case PM_NOT_RUNNING_NO_SEGMENT_LIST: return &session->label_missing;
    default: return &session->counters.QueryPacketSentErrorNoIPAddress;
    }
}

void fail_session(random_source *random, session_state *session) {
    const std::uint32_t errors = random->between(4, 40);
    session->counters.QueryPacketSentErrors = errors;
    *explanation(session) = errors;
}

// Probes that are complete, one that runs, and a few packets that were lost on the way.
void count_packets(random_source *random, session_state *session) {
    pm_querier_delay_counters_parcel &counters = session->counters;
    const std::uint32_t probes = random->between(40, 2000);
    const std::uint32_t incomplete = random->one_in(20) ? 1 : 0;
    counters.ProbesStarted = probes + 1;
    counters.ProbesComplete = probes - incomplete;
    counters.ProbesIncomplete = incomplete;
    session->current_sent = random->between(2, GEN_PACKETS_PER_PROBE - 1);
    session->current_received = session->current_sent - (random->one_in(12) ? 1 : 0);
    session->last_sent = GEN_PACKETS_PER_PROBE;
    session->last_received = session->last_sent - (random->one_in(8) ? 1 : 0);
    const std::uint32_t lost = (session->current_sent - session->current_received) +
                               (session->last_sent - session->last_received) + random->below(probes / 20);
    counters.QueryPacketsSent = std::uint64_t{probes} * GEN_PACKETS_PER_PROBE + session->current_sent;
    counters.QueryPacketsReceived = counters.QueryPacketsSent - lost;
    if (session->kind == PM_MEASUREMENT_LOSS) {
        return;
    }
    counters.ReceivedPacketErrorNegativeDelay = random->one_in(20) ? 1 : 0;
    counters.ReceivedPacketErrorDelayExceedsThreshold = random->one_in(25) ? random->between(1, 4) : 0;
}

void advertise(random_source *random, session_state *session) {
    if (random->one_in(8)) {
        return;
    }
    const auto probes = static_cast<std::uint32_t>(session->counters.ProbesComplete);
    session->counters.Advertisement = 1 + random->below(probes / 8);
    if (session->kind == PM_MEASUREMENT_DELAY) {
        session->advertised = gen_delays(random, session->typical_usec);
    }
    session->advertised_msec = GEN_BASE_MSEC - std::uint64_t{random->below(4)} * GEN_PROBE_INTERVAL_MSEC;
    session->advertisement_reason = session->counters.Advertisement == 1
                                        ? PM_ADVERT_REASON_FIRST
                                        : ADVERTISEMENT_REASONS[random->below(std::size(ADVERTISEMENT_REASONS))];
}

// A session that runs and yet is down has lost all packets since it changed.
void watch(random_source *random, session_state *session) {
    session->is_up = !random->one_in(25);
    const std::uint32_t minutes = random->between(1, 600);
    session->changed_msec = GEN_BASE_MSEC - std::uint64_t{minutes} * MSEC_PER_MINUTE;
    pm_querier_delay_counters_parcel &counters = session->counters;
    if (!session->is_up) {
        const std::uint64_t since = std::uint64_t{minutes} * MSEC_PER_MINUTE / GEN_BURST_INTERVAL_MSEC;
        counters.QueryPacketsReceived -= std::min(since, counters.QueryPacketsReceived);
        session->current_received = 0;
        session->last_received = 0;
        session->current = {};
        session->last = {};
    }
    session->missed = counters.QueryPacketsSent - counters.QueryPacketsReceived;
}

// Combines the delays of sessions that have any.
class combined_delays {
public:
    void add(const pm_values_parcel &values) {
        if (values.Average == 0) {
            return;
        }
        ++count_;
        average_ += values.Average;
        variance_ += values.Variance;
        minimum_ = count_ == 1 ? values.Minimum : std::min(minimum_, values.Minimum);
        maximum_ = std::max(maximum_, values.Maximum);
    }
    [[nodiscard]] pm_values_parcel result() const {
        if (count_ == 0) {
            return {};
        }
        return {static_cast<std::uint32_t>(average_ / count_), minimum_, maximum_,
                static_cast<std::uint32_t>(variance_ / count_)};
    }

private:
    std::uint64_t count_ = 0;
    std::uint64_t average_ = 0;
    std::uint64_t variance_ = 0;
    std::uint32_t minimum_ = 0;
    std::uint32_t maximum_ = 0;
};

void add_session(session_state *to, const session_state &from) {
    gen_add(&to->counters, from.counters);
    gen_add(&to->interface_errors, from.interface_errors);
    to->label_missing += from.label_missing;
    to->missed += from.missed;
    to->current_sent += from.current_sent;
    to->current_received += from.current_received;
    to->last_sent += from.last_sent;
    to->last_received += from.last_received;
    to->is_up = to->is_up || from.is_up;
    to->changed_msec = std::max(to->changed_msec, from.changed_msec);
    if (from.running()) {
        to->reason = PM_NOT_RUNNING_NONE;
        to->typical_usec = from.typical_usec;
    }
    if (from.advertised_msec > to->advertised_msec) {
        to->advertised_msec = from.advertised_msec;
        to->advertised = from.advertised;
        to->advertisement_reason = from.advertisement_reason;
    }
}

}  // namespace

pm_probe_running_error_reason gen_reason(random_source *random, pm_transport_type_e transport) {
    const bool down = random->one_in(25);
    const auto reasons = reasons_of(transport);
    const std::uint32_t which = random->below(static_cast<std::uint32_t>(reasons.size()));
    return down ? reasons[which] : PM_NOT_RUNNING_NONE;
}

pm_values_parcel gen_delays(random_source *random, std::uint32_t typical_usec) {
    const std::uint32_t jitter = typical_usec / 50 + 2;
    pm_values_parcel values{};
    values.Average = std::clamp(typical_usec + random->below(jitter), GEN_LEAST_DELAY_USEC, GEN_MOST_DELAY_USEC);
    values.Minimum = std::max(values.Average - random->below(jitter), GEN_LEAST_DELAY_USEC);
    values.Maximum = std::min(values.Average + random->below(jitter), GEN_MOST_DELAY_USEC);
    values.Variance = random->below((values.Average - values.Minimum) / 2 + 1);
    return values;
}

void gen_run_session(random_source *random, session_state *session) {
    session->random = random->branch();
    if (!session->running()) {
        fail_session(random, session);
        session->changed_msec = session->is_liveness() ? GEN_BASE_MSEC : 0;
        return;
    }
    count_packets(random, session);
    if (session->kind != PM_MEASUREMENT_LOSS) {
        session->current = gen_delays(random, session->typical_usec);
        session->last = gen_delays(random, session->typical_usec);
    }
    if (session->is_liveness()) {
        watch(random, session);
    } else {
        advertise(random, session);
    }
}

session_state gen_combined(const session_state &like, std::span<const session_state> sessions) {
    session_state sum;
    sum.kind = like.kind;
    sum.transport = like.transport;
    sum.family = like.family;
    sum.named_profile = like.named_profile;
    sum.typical_usec = like.typical_usec;
    sum.reason = PM_NOT_RUNNING_NO_SEGMENT_LIST;  // of nothing
    if (!sessions.empty()) {
        sum.reason = sessions.front().reason;
        sum.random = sessions.front().random;
    }
    combined_delays current;
    combined_delays last;
    for (const session_state &session : sessions) {
        add_session(&sum, session);
        current.add(session.current);
        last.add(session.last);
    }
    sum.current = current.result();
    sum.last = last.result();
    return sum;
}

}  // namespace perf_store
