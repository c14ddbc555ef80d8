// SPDX-License-Identifier: Apache-2.0
// Endpoints: the delay, liveness and probe sessions of their segment lists.
#include <cstring>

#include "perf-measure/metrics/item_samples.h"
#include "perf-measure/metrics/series_labels.h"
#include "perf-measure/metrics/session_samples.h"

namespace perf_measure {

namespace {

// The way without a segment list is named "None" by the service, and is the endpoint itself.
std::string_view list_path(const char *name) {
    return name == nullptr || std::strcmp(name, "None") == 0 ? std::string_view() : std::string_view(name);
}

void add_liveness(const pm_endpoint_liveness_segment_list_parcel &list, const std::string &item,
                  metric_store *metrics) {
    const std::string labels = series_labels(item, list_path(list.SegmentListName), list.SessionId, LIVENESS);
    result_values values;
    if (list.LivenessDetectionEnabled != 0) {
        set_liveness(list.EPLivenessInfo, &values);
    }
    add_running(list.ProbeNotRunningReason, labels, &values, metrics);
    metrics->add(metric_group::results, labels, values);
}

void add_probe(const pm_endpoint_probe_session_parcel &probe, const std::string &item, metric_store *metrics) {
    const std::string labels = series_labels(item, list_path(probe.SegmentListName), probe.Session.SessionId, PROBE);
    result_values values;
    add_running(probe.Session.ProbeNotRunningReason, labels, &values, metrics);
    metrics->add(metric_group::results, labels, values);
}

}  // namespace

void add_item(const pm_endpoint_common &endpoint, const std::string &labels, metric_store *metrics) {
    for (const pm_endpoint_detail &delay : endpoint.EndpointDelay) {
        metrics->add(metric_group::stale, labels, metric_value::of_flag(delay.IsStale != 0));
        for (const pm_endpoint_consolidated_detail_parcel &profile : delay.EP_Consolidated_Detail) {
            for (const pm_endpoint_detail_segment_list_parcel &list : profile.EP_SegmentLists) {
                for (const pm_scb_parcel &session : list.DelayMeasurementSessions) {
                    add_session(labels, list_path(list.SegmentListName), session, metrics);
                }
            }
        }
    }
    for (const pm_endpoint_liveness &liveness : endpoint.EndpointLiveness) {
        for (const pm_endpoint_consolidated_liveness_parcel &profile : liveness.EP_Consolidated_Liveness) {
            for (const pm_endpoint_liveness_segment_list_parcel &list : profile.EPLivenessSegmentLists) {
                add_liveness(list, labels, metrics);
            }
        }
    }
    for (const pm_endpoint_probe &probe : endpoint.EndpointProbe) {
        for (const pm_endpoint_probe_session_parcel &session : probe.Sessions) {
            add_probe(session, labels, metrics);
        }
    }
}

// The counters of delay sessions are in the sessions themselves.
void add_item(const pm_endpoint_counters_parcel &endpoint, const std::string &labels, metric_store *metrics) {
    for (const pm_endpoint_consolidated_counters_data_parcel &profile : endpoint.ConsolidatedCountersData) {
        for (const pm_endpoint_segment_list_counters_parcel &list : profile.SegmentListCounters) {
            if (list.LivenessCounters != nullptr) {
                add_counters(*list.LivenessCounters,
                             series_labels(labels, list_path(list.SegmentListName), 0, LIVENESS), {}, metrics);
            }
        }
    }
}

}  // namespace perf_measure
