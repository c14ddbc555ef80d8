// SPDX-License-Identifier: Apache-2.0
// Interfaces and RSVP-TE tunnels.
#include "perf-measure/metrics/item_samples.h"
#include "perf-measure/metrics/series_labels.h"
#include "perf-measure/metrics/session_samples.h"

namespace perf_measure {

namespace {

// The loss within the last window of a probe. The records' own percentages have no fraction.
void set_loss(const pm_loss_window_parcel &window, result_values *values) {
    (*values)[LOSS_RATIO] = metric_value::of_loss(window.CurrentPacketTXInWindow, window.CurrentPacketRXInWindow);
}

void add_loss_session(const pm_intf_loss_session_parcel &session, const std::string &item, metric_store *metrics) {
    const std::string labels = series_labels(item, "", session.SessionId, LOSS);
    result_values values;
    set_loss(session.ProbeWindow, &values);
    add_running(session.ProbeNotRunningReason, labels, &values, metrics);
    values[ADVERTISED] = metric_value::of_moment(session.Advertisement.TimestampOfAdvertisement);
    metrics->add(metric_group::results, labels, values);
    for (const pm_intf_loss_sub_session_parcel &member : session.InterfaceLossSubSessions) {
        const char *const name = member.InterfaceName != nullptr ? member.InterfaceName : "";
        result_values of_member;
        set_loss(member.ProbeWindow, &of_member);
        metrics->add(metric_group::results, series_labels(item, name, member.SessionId, LOSS), of_member);
    }
}

std::string lsp_path(std::uint32_t id) { return std::string(metric_value::of_number(id).text()); }

}  // namespace

void add_item(const pm_intf_parcel &interface, const std::string &labels, metric_store *metrics) {
    metrics->add(metric_group::stale, labels, metric_value::of_flag(interface.IsStale != 0));
    for (const pm_scb_parcel &session : interface.DelayMeasurementSessions) {
        add_session(labels, "", session, metrics);
    }
    if (interface.LossMeasurementSession != nullptr) {
        add_loss_session(*interface.LossMeasurementSession, labels, metrics);
    }
}

void add_item(const pm_rsvpte_parcel &tunnel, const std::string &labels, metric_store *metrics) {
    for (const pm_rsvpte_lsp_delay_parcel &lsp : tunnel.RSVPTELSPDelaySessions) {
        const std::string series = series_labels(labels, lsp_path(lsp.LSP_ID), lsp.SessionId, DELAY);
        result_values values;
        set_results(lsp.LastProbeResults, lsp.CurrentProbe, &values);
        add_running(lsp.CurrentProbe.ProbeNotRunningReason, series, &values, metrics);
        values[PROBE_STARTED] = metric_value::of_moment(lsp.CurrentProbe.ProbeStartTimeStamp);
        set_advertisement(lsp.LastAdvertisementInformation, &values);
        metrics->add(metric_group::results, series, values);
    }
}

void add_item(const pm_rsvpte_counters_parcel &tunnel, const std::string &labels, metric_store *metrics) {
    for (const pm_rsvpte_lsp_delay_counters_parcel &lsp : tunnel.RSVPTELSPDelayCounters) {
        add_counters(lsp.Counters, series_labels(labels, lsp_path(lsp.LSP_ID), 0, DELAY), {}, metrics);
    }
}

}  // namespace perf_measure
