// SPDX-License-Identifier: Apache-2.0
// Loss sessions into records.
#include "perf-probed/state/session_records.h"

namespace probed {
namespace {

pm_loss_window_parcel record_window(const session_entry &entry, const loss_window &window) {
    const session_counters &counters = entry.run->counters();
    return {counters.sent, counters.received, window.sent, window.received, window.percent()};
}

pm_history_info history_of(pm_history_type_e type) {
    pm_history_info info{};
    info.HistoryType = type;
    return info;
}

}  // namespace

pm_intf_loss_session_parcel record_loss_session(const session_entry &entry, const moment &now) {
    const loss_session &session = loss_of(entry);
    const advertisement &last = session.advertiser().last();
    pm_intf_loss_session_parcel record{};
    record.SessionId = entry.id();
    record.ProbeWindow = record_window(entry, session.probe_window());
    record.PeriodicWindow = record_window(entry, session.periodic_window());
    record.RollingAverage = session.advertiser().rolling_average();
    record.Advertisement = {last.values.average, last.time_msec, last.reason};
    record.NextProbeStartTimeRemainingInMillisec = msec_until(session.computation_end(), now);
    record.ProbeNotRunningReason = entry.shown_reason();
    return record;
}

pm_history_info record_loss_probe_history(const session_entry &entry, record_arena *arena) {
    pm_history_info info = history_of(PM_HISTORY_LM_PROBE);
    info.LMProbeHistory.LMProbeHisotryList =
        record_list<pm_lm_probe_sample_parcel>(loss_of(entry).probes(), arena, [](const loss_window &each) {
            return pm_lm_probe_sample_parcel{each.start_msec, each.sent, each.received, each.percent()};
        });
    return info;
}

pm_history_info record_loss_packet_history(const session_entry &entry, record_arena *arena) {
    pm_history_info info = history_of(PM_HISTORY_LM_PACKET);
    info.LMPacketHistory.LMPacketHisotryList =
        record_list<pm_lm_pkt_sample_parcel>(loss_of(entry).packets(), arena, [](const packet_counts &each) {
            return pm_lm_pkt_sample_parcel{each.arrival_msec, each.sent, each.received};
        });
    return info;
}

pm_history_info record_loss_aggregated_history(const session_entry &entry, record_arena *arena) {
    pm_history_info info = history_of(PM_HISTORY_LM_AGGREGATION);
    info.LMAggregatedHistory.LMAggregatedHisotryList =
        record_list<pm_lm_aggr_sample_parcel>(loss_of(entry).aggregated(), arena, [](const loss_window &each) {
            return pm_lm_aggr_sample_parcel{each.start_msec, each.sent, each.received, each.percent()};
        });
    return info;
}

pm_history_info record_loss_advertisement_history(const session_entry &entry, record_arena *arena) {
    pm_history_info info = history_of(PM_HISTORY_LM_ADVERTISEMENT);
    info.LMAdvertisementHistory.LMAdvertisementHistoryList = record_list<pm_lm_adv_sample_parcel>(
        loss_of(entry).advertiser().advertised(), arena, [](const advertisement &each) {
            return pm_lm_adv_sample_parcel{each.time_msec, each.reason, each.values.average};
        });
    return info;
}

}  // namespace probed
