// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/history.h"

#include <algorithm>

#include "base/pm_assert.h"
#include "pm_show_client/blocks/lines.h"
#include "pm_show_client/blocks/time_text.h"
#include "pm_show_client/pm_show_options.h"
#include "pm_utils/advert_reason.h"

// A kind of history is a function that prints one: a title, and either a sentence for an empty list or a header and
// rows. The header and row formats of a kind are next to each other; their columns must agree.

namespace {

constexpr char DELAY_TITLE[] = "Delay-Measurement history (uSec)";
constexpr char LOSS_TITLE[] = "Loss-Measurement history";
constexpr char NO_PROBES[] = "No probes have successfully completed";

// The text of a column that holds two counts, with room for two 64-bit numbers.
struct pair_text {
    char text[48];
};

pair_text pair_of(std::uint64_t first, std::uint64_t second) {
    pair_text pair;
    pm_format_text<"%lu/%lu">(pair.text, sizeof pair.text, first, second);
    return pair;
}

// Prints title, header and as many rows as the limit allows; an empty list has a sentence instead. The table
// is at `indent`, the title two less.
template <class Sample, class PrintHeader, class PrintRow>
void print_table(const parcel_array<Sample> &samples, int indent, const char *title, const char *empty_text,
                 PrintHeader print_header, PrintRow print_row) {
    pm_print_heading(indent - 2, title);
    if (samples.count == 0) {
        pm_print_indented<"%s\n">(indent, empty_text);
        return;
    }
    print_header();
    const std::uint32_t limit = pm_show_options.history_limit;  // 0: none
    const std::uint32_t rows = limit == 0 ? samples.count : std::min(limit, samples.count);
    for (std::uint32_t row = 0; row < rows; ++row) {
        print_row(samples[row]);
    }
}

void print_dm_probes(const pm_probe_history_parcel &history, int indent) {
    print_table(
        history.ProbeHistoryList, indent, DELAY_TITLE, NO_PROBES,
        [indent] {
            pm_print_indented<"%-25.25s %10.10s %9.9s %9.9s %9.9s\n">(indent, "Probe Start Timestamp", "Pkt(TX/RX)",
                                                                      "Average", "Min", "Max");
        },
        [indent](const pm_probe_sample_parcel &sample) {
            pm_print_indented<"%-25.25s %10.10s %9u %9u %9u\n">(
                indent, pm_time_str(sample.ProbeStartTimestamp),
                pair_of(sample.PacketsSent, sample.PacketsReceived).text, sample.ProbeValues.Average,
                sample.ProbeValues.Minimum, sample.ProbeValues.Maximum);
        });
}

void print_dm_aggregations(const pm_aggr_history_parcel &history, int indent) {
    print_table(
        history.AggregatedHistoryList, indent, DELAY_TITLE, "No probe aggregations have successfully completed",
        [indent] {
            pm_print_indented<"%-25.25s %9.9s %9.9s %9.9s\n">(indent, "Aggregation Timestamp", "Average", "Min", "Max");
        },
        [indent](const pm_aggr_sample_parcel &sample) {
            const pm_values_parcel &values = sample.AggregatedProbeValues;
            pm_print_indented<"%-25.25s %9u %9u %9u\n">(indent, pm_time_str(sample.AggregationTimestamp),
                                                        values.Average, values.Minimum, values.Maximum);
        });
}

void print_dm_advertisements(const pm_adv_history_parcel &history, int indent) {
    print_table(
        history.AdvertisementHistoryList, indent, DELAY_TITLE, "No advertisements have occured",
        [indent] {
            pm_print_indented<"%-25.25s %9.9s %9.9s %9.9s %13.13s\n">(indent, "Advertisement Timestamp", "Average",
                                                                      "Min", "Max", "Reason");
        },
        [indent](const pm_adv_sample_parcel &sample) {
            const pm_values_parcel &values = sample.AdvertisedValues;
            pm_print_indented<"%-25.25s %9u %9u %9u %13.13s\n">(indent, pm_time_str(sample.AdvertisementTimestamp),
                                                                values.Average, values.Minimum, values.Maximum,
                                                                pm_advert_reason_short_str(sample.AdvertisementReason));
        });
}

constexpr char NO_CHANGES[] = "No liveness session state changed";

const char *up_or_down(std::uint32_t is_up) { return is_up != 0 ? "UP" : "DOWN"; }

void print_liveness(const pm_live_history_parcel &history, int indent) {
    const auto print_line = [indent](const char *time, const char *state) {
        pm_print_indented<"%-35.35s %10.10s\n">(indent, time, state);
    };
    print_table(
        history.LivenessHisotryList, indent, "Liveness-Detection history", NO_CHANGES,
        [&] { print_line("Liveness state change timestamp", "New State"); },
        [&](const pm_live_sample_parcel &sample) {
            print_line(pm_time_str(sample.LivenessStateChangeTimestamp), up_or_down(sample.LivenessStateIsUp));
        });
}

void print_liveness_with_notifications(const pm_live_history_parcel &history, int indent) {
    print_table(
        history.LivenessHisotryList, indent, "Liveness-Detection history (uSec)" /* no time, but so it says */,
        NO_CHANGES,
        [indent] {
            pm_print_indented<"%-35.35s %10.10s %24.24s %15.15s\n">(indent, "Liveness state change timestamp",
                                                                    "New State", "Fast Notification", "Local Label");
        },
        [indent](const pm_live_sample_parcel &sample) {
            pm_print_indented<"%-35.35s %10.10s %24.24s %15u\n">(
                indent, pm_time_str(sample.LivenessStateChangeTimestamp), up_or_down(sample.LivenessStateIsUp),
                sample.SentNotificationToFIB != 0 ? "Sent" : "N/A", sample.LocalLabel);
        });
}

// Probes and aggregations of loss have the same columns.
template <class Sample>
void print_losses(const parcel_array<Sample> &samples, int indent, const char *time_label, const char *empty_text) {
    print_table(
        samples, indent, LOSS_TITLE, empty_text,
        [&] { pm_print_indented<"%-25.25s %40.40s %9.9s\n">(indent, time_label, "Pkt(Sent/Received)", "Loss(%)"); },
        [indent](const Sample &sample) {
            pm_print_indented<"%-25.25s %40.40s %9u\n">(indent, pm_time_str(sample.Timestamp),
                                                        pair_of(sample.NumSentPacket, sample.NumReceivedPacket).text,
                                                        sample.LossPercentage);
        });
}

void print_lm_packets(const pm_lm_pkt_history_parcel &history, int indent) {
    const auto print_line = [indent](const char *time, const char *packets) {
        pm_print_indented<"%-25.25s %40.40s\n">(indent, time, packets);
    };
    print_table(
        history.LMPacketHisotryList, indent, LOSS_TITLE, "No packets have received",
        [&] { print_line("Packet Receive Timestamp", "Pkt(TX/RX)"); },
        [&](const pm_lm_pkt_sample_parcel &sample) {
            print_line(pm_time_str(sample.Timestamp), pair_of(sample.TXCounter, sample.RXCounter).text);
        });
}

void print_lm_advertisements(const pm_lm_adv_history_parcel &history, int indent) {
    print_table(
        history.LMAdvertisementHistoryList, indent, LOSS_TITLE, "No Advertisement have successfully completed",
        [indent] {
            pm_print_indented<"%-25.25s %9.9s %13.13s\n">(indent, "Advertisement Start Timestamp", "Loss", "Reason");
        },
        [indent](const pm_lm_adv_sample_parcel &sample) {
            pm_print_indented<"%-25.25s %9u %13.13s\n">(indent, pm_time_str(sample.Timestamp), sample.LossPercentage,
                                                        pm_advert_reason_short_str(sample.AdvertisementReason));
        });
}

}  // namespace

