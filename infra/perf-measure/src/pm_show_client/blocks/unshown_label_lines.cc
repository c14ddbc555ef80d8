// SPDX-License-Identifier: Apache-2.0
// Called by no show: label lines with their column and indent as arguments.
#include "pm_show_client/blocks/unshown_label_lines.h"

#include "pm_show_client/blocks/label_lines.h"

void pm_print_label_str(int width, int indent, const char *label, const char *text) {
    pm_lines{indent, width}.text(label, text);
}

void pm_print_label_u32(int width, int indent, const char *label, std::uint32_t value, const char * /*unit*/) {
    pm_lines{indent, width}.number(label, value);
}

void pm_print_label_u64(int width, int indent, const char *label, std::uint64_t value, const char * /*unit*/) {
    pm_lines{indent, width}.number(label, value);
}

void pm_print_counter(int indent, const char *label, std::uint64_t value) { pm_lines_at(indent).number(label, value); }

void pm_print_label_address(const char *label, const pm_record_address &address, int indent, int width) {
    pm_lines{indent, width}.address(label, address);
}
