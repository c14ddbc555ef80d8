// SPDX-License-Identifier: Apache-2.0
// From the records of the store to metrics, one routine for each record type.
//
// Delays and states of a part of an item have the same labels as its counters; the labels of what has a session number
// of its own end with that and the kind of measurement.
#pragma once

#include <string>

#include "perf-measure/metrics/metric_store.h"
#include "schema/pm_records.h"

namespace perf_measure {

// `labels` are those of the item (item_labels), or of the node for what it has once.
void add_item(const pm_intf_parcel &interface, const std::string &labels, metric_store *metrics);
void add_item(const pm_srpolicy_parcel &policy, const std::string &labels, metric_store *metrics);
void add_item(const pm_srpolicy_counters_parcel &policy, const std::string &labels, metric_store *metrics);
void add_item(const pm_rsvpte_parcel &tunnel, const std::string &labels, metric_store *metrics);
void add_item(const pm_rsvpte_counters_parcel &tunnel, const std::string &labels, metric_store *metrics);
void add_item(const pm_endpoint_common &endpoint, const std::string &labels, metric_store *metrics);
void add_item(const pm_endpoint_counters_parcel &endpoint, const std::string &labels, metric_store *metrics);
void add_item(const pm_summary_parcel &summary, const std::string &labels, metric_store *metrics);
void add_item(const pm_resp_summary_parcel &responder, const std::string &labels, metric_store *metrics);

}  // namespace perf_measure
