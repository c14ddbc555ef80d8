// SPDX-License-Identifier: Apache-2.0
// Synthetic data sets: histories.
#include "tests/perf-store/generator/generated_set.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

using perf_store::gen_options;

constexpr std::uint64_t BASE_MSEC = 1709647380000;
constexpr gen_options MANY{.nodes = 4, .interfaces = 60, .policies = 150, .paths = 2, .endpoints = 80, .tunnels = 60};

const generated_set &many() {
    static const generated_set set(MANY);
    return set;
}

// Histories: oldest first, the newest at the base time or before it.
struct history_check {
    std::size_t samples = 0;
    std::uint64_t newest = 0;

    void time(std::uint64_t msec, bool first, const std::string &path) {
        EXPECT_TRUE(first || msec > last) << path;
        EXPECT_LE(msec, BASE_MSEC) << path;
        EXPECT_GT(msec, BASE_MSEC - 400ULL * 24 * 3600 * 1000) << path;
        last = msec;
        newest = std::max(newest, msec);
        ++samples;
    }
    void delays(const pm_values_parcel &values, const std::string &path) {
        EXPECT_GE(values.Minimum, 50U) << path;
        EXPECT_LE(values.Minimum, values.Average) << path;
        EXPECT_LE(values.Average, values.Maximum) << path;
        EXPECT_LE(values.Maximum, 20000U) << path;
    }
    void check(const pm_history_info &history, const std::string &path) {
        switch (history.HistoryType) {
        case PM_HISTORY_DM_PROBE:
            for (const auto &sample : history.ProbeHistory.ProbeHistoryList) {
                time(sample.ProbeStartTimestamp, &sample == history.ProbeHistory.ProbeHistoryList.begin(), path);
                delays(sample.ProbeValues, path);
                EXPECT_LE(sample.PacketsReceived, sample.PacketsSent) << path;
            }
            break;
        case PM_HISTORY_DM_AGGREGATION:
            for (const auto &sample : history.AggregatedHistory.AggregatedHistoryList) {
                time(sample.AggregationTimestamp, &sample == history.AggregatedHistory.AggregatedHistoryList.begin(),
                     path);
                delays(sample.AggregatedProbeValues, path);
            }
            break;
        case PM_HISTORY_DM_ADVERTISEMENT:
            for (const auto &sample : history.AdvertisementHistory.AdvertisementHistoryList) {
                time(sample.AdvertisementTimestamp,
                     &sample == history.AdvertisementHistory.AdvertisementHistoryList.begin(), path);
                delays(sample.AdvertisedValues, path);
                EXPECT_NE(sample.AdvertisementReason, PM_ADVERT_REASON_NONE) << path;
            }
            break;
        case PM_HISTORY_LIVENESS:
            for (const auto &sample : history.LivenessHistory.LivenessHisotryList) {
                time(sample.LivenessStateChangeTimestamp,
                     &sample == history.LivenessHistory.LivenessHisotryList.begin(), path);
            }
            break;
        case PM_HISTORY_LM_PACKET:
            for (const auto &sample : history.LMPacketHistory.LMPacketHisotryList) {
                time(sample.Timestamp, &sample == history.LMPacketHistory.LMPacketHisotryList.begin(), path);
                EXPECT_LE(sample.RXCounter, sample.TXCounter) << path;
            }
            break;
        default: ADD_FAILURE() << path << ": history type " << history.HistoryType;
        }
    }

    std::uint64_t last = 0;
};

TEST(GeneratorHistories, InterfaceSamplesAreInOrderUpToTheBaseTime) {
    history_check check;
    for (const char *prefix : {"intf/delay/", "intf/loss/"}) {
        many().each<pm_intf_history_parcel>(prefix,
                                            [&](const generated_item &item, const pm_intf_history_parcel &history) {
                                                check.check(history.HistoryInfo, item.path);
                                            });
    }
    EXPECT_GT(check.samples, 1000U);
    EXPECT_EQ(check.newest, BASE_MSEC);
}

TEST(GeneratorHistories, CountsOfPacketsOnlyRise) {
    std::size_t histories = 0;
    many().each<pm_intf_history_parcel>("intf/loss/", [&](const generated_item &item, const auto &interface) {
        std::uint64_t sent = 0;
        std::uint64_t received = 0;
        for (const auto &sample : interface.HistoryInfo.LMPacketHistory.LMPacketHisotryList) {
            EXPECT_GT(sample.TXCounter, sent) << item.path;
            EXPECT_GT(sample.RXCounter, received) << item.path;
            // Nor does a packet that was lost arrive later.
            EXPECT_GE(sample.TXCounter - sample.RXCounter, sent - received) << item.path;
            sent = sample.TXCounter;
            received = sample.RXCounter;
        }
        histories += sent != 0 ? 1 : 0;
    });
    EXPECT_GT(histories, 50U);
}

TEST(GeneratorHistories, PolicySamplesAreInOrderUpToTheBaseTimeOnEveryLevel) {
    history_check check;
    for (const char *prefix : {"srpolicy/delay/", "srpolicy/liveness/"}) {
        many().each<pm_srpolicy_history_parcel>(prefix, [&](const generated_item &item, const auto &policy) {
            for (const auto &candidate : policy.CandidatePathsHistory) {
                check.check(candidate.HistoryInfo, item.path);
                for (const auto &list : candidate.SegmentListsHistory) {
                    check.check(list.HistoryInfo, item.path);
                    for (const auto &path : list.AtomicPathsHistory) {
                        check.check(path.HistoryInfo, item.path);
                    }
                }
            }
        });
    }
    EXPECT_GT(check.samples, 5000U);
    EXPECT_EQ(check.newest, BASE_MSEC);
}

TEST(GeneratorHistories, EndpointAndTunnelSamplesAreInOrderUpToTheBaseTime) {
    history_check check;
    for (const char *kind : {"probe", "aggr", "adv", "live"}) {
        const std::string prefix = std::string("endpoint/delay/") + kind + "-history/";
        many().each<pm_endpoint_history_parcel>(prefix, [&](const generated_item &item, const auto &endpoint) {
            check.check(endpoint.EP_SegmentListsHistory[0].HistoryInfo, item.path);
        });
    }
    many().each<pm_rsvpte_history_parcel>("rsvpte/delay/", [&](const generated_item &item, const auto &tunnel) {
        check.check(tunnel.LSPList[0].HistoryUnion, item.path);
    });
    EXPECT_GT(check.samples, 1000U);
    EXPECT_EQ(check.newest, BASE_MSEC);
}

}  // namespace
