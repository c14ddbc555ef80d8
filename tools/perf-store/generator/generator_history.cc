// SPDX-License-Identifier: Apache-2.0
// Histories of sessions.
#include <algorithm>

#include "perf-store/generator/generator_parts.h"

namespace perf_store {

namespace {

constexpr std::uint64_t MOST_PROBES = 10;
constexpr std::uint32_t AGGREGATIONS = 5;
constexpr std::uint64_t MOST_ADVERTISEMENTS = 5;
constexpr std::uint32_t MOST_CHANGES = 4;
constexpr std::uint64_t ADVERTISEMENT_INTERVAL_MSEC = std::uint64_t{GEN_ADVERTISEMENT_INTERVAL_SEC} * 1000;
constexpr std::uint32_t LOCAL_LABEL = 24000;

// The newest sample comes last, at the base time, with the results that the session shows.
pm_probe_history_parcel probe_history(const session_state &session, random_source random, item_memory *memory) {
    const std::uint64_t count = session.running() ? std::min(session.counters.ProbesComplete, MOST_PROBES) : 0;
    auto list = memory->array<pm_probe_sample_parcel>(static_cast<std::uint32_t>(count));
    for (std::uint32_t i = 0; i < list.count; ++i) {
        pm_probe_sample_parcel &sample = list.elements[i];
        const std::uint32_t age = list.count - 1 - i;
        sample.ProbeStartTimestamp = GEN_BASE_MSEC - std::uint64_t{age} * GEN_PROBE_INTERVAL_MSEC;
        sample.ProbeValues = age == 0 ? session.last : gen_delays(&random, session.typical_usec);
        sample.PacketsSent = session.last_sent;
        sample.PacketsReceived = age == 0 || random.one_in(10) ? session.last_received : session.last_sent;
    }
    return {list};
}

pm_aggr_history_parcel aggregated_history(const session_state &session, random_source random, item_memory *memory) {
    auto list = memory->array<pm_aggr_sample_parcel>(session.running() ? AGGREGATIONS : 0);
    for (std::uint32_t i = 0; i < list.count; ++i) {
        pm_aggr_sample_parcel &sample = list.elements[i];
        sample.AggregationTimestamp = GEN_BASE_MSEC - std::uint64_t{list.count - 1 - i} * ADVERTISEMENT_INTERVAL_MSEC;
        sample.AggregatedProbeValues = gen_delays(&random, session.typical_usec);
    }
    return {list};
}

pm_advert_reason_e earlier_reason(random_source *random) {
    return random->one_in(5) ? PM_ADVERT_REASON_ACCELERATED_AVERAGE : PM_ADVERT_REASON_PERIODIC_AVERAGE;
}

// Made backwards, from the last advertisement. The first one ever has a reason of its own.
pm_adv_history_parcel advertisement_history(const session_state &session, random_source random, item_memory *memory) {
    const std::uint64_t ever = session.advertised_msec != 0 ? session.counters.Advertisement : 0;
    auto list = memory->array<pm_adv_sample_parcel>(static_cast<std::uint32_t>(std::min(ever, MOST_ADVERTISEMENTS)));
    std::uint64_t msec = session.advertised_msec;
    for (std::uint32_t i = list.count; i-- > 0;) {
        pm_adv_sample_parcel &sample = list.elements[i];
        const bool newest = i + 1 == list.count;
        sample.AdvertisementTimestamp = msec;
        sample.AdvertisementReason = newest ? session.advertisement_reason : earlier_reason(&random);
        sample.AdvertisedValues = newest ? session.advertised : gen_delays(&random, session.typical_usec);
        if (i == 0 && ever == list.count) {
            sample.AdvertisementReason = PM_ADVERT_REASON_FIRST;
        }
        msec -= ADVERTISEMENT_INTERVAL_MSEC * random.between(1, 4);
    }
    return {list};
}

// Made backwards, from the state that the session is in.
pm_live_history_parcel liveness_history(const session_state &session, random_source random, item_memory *memory) {
    const bool watched = session.is_liveness() && session.changed_msec != 0;
    auto list = memory->array<pm_live_sample_parcel>(watched ? random.between(1, MOST_CHANGES) : 0);
    std::uint64_t msec = session.changed_msec;
    bool is_up = session.is_up;
    for (std::uint32_t i = list.count; i-- > 0;) {
        pm_live_sample_parcel &sample = list.elements[i];
        sample.LivenessStateChangeTimestamp = msec;
        sample.LivenessStateIsUp = is_up ? 1 : 0;
        sample.SentNotificationToFIB = 1;
        sample.LocalLabel = LOCAL_LABEL + session.id % 100000;
        msec -= std::uint64_t{GEN_PROBE_INTERVAL_MSEC} * random.between(1, 500);
        is_up = !is_up;
    }
    return {list};
}

}  // namespace

pm_history_info gen_history(pm_history_type_e type, const session_state &session, item_memory *memory) {
    pm_history_info history{};
    history.HistoryType = type;
    switch (type) {
    case PM_HISTORY_DM_PROBE: history.ProbeHistory = probe_history(session, session.random, memory); break;
    case PM_HISTORY_DM_AGGREGATION:
        history.AggregatedHistory = aggregated_history(session, session.random, memory);
        break;
    case PM_HISTORY_DM_ADVERTISEMENT:
        history.AdvertisementHistory = advertisement_history(session, session.random, memory);
        break;
    case PM_HISTORY_LIVENESS: history.LivenessHistory = liveness_history(session, session.random, memory); break;
    default: break;  // the others are of interfaces only
    }
    return history;
}

}  // namespace perf_store
