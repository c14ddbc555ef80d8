// SPDX-License-Identifier: Apache-2.0
// The headers of nodes and tables: the rules around them, and whether a table still has to print its own.
#pragma once

// Set before each node is read. A table prints its column header while it is set, and clears it.
extern bool pm_show_header_pending;

// 160 '-' and a newline, around node headers.
inline constexpr char pm_show_separator[] =
    "--------------------------------------------------------------------------------"
    "--------------------------------------------------------------------------------\n";

// A blank, 158 '-', a blank and a newline, under the column headers of tables.
inline constexpr char pm_show_table_rule[] =
    " -------------------------------------------------------------------------------"
    "------------------------------------------------------------------------------- \n";

static_assert(sizeof pm_show_separator == 161 + 1 && sizeof pm_show_table_rule == 161 + 1);
