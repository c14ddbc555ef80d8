// What the tables of sessions share. A row has no line end of its own: the line break before the next item,
// or the end of the listing, ends it.
#pragma once

#include <cstdint>

#include "pm_show_client/lines.h"
#include "pm_show_client/pm_show_options.h"

// Prints a table's column headers with `print_header` and the rule under them, once for each node.
template <class PrintHeader>
void pm_print_table_header(PrintHeader print_header) {
    if (pm_show_header_pending) {
        print_header();
        pm_print<"%s">(pm_show_table_rule);
        pm_show_header_pending = false;
    }
}

// In place of the columns behind the name.
void pm_print_no_session();

// In place of the columns of a session: a text, or that it does not run, or not yet.
void pm_print_wide_cell(const char *text);
void pm_print_not_running_cell(pm_probe_running_error_reason reason);
void pm_print_probe_will_start_cell(std::uint32_t remaining_msec);

// The columns of a delay session: packets and delays (average, minimum, maximum and variance in
// microseconds), or one of the texts above.
void pm_print_delay_cells(const pm_scb_probe_parcel &probe);
