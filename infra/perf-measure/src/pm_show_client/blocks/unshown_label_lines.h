// SPDX-License-Identifier: Apache-2.0
// Called by no show: label lines with their column and indent as arguments. Displays print them through label_lines.h.
#pragma once

#include <cstdint>

#include "schema/pm_records.h"

// A line of `indent` blanks, the label, a colon at column `width` and the value. Cut like every line (lines.h).
void pm_print_label_str(int width, int indent, const char *label, const char *text);
// The unit is not printed.
void pm_print_label_u32(int width, int indent, const char *label, std::uint32_t value, const char *unit);
void pm_print_label_u64(int width, int indent, const char *label, std::uint64_t value, const char *unit);

// The same with the colon at column 48.
void pm_print_counter(int indent, const char *label, std::uint64_t value);

// The same of an address; "Unknown" when it is neither IPv4 nor IPv6.
void pm_print_label_address(const char *label, const pm_record_address &address, int indent, int width);
