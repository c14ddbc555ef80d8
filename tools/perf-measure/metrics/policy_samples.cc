// SPDX-License-Identifier: Apache-2.0
// SR policies: candidate paths, and the sessions of their atomic paths.
#include "perf-measure/metrics/item_samples.h"
#include "perf-measure/metrics/series_labels.h"
#include "perf-measure/metrics/session_samples.h"

namespace perf_measure {

namespace {

std::string origin_word(pm_tectl_srpolicy_origin_e origin) {
    switch (origin) {
    case PM_SRPOLICY_ORIGIN_PCE: return "pce";
    case PM_SRPOLICY_ORIGIN_BGP: return "bgp";
    case PM_SRPOLICY_ORIGIN_CONFIGURED: return "configured";
    }
    return std::to_string(static_cast<std::int32_t>(origin));
}

// "100/configured/10": what tells the candidate paths of a policy apart.
template <class CandidatePath>
std::string path_of(const CandidatePath &path) {
    return std::to_string(path.Preference) + '/' + origin_word(path.Origin) + '/' + std::to_string(path.Discriminator);
}

std::string path_of(const std::string &candidate_path, const pm_srpolicy_segment_list_parcel &list) {
    return candidate_path + '/' + (list.SegmentListName != nullptr ? list.SegmentListName : "");
}

void add_atomic_path(const pm_srpolicy_atomic_path_parcel &path, const std::string &item, const std::string &place,
                     bool runs, metric_store *metrics) {
    const bool detects = path.LivenessDetectionEnabled != 0;
    const std::string labels = series_labels(item, place, path.SessionId, detects ? LIVENESS : DELAY);
    result_values values;
    if (runs) {
        set_results(path.LastProbeResults, path.CurrentProbeResults, &values);
    }
    if (runs && detects) {
        set_liveness(path.LivenessDetectionInfo, &values);
    }
    values[PROBE_STARTED] = metric_value::of_moment(path.ProbeStartTimeStamp);
    set_advertisement(path.LastAdvertisementInformation, &values);
    metrics->add(metric_group::results, labels, values);
}

void add_candidate_path(const pm_srpolicy_candidate_path_parcel &path, const std::string &item, metric_store *metrics) {
    const std::string place = path_of(path);
    const bool detects = path.LivenessDetectionEnabled != 0;
    const std::string labels = series_labels(item, place, 0, detects ? LIVENESS : DELAY);
    result_values values;
    set_results(path.LastProbeResults, path.CurrentProbe, &values);
    if (detects) {
        set_liveness(path.LivenessDetectionInfo, &values);
    }
    add_running(path.CurrentProbe.ProbeNotRunningReason, labels, &values, metrics);
    values[PROBE_STARTED] = metric_value::of_moment(path.CurrentProbe.ProbeStartTimeStamp);
    set_advertisement(path.LastAdvertisementInformation, &values);
    metrics->add(metric_group::results, labels, values);
    const bool runs = path.CurrentProbe.ProbeNotRunningReason == PM_NOT_RUNNING_NONE;
    for (const pm_srpolicy_segment_list_parcel &list : path.SegmentLists) {
        const std::string list_place = path_of(place, list);
        for (const pm_srpolicy_atomic_path_parcel &atomic : list.AtomicPaths) {
            add_atomic_path(atomic, item, list_place, runs, metrics);
        }
    }
}

}  // namespace

void add_item(const pm_srpolicy_parcel &policy, const std::string &labels, metric_store *metrics) {
    for (const pm_srpolicy_candidate_path_parcel &path : policy.CandidatePaths) {
        add_candidate_path(path, labels, metrics);
    }
}

void add_item(const pm_srpolicy_counters_parcel &policy, const std::string &labels, metric_store *metrics) {
    for (const pm_srpolicy_candidate_path_counters_parcel &path : policy.CandidateCounters) {
        if (path.Counters != nullptr) {
            add_counters(*path.Counters, series_labels(labels, path_of(path), 0, DELAY), {}, metrics);
        }
        if (path.LivenessCounters != nullptr) {
            add_counters(*path.LivenessCounters, series_labels(labels, path_of(path), 0, LIVENESS), {}, metrics);
        }
    }
}

}  // namespace perf_measure
