// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/profile_keys.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_utils/measurement_names.h"

namespace {

using pm_session_lines::is_empty;

void print_profile(const pm_lines &lines, const char *name, const char *type) {
    lines.text("Profile name", name);
    lines.text("Profile type", type);
}

void print_set_profile(const pm_lines &lines, const pm_profile_key_parcel &key) {
    const char *const name = is_empty(key.Name) ? "Not configured" : key.Name;
    const char *const measurement = pm_measurement_type_str(key.MeasurementType);
    if (key.MeasurementType == PM_MEASUREMENT_PROBE && key.Transport_type == PM_TRANSPORT_GENERIC) {
        print_profile(lines, name, measurement);
        return;
    }
    char type[PM_LINE_SIZE];
    pm_format_text<"%s %s">(type, sizeof type, pm_transport_type_str(key.Transport_type), measurement);
    print_profile(lines, name, type);
}

void print_missing_profile(const pm_lines &lines, const char *profile_name) {
    if (is_empty(profile_name)) {
        print_profile(lines, "Not configured", "N/A");
        return;
    }
    char name[PM_LINE_SIZE];
    pm_format_text<"%s %s">(name, sizeof name, profile_name, "(Profile not found)");
    print_profile(lines, name, "N/A");
}

}  // namespace

void pm_show_profile_keys(const pm_profile_key_parcel *key, const char *profile_name, int indent, int width) {
    if (key == nullptr) {
        return;
    }
    pm_print_heading(indent, "Profile Keys");
    const pm_lines lines{indent + 2, width};
    if (key->ProfileIsSet != 0) {
        print_set_profile(lines, *key);
    } else {
        print_missing_profile(lines, profile_name);
    }
}
