// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/advertisement.h"

#include "pm_show_client/blocks/label_lines.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/session_lines.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/advert_reason.h"

using namespace pm_session_lines;

void pm_show_last_advertisement(const pm_scb_last_advert_parcel *advertisement, int indent, bool always_show_reason) {
    pm_print_heading(indent, "Last advertisement");
    indent += 2;
    if (advertisement->TimeOfAdvertisement == 0) {
        print_sentence(indent, "No advertisements have occured");
        return;
    }
    const pm_lines lines = pm_plain_lines(indent);
    print_since(indent, "Advertised", advertisement->TimeOfAdvertisement);
    const bool withdraws = pm_advert_reason_withdraws_values(advertisement->AdvertisementReason);
    if (withdraws || always_show_reason) {
        lines.text("Advertised reason", pm_advert_reason_str(advertisement->AdvertisementReason));
    }
    if (!withdraws) {
        print_delays(indent, "Advertised", advertisement->AdvertisedValues);
        lines.flag("A flag set", advertisement->AFlagSet);
    }
    if (pm_show_options.internal) {
        lines.flag("Msg in flight", advertisement->MsgInFlight);
    }
}

void pm_show_next_advertisement(const pm_scb_next_advert_parcel *advertisement, std::uint32_t interval_sec,
                                int indent) {
    pm_print_heading(indent, "Next advertisement");
    indent += 2;
    const std::uint32_t probes = advertisement->AdvertisementIntervalProbesRemaining;
    if (interval_sec == 0) {
        print_sentence(indent, "Periodic advertisement disabled");
    } else if (interval_sec != PM_NO_ADVERTISEMENT_INTERVAL && probes != 0) {
        pm_print_indented<"Threshold check scheduled in %u more probe%s (roughly every %u seconds)\n">(
            indent, probes, probes == 1 ? "" : "s", interval_sec);
    } else if (interval_sec != PM_NO_ADVERTISEMENT_INTERVAL) {
        pm_print_indented<"Check scheduled at the end of the current computation (roughly every %u seconds)\n">(
            indent, interval_sec);
    }
    // The minimum decides, not a count.
    if (advertisement->AdvertisementIntervalValues.Minimum != 0) {
        print_delays(indent, "Aggregated", advertisement->AdvertisementIntervalValues);
    } else {
        print_sentence(indent, "No probes completed");
    }
    if (advertisement->RollingAverage != 0) {
        pm_plain_lines(indent).number("Rolling average (uSec)", advertisement->RollingAverage);
    }
}

void pm_show_next_advertisement_of_probe(const pm_scb_probe_parcel *probe,
                                         const pm_scb_next_advert_parcel *advertisement, std::uint32_t interval_sec,
                                         int indent) {
    if (probe->ProbeNotRunningReason == 0) {
        pm_show_next_advertisement(advertisement, interval_sec, indent);
        return;
    }
    pm_print_heading(indent, "Next advertisement");
    print_sentence(indent + 2, "Advertisement not scheduled as the probe is not running");
}
