// SPDX-License-Identifier: Apache-2.0
// What a probe has measured, and what it does next.
#pragma once

#include "schema/pm_records.h"

// Each block is a heading at `indent` and lines indented by two more, unless it says otherwise. The records are never
// null.

// Packets and delays of a computation under `title`; `empty_text` when no packet was sent.
void pm_show_probe_results(const pm_scb_probe_results_parcel *results, int indent, const char *title,
                           const char *empty_text);

// The running probe. The lines on what comes next are at `indent` like the heading.
void pm_show_current_computation(const pm_scb_probe_parcel *probe, int indent);

// The lines of the running probe without a heading: those on the past at `indent`, those on what comes
// next at `schedule_indent`. False when the probe has not started: a line said so.
[[nodiscard]] bool pm_show_probe_lines(const pm_scb_probe_parcel *probe, int indent, int schedule_indent);

// The packets of a probe as a table.
void pm_show_probe_samples(const parcel_array<pm_scb_sample_parcel> *samples, int indent);

// A session that only sends probes: its identity, its profile and when it sends.
void pm_show_probe_session(const pm_scb_probe_session_parcel *session, int indent);
