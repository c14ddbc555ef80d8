// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/profile_lines.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_utils/measurement_names.h"

namespace {

constexpr std::uint32_t VALUES_PER_LINE = 15;

}  // namespace

void pm_profile_heading() { pm_print_heading(2, "Profile configuration"); }

void pm_profile_interval(int indent, pm_text label, std::uint32_t value, std::uint32_t effective, pm_text unit) {
    pm_print_indented<"%-*s: %u (effective: %u) %s\n">(indent, PM_COLON - indent, label, value, effective, unit);
}

void pm_profile_default_title(pm_transport_type_e transport, const char *kind) {
    pm_print_indented<"%s %s (default)\n">(0, pm_transport_type_str(transport), kind);
}

void pm_profile_enabled_default(int indent, pm_text label, bool enabled) {
    pm_lines_at(indent).text(label, enabled ? pm_text("Enabled") : pm_text("Disabled (default)"));
}

void pm_profile_optional(int indent, pm_text label, const std::uint32_t *value) {
    if (value != nullptr) {
        pm_lines_at(indent).number(label, *value);
    }
}

void pm_profile_accelerated(bool enabled) {
    pm_lines_at(4).enabled(enabled ? pm_text("Accelerated advertisement") : pm_text("Advertisement accelerated"),
                           enabled);
}

void pm_profile_sweeping(bool enabled, const pm_record_address &start, std::uint32_t range) {
    pm_lines_at(4).enabled("Destination sweeping mode", enabled);
    if (enabled) {
        // These labels have a colon of their own before the one in the column.
        pm_lines_at(6).address("Starting address:", start);
        pm_lines_at(6).number("Sweeping range:", range);
    }
}

void pm_profile_list(const char *count_label, const char *list_label, int continuation,
                     const parcel_array<std::uint32_t> &values) {
    pm_lines_at(4).number(count_label, values.count);
    if (values.count == 0) {
        return;
    }
    pm_print<"%*s  %s: %d">(4, "", list_label, values[0]);
    for (std::uint32_t i = 1; i < values.count; ++i) {
        if (i % VALUES_PER_LINE == 0) {
            pm_print<",\n%*s%d">(continuation, "", values[i]);
        } else {
            pm_print<", %d">(values[i]);
        }
    }
    pm_print_empty_line();
}

void pm_profile_flow_labels(const parcel_array<std::uint32_t> &labels) {
    pm_profile_list("Flow Label Count", "Flow Labels", 19, labels);
}
