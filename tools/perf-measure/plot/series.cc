// SPDX-License-Identifier: Apache-2.0
// History records taken apart into series.
#include "perf-measure/plot/series.h"

#include <algorithm>
#include <array>
#include <ctime>

#include "pm_utils/measurement_names.h"
#include "schema/pm_records.h"

namespace perf_measure {

namespace {

constexpr std::uint64_t MSEC_PER_SEC = 1000;

sample with_delays(std::uint64_t time_msec, const pm_values_parcel &values) {
    sample result;
    result.time_msec = time_msec;
    result.average = values.Average;
    result.minimum = values.Minimum;
    result.maximum = values.Maximum;
    return result;
}

sample sample_of(const pm_probe_sample_parcel &row) {
    sample result = with_delays(row.ProbeStartTimestamp, row.ProbeValues);
    result.sent = row.PacketsSent;
    result.received = row.PacketsReceived;
    result.has_delay = row.PacketsReceived > 0;
    return result;
}
sample sample_of(const pm_aggr_sample_parcel &row) {
    return with_delays(row.AggregationTimestamp, row.AggregatedProbeValues);
}
sample sample_of(const pm_adv_sample_parcel &row) {
    return with_delays(row.AdvertisementTimestamp, row.AdvertisedValues);
}

template <class Row>
std::vector<sample> samples_of(const parcel_array<Row> &rows, std::uint32_t limit) {
    std::vector<sample> samples;
    for (const Row &row : rows) {
        if (limit != 0 && samples.size() == limit) {
            break;
        }
        samples.push_back(sample_of(row));
    }
    std::erase_if(samples, [](const sample &each) { return each.time_msec == 0; });  // never
    std::ranges::stable_sort(samples, {}, &sample::time_msec);
    return samples;
}

std::vector<sample> samples_of(const pm_history_info &history, std::uint32_t limit) {
    switch (history.HistoryType) {
    case PM_HISTORY_DM_PROBE: return samples_of(history.ProbeHistory.ProbeHistoryList, limit);
    case PM_HISTORY_DM_AGGREGATION: return samples_of(history.AggregatedHistory.AggregatedHistoryList, limit);
    case PM_HISTORY_DM_ADVERTISEMENT: return samples_of(history.AdvertisementHistory.AdvertisementHistoryList, limit);
    default: return {};
    }
}

std::string text_of(const char *text, const char *otherwise) { return printable(text != nullptr ? text : otherwise); }

// Collects the series of one record.
class collector {
public:
    collector(std::string_view segment_list, std::uint32_t limit) : segment_list_(segment_list), limit_(limit) {}

    void collect(const pm_intf_history_parcel &interface) {
        add("interface " + text_of(interface.InterfaceName, "?"), interface.HistoryInfo);
        for (const pm_intf_history_parcel &member : interface.BundleMembers) {
            add("bundle member " + text_of(member.InterfaceName, "?"), member.HistoryInfo);
        }
    }

    void collect(const pm_srpolicy_history_parcel &policy) {
        for (const pm_srpolicy_history_candidate_path_parcel &path : policy.CandidatePathsHistory) {
            const std::string title = "SR policy " + text_of(policy.PolicyName, "?") + ", candidate path " +
                                      std::to_string(path.Preference) + ' ' + pm_srpolicy_origin_str(path.Origin) +
                                      ' ' + std::to_string(path.Discriminator);
            if (segment_list_.empty()) {
                add(title, path.HistoryInfo);
                continue;
            }
            for (const pm_srpolicy_history_segment_list_parcel &list : path.SegmentListsHistory) {
                if (is_wanted(list.SegmentListName)) {
                    add(title + ", segment list " + text_of(list.SegmentListName, "?"), list.HistoryInfo);
                }
            }
        }
    }

    void collect(const pm_rsvpte_history_parcel &tunnel) {
        for (const pm_rsvpte_lsp_history_parcel &lsp : tunnel.LSPList) {
            add("tunnel " + text_of(tunnel.TunnelName, "?") + ", LSP " + std::to_string(lsp.LSP_ID), lsp.HistoryUnion);
        }
    }

    void collect(const pm_endpoint_history_parcel &endpoint) {
        for (const pm_endpoint_history_segment_list_parcel &list : endpoint.EP_SegmentListsHistory) {
            if (segment_list_.empty() || is_wanted(list.SegmentListName)) {
                add("endpoint " + text_of(endpoint.EndpointName, "?") + ", segment list " +
                        text_of(list.SegmentListName, "none"),
                    list.HistoryInfo);
            }
        }
    }

    [[nodiscard]] std::vector<series> take() { return std::move(found_); }

private:
    [[nodiscard]] bool is_wanted(const char *name) const { return name != nullptr && name == segment_list_; }

    void add(std::string title, const pm_history_info &history) {
        found_.push_back({std::move(title), samples_of(history, limit_)});
    }

    std::string_view segment_list_;
    std::uint32_t limit_;
    std::vector<series> found_;
};

// The length of the UTF-8 character at the front of `text`; 0 when there is none.
std::size_t character_length(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length == 0 || length > text.size()) {
        return 0;
    }
    const bool continues = std::ranges::all_of(
        text.substr(1, length - 1), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; });
    const unsigned char second = length > 1 ? static_cast<unsigned char>(text[1]) : 0;
    const bool is_outside = (lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
                            (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F);
    return continues && !is_outside ? length : 0;
}

}  // namespace

summary summarize(const series &drawn) {
    summary result;
    for (const sample &each : drawn.samples) {
        result.first_msec = result.first_msec == 0 ? each.time_msec : result.first_msec;
        result.last_msec = each.time_msec;
        result.sent += each.sent;
        result.lost += each.lost();
        if (each.has_delay) {
            result.lowest = result.has_delay ? std::min(result.lowest, each.minimum) : each.minimum;
            result.highest = std::max(result.highest, each.maximum);
            result.has_delay = true;
        }
    }
    return result;
}

std::vector<series> series_of(history_of what, const void *record, std::string_view segment_list, std::uint32_t limit) {
    collector found(segment_list, limit);
    switch (what) {
    case history_of::interface: found.collect(*static_cast<const pm_intf_history_parcel *>(record)); break;
    case history_of::sr_policy: found.collect(*static_cast<const pm_srpolicy_history_parcel *>(record)); break;
    case history_of::rsvp_te: found.collect(*static_cast<const pm_rsvpte_history_parcel *>(record)); break;
    case history_of::endpoint: found.collect(*static_cast<const pm_endpoint_history_parcel *>(record)); break;
    }
    return found.take();
}

std::string time_text(std::uint64_t time_msec) {
    const auto seconds = static_cast<std::time_t>(time_msec / MSEC_PER_SEC);
    std::tm parts{};
    std::array<char, 32> text{};
    if (::localtime_r(&seconds, &parts) == nullptr ||
        std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts) == 0) {
        return "?";
    }
    return text.data();
}

std::string printable(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const std::size_t length = character_length(text);
        const auto lead = static_cast<unsigned char>(text.front());
        const bool is_drawn = length != 0 && lead >= ' ' && lead != 0x7F;
        result += is_drawn ? text.substr(0, length) : "?";
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return result;
}

}  // namespace perf_measure
