// SPDX-License-Identifier: Apache-2.0
// What the displays of allowed queriers and of allowed responders have in common: the prefixes from which packets are
// accepted, and the UDP ports that are open for them.
#pragma once

#include "base/pm_text.h"
#include "schema/pm_records.h"

// Says that no port is open.
void pm_print_no_applicable_port();

// The count after `label` and the prefixes of one family; with `internal` also the reference counters
// of the family and of each prefix.
void pm_print_allowed_prefixes(pm_text label, const pm_prefixes_info &prefixes);

// The reference counters at `indent`; null aborts.
void print_prefix_counter_generic(const pm_prefix_reference_counters *parcel, int indent);

// An empty line and the heading of a list of ports.
void pm_print_ports_heading(pm_text heading);

// A port under its own label, and its details. Nothing for null.
void pm_print_port_status(pm_text label, const pm_udp_port_rxpol_prefix_status *status);

// What is open for each family, and since when; below the NPU's number if the port is one of an NPU.
void pm_print_port_detail(const pm_udp_port_rxpol_prefix_status &status, int indent);
