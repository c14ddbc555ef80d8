// SPDX-License-Identifier: Apache-2.0
// What the records of all families have in common: results of probes, liveness states, counters.
#pragma once

#include <array>
#include <string>

#include "perf-measure/metrics/metric_store.h"
#include "schema/pm_records.h"

namespace perf_measure {

using result_values = std::array<metric_value, RESULT_SLOTS>;

// Delays and loss of one probe. Without a packet that came back there are no delays, and without one that was sent no
// loss.
void set_results(const pm_values_parcel &delays, std::uint64_t sent, std::uint64_t received, result_values *values);
// Of the last probe that has ended, where one is known, else of the one that runs: early in a probe most packets are on
// their way.
void set_results(const pm_scb_probe_results_parcel &last, const pm_scb_probe_results_parcel &current,
                 result_values *values);
void set_results(const pm_scb_probe_results_parcel &last, const pm_scb_probe_parcel &current, result_values *values);

void set_liveness(const pm_liveness_state_info_parcel &state, result_values *values);
void set_advertisement(const pm_scb_last_advert_parcel &last, result_values *values);
// Whether a probe runs and, beside the results, why it does not. What was measured before it stopped is taken out of
// the results: it says nothing of the present.
void add_running(pm_probe_running_error_reason reason, const std::string &labels, result_values *values,
                 metric_store *metrics);

// A session of an interface or endpoint, with its counters.
void add_session(const std::string &item, std::string_view path, const pm_scb_parcel &session, metric_store *metrics);

// Packets, advertisements and errors by reason, to the groups of counters and errors. Reasons that have not occurred
// are left out unless `all_reasons`.
struct counter_groups {
    metric_group counters = metric_group::counters;
    metric_group errors = metric_group::errors;
    bool all_reasons = false;
};
void add_counters(const pm_delay_counters_info_parcel &counters, const std::string &labels, const counter_groups &to,
                  metric_store *metrics);
void add_counters(const pm_srpolicy_liveness_counters_info_parcel &counters, const std::string &labels,
                  const counter_groups &to, metric_store *metrics);
void add_counters(const pm_endpoint_liveness_counters_info_parcel &counters, const std::string &labels,
                  const counter_groups &to, metric_store *metrics);

// One counter of errors, to a group of its own kind.
void add_error(std::uint64_t count, std::string_view direction, std::string_view reason, const std::string &labels,
               metric_group group, metric_store *metrics);

}  // namespace perf_measure