void print_history_sample_union(const pm_history_info *history, std::uint32_t indent, int variant) {
    const int table_indent = static_cast<int>(indent) + 2;
    switch (history->HistoryType) {
    case PM_HISTORY_DM_PROBE: print_dm_probes(history->ProbeHistory, table_indent); break;
    case PM_HISTORY_DM_AGGREGATION: print_dm_aggregations(history->AggregatedHistory, table_indent); break;
    case PM_HISTORY_DM_ADVERTISEMENT: print_dm_advertisements(history->AdvertisementHistory, table_indent); break;
    case PM_HISTORY_LIVENESS:
        if (variant == PM_HISTORY_WITH_NOTIFICATIONS) {
            print_liveness_with_notifications(history->LivenessHistory, table_indent);
        } else {
            print_liveness(history->LivenessHistory, table_indent);
        }
        break;
    case PM_HISTORY_LM_PROBE:
        print_losses(history->LMProbeHistory.LMProbeHisotryList, table_indent, "Probe Start Timestamp", NO_PROBES);
        break;
    case PM_HISTORY_LM_PACKET: print_lm_packets(history->LMPacketHistory, table_indent); break;
    case PM_HISTORY_LM_AGGREGATION:
        print_losses(history->LMAggregatedHistory.LMAggregatedHisotryList, table_indent, "Aggregation Start Timestamp",
                     "No aggrs have successfully completed");
        break;
    case PM_HISTORY_LM_ADVERTISEMENT: print_lm_advertisements(history->LMAdvertisementHistory, table_indent); break;
    default: PM_ASSERT(false, "FALSE", "pm_show_client", __func__);
    }
}
