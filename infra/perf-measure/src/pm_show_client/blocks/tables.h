// SPDX-License-Identifier: Apache-2.0
// What the tables of sessions share. A row has no line end of its own: the line break before the next item,
// or the end of the listing, ends it.
#pragma once

#include <cstdint>

#include "base/pm_output.h"
#include "pm_show_client/pm_show_headers.h"
#include "schema/pm_records.h"

// Prints a table's column headers with `print_header` and the rule under them, once for each node.
template <class PrintHeader>
void pm_print_table_header(PrintHeader print_header) {
    if (pm_show_header_pending) {
        print_header();
        pm_print<"%s">(pm_show_table_rule);
        pm_show_header_pending = false;
    }
}

// In place of the columns after the name.
void pm_print_no_session();

// The text in place of the columns of a probe that does not run, or not yet.
struct pm_idle_text {
    char text[64];
};

// Fills in the text; false for a probe that runs, which leaves it alone.
[[nodiscard]] bool pm_describe_idle(const pm_scb_probe_parcel &probe, pm_idle_text *idle);

// The texts of a running probe's columns, cut: packets sent and received; average, minimum, maximum and variance
// of the delays in microseconds.
struct pm_delay_texts {
    char packets[16];
    char delays[32];
};
[[nodiscard]] pm_delay_texts pm_describe_delays(const pm_scb_probe_parcel &probe);

// A text across the columns of a session; that it does not run; that of an idle probe, and false when it runs.
void pm_print_wide_cell(const char *text);
void pm_print_not_running_cell(pm_probe_running_error_reason reason);
[[nodiscard]] bool pm_print_idle_cell(const pm_scb_probe_parcel &probe);

// The columns of a delay session of SR policies and endpoints, or the cell of an idle one.
void pm_print_delay_cells(const pm_scb_probe_parcel &probe);
