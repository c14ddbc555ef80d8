// SPDX-License-Identifier: Apache-2.0
// The tables of endpoints: delays, liveness states and probes.
#pragma once

#include "schema/pm_records.h"

// A row for each session of an endpoint that the filter wants, after the header when that is still to come.
void pm_show_endpoint_delay_rows(const pm_endpoint_detail &endpoint);
void pm_show_endpoint_liveness_rows(const pm_endpoint_liveness &endpoint);
void pm_show_endpoint_probe_rows(const pm_endpoint_probe &endpoint);
