// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_chkpt_scb.h"

#include <cstring>

#include "pm_show_client/blocks/chkpt_blob.h"
#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/advert_reason.h"
#include "pm_utils/control_code.h"
#include "schema/pm_records.h"

namespace {

constexpr unsigned LAST_ADVERTISEMENT = 3;  // fields of ChkptScb
constexpr unsigned LAST_ERROR = 4;
constexpr unsigned LAST_NOTIFICATION = 5;

constexpr std::uint32_t DELAY_ADVERTISEMENT = 0;

// Whether a nested message was seen, or anything of one that is damaged.
template <class Nested>
bool has_any(const ChkptScb &scb, unsigned field, const Nested &nested) {
    return chkpt_has(scb, field) || nested.presence != 0;
}

// An interface without a name is none that a filter names.
bool is_filtered_out(const char *interface_name) {
    const char *const wanted = pm_show_options.name;
    return wanted != nullptr && (interface_name == nullptr || std::strcmp(wanted, interface_name) != 0);
}

constexpr pm_lines ADVERTISEMENT_LINES = pm_plain_lines(4);

void print_advertisement(const ChkptAdvertisement &advertisement, std::uint32_t kind) {
    pm_print_heading(2, "Last advertisement");
    ADVERTISEMENT_LINES.text("Advertised at", pm_time_str(advertisement.time_msec));
    ADVERTISEMENT_LINES.text("Advertised reason",
                             pm_advert_reason_str(static_cast<pm_advert_reason_e>(advertisement.reason)));
    if (kind == DELAY_ADVERTISEMENT) {
        pm_print<"%*sAdvertised delays (uSec): avg: %u, min: %u, max: %u, variance: %u\n">(
            4, "", advertisement.average_usec, advertisement.minimum_usec, advertisement.maximum_usec,
            advertisement.variance_usec);
        ADVERTISEMENT_LINES.flag("A flag set", advertisement.a_flag);
    } else {
        // The line has no end: the next one continues on it.
        pm_print<"%*sAdvertised loss metric (%%): %lu">(4, "", advertisement.loss_percent);
    }
    ADVERTISEMENT_LINES.flag("In flight", advertisement.in_flight);
}

void print_control_code(int indent, pm_text heading, bool is_present, const ChkptControlCode &received) {
    pm_print_heading(indent - 2, heading);
    if (!is_present) {
        pm_print<"%*sNone received\n">(indent, "");
        return;
    }
    // Errors are labelled as notifications too.
    pm_print<"%*sNotification: %s (0x%x)\n">(indent, "", pm_control_code_str(received.code), received.code);
    pm_plain_lines(indent).text("Timestamp", pm_time_str(received.time_msec));
}

void print_session(const ChkptScb &scb) {
    pm_print<"\nInterface: %s\n">(static_cast<const char *>(scb.interface_name));
    // The control codes are indented by two less when nothing was advertised, unlike the line that says so.
    int indent = 4;
    if (has_any(scb, LAST_ADVERTISEMENT, scb.last_advertisement)) {
        print_advertisement(scb.last_advertisement, scb.advertisement_kind);
    } else {
        pm_print<"%*sNo advertisments have occured\n">(4, "");
        indent = 2;
    }
    print_control_code(indent, "Last notification control code", has_any(scb, LAST_NOTIFICATION, scb.last_notification),
                       scb.last_notification);
    print_control_code(indent, "Last error control code", has_any(scb, LAST_ERROR, scb.last_error), scb.last_error);
}

}  // namespace

int pm_show_chkpt_scb(const void *decoded_parcel) {
    const auto *const parcel = static_cast<const pm_chkpt_scb_parcel *>(decoded_parcel);
    if (!pm_has_blob(parcel)) {
        pm_print<"No session\n">();
        return parcel == nullptr ? PM_SHOW_NO_RECORD : PM_SHOW_PRINTED;
    }
    const ChkptScb scb = pm_decode_blob(parcel->buf, ChkptScb_decode);
    if (!is_filtered_out(scb.interface_name)) {
        print_session(scb);
    }
    return PM_SHOW_PRINTED;
}
