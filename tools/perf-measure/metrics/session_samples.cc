// SPDX-License-Identifier: Apache-2.0
#include "perf-measure/metrics/session_samples.h"

#include "perf-measure/metrics/series_labels.h"
#include "pm_utils/advert_reason.h"
#include "pm_utils/not_running_reason.h"

namespace perf_measure {

namespace {

void clear_results(result_values *values) {
    for (const result_slot slot :
         {DELAY_AVERAGE, DELAY_MINIMUM, DELAY_MAXIMUM, DELAY_VARIANCE, LOSS_RATIO, LIVENESS_UP, LIVENESS_MISSED}) {
        (*values)[slot] = {};
    }
}

}  // namespace

void set_results(const pm_values_parcel &delays, std::uint64_t sent, std::uint64_t received, result_values *values) {
    (*values)[LOSS_RATIO] = metric_value::of_loss(sent, received);
    if (received != 0) {
        (*values)[DELAY_AVERAGE] = metric_value::of_microseconds(delays.Average);
        (*values)[DELAY_MINIMUM] = metric_value::of_microseconds(delays.Minimum);
        (*values)[DELAY_MAXIMUM] = metric_value::of_microseconds(delays.Maximum);
        (*values)[DELAY_VARIANCE] = metric_value::of_microseconds(delays.Variance);
    }
}

void set_results(const pm_scb_probe_results_parcel &last, const pm_scb_probe_results_parcel &current,
                 result_values *values) {
    const pm_scb_probe_results_parcel &chosen = last.NumberOfPacketsSent != 0 ? last : current;
    set_results(chosen.ProbeValues, chosen.NumberOfPacketsSent, chosen.NumberOfPacketsReceived, values);
}

void set_results(const pm_scb_probe_results_parcel &last, const pm_scb_probe_parcel &current, result_values *values) {
    set_results(last, {current.ProbeResults, current.NumberOfPacketsSent, current.NumberOfPacketsReceived}, values);
}

void set_liveness(const pm_liveness_state_info_parcel &state, result_values *values) {
    (*values)[LIVENESS_UP] = metric_value::of_flag(state.SessionIsUp != 0);
    (*values)[LIVENESS_MISSED] = metric_value::of_number(state.MissCount);
    (*values)[LIVENESS_CHANGED] = metric_value::of_moment(state.LastSessionStateChangeTimestamp);
}

void set_advertisement(const pm_scb_last_advert_parcel &last, result_values *values) {
    (*values)[ADVERTISED] = metric_value::of_moment(last.TimeOfAdvertisement);
}

void add_running(pm_probe_running_error_reason reason, const std::string &labels, result_values *values,
                 metric_store *metrics) {
    (*values)[RUNNING] = metric_value::of_flag(reason == PM_NOT_RUNNING_NONE);
    if (reason != PM_NOT_RUNNING_NONE) {
        clear_results(values);
        std::string with_reason = labels;
        append_label("reason", pm_not_running_reason_str(reason), &with_reason);
        metrics->add(metric_group::reasons, with_reason, metric_value::of_flag(true));
    }
}

void add_session(const std::string &item, std::string_view path, const pm_scb_parcel &session, metric_store *metrics) {
    const std::string labels = series_labels(item, path, session.SessionId, kind_word(session.MeasurementType));
    const pm_scb_probe_parcel &probe = session.CurrentProbe;
    result_values values;
    set_results(probe.ProbeResults, probe.NumberOfPacketsSent, probe.NumberOfPacketsReceived, &values);
    add_running(probe.ProbeNotRunningReason, labels, &values, metrics);
    values[PROBE_STARTED] = metric_value::of_moment(probe.ProbeStartTimeStamp);
    set_advertisement(session.LastAdvertisementInformation, &values);
    metrics->add(metric_group::results, labels, values);
    add_counters(session.SessionCounters, labels, {}, metrics);
}

}  // namespace perf_measure
