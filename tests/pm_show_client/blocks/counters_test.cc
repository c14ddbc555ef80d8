// SPDX-License-Identifier: Apache-2.0
// Counter blocks.
#include "pm_show_client/blocks/counters.h"

#include <gtest/gtest.h>

#include "pm_show_client/pm_show_options.h"
#include "tests/support/captured.h"

namespace {

class Counters : public testing::Test {
protected:
    void SetUp() override { pm_show_options = {}; }
    void TearDown() override { pm_show_options = {}; }
};

pm_delay_counters_info_parcel delay_counters(std::int32_t transport) {
    pm_delay_counters_info_parcel counters{};
    pm_querier_delay_counters_parcel &generic = counters.GenericCounters;
    generic.QueryPacketsSent = 100;
    generic.QueryPacketSentErrors = 1;
    generic.QueryPacketSentErrorNoIPAddress = 2;
    generic.QueryPacketsReceived = 90;
    generic.ReceivedPacketErrorNegativeDelay = 10;
    generic.ReceivedPacketErrorDelayExceedsThreshold = 20;
    generic.ReceivedPacketErrorMissingTxTimestamp = 30;
    generic.ReceivedPacketErrorMissingRxTimestamp = 40;
    generic.ReceivedPacketErrorProbeFull = 50;
    generic.ReceivedPacketErrorProbeNotStarted = 60;
    generic.ReceivedPacketControlCodeError = 70;
    generic.ReceivedPacketControlCodeNotification = 80;
    generic.ProbesStarted = 9;
    generic.ProbesComplete = 8;
    generic.ProbesIncomplete = 7;
    generic.Advertisement = 6;
    counters.ExclusiveCounters.TransportType = static_cast<pm_transport_type_e>(transport);
    return counters;
}

std::string session_counters(const pm_delay_counters_info_parcel &counters, int indent = 0) {
    return captured([&] { pm_show_session_counters(&counters, indent); });
}

TEST_F(Counters, AnInterfaceSumsItsOwnSendErrorsToo) {
    pm_delay_counters_info_parcel counters = delay_counters(PM_TRANSPORT_INTERFACE);
    counters.ExclusiveCounters.InterfaceExclusiveCounters.QueryPacketSentErrorInterfaceDown = 4;
    EXPECT_EQ(session_counters(counters),
              "Packets:\n"
              "  Total sent                                    : 100\n"
              "  Total received                                : 90\n"
              "Errors:\n"
              "  Total sent errors                             : 7\n"
              "  Total received errors                         : 360\n"
              "Probes:\n"
              "  Total started                                 : 9\n"
              "  Total completed                               : 8\n"
              "  Total incomplete                              : 7\n"
              "  Total advertisements                          : 6\n");
}

TEST_F(Counters, EveryInterfaceErrorIsInTheSum) {
    pm_delay_counters_info_parcel counters{};
    counters.ExclusiveCounters.InterfaceExclusiveCounters = {1, 10, 100, 1000, 10000, 100000};
    EXPECT_NE(session_counters(counters).find("Total sent errors                             : 111111\n"),
              std::string::npos);
}

TEST_F(Counters, AnSRPolicySumsTheCommonSendErrorsAndCountsMissedLiveness) {
    pm_delay_counters_info_parcel counters = delay_counters(PM_TRANSPORT_SR_POLICY);
    counters.ExclusiveCounters.SRPolicyExclusiveCounters.LivenessDetectionMissedCount = 5;
    const std::string text = session_counters(counters);
    EXPECT_NE(text.find("  Total sent errors                             : 3\n"), std::string::npos);
    EXPECT_TRUE(
        text.ends_with("  Total advertisements                          : 6\n"
                       "  Total liveness missed count                   : 5\n"));
}

TEST_F(Counters, AnEndpointDoesNotAddItsMissingLabels) {
    pm_delay_counters_info_parcel counters = delay_counters(PM_TRANSPORT_ENDPOINT);
    counters.ExclusiveCounters.EndpointExclusiveCounters = {1000, 5};
    const std::string text = session_counters(counters);
    EXPECT_NE(text.find("  Total sent errors                             : 3\n"), std::string::npos);
    EXPECT_TRUE(text.ends_with("  Total liveness missed count                   : 5\n"));
}

TEST_F(Counters, AnRSVPTETunnelCountsNoMissedLiveness) {
    const std::string text = session_counters(delay_counters(PM_TRANSPORT_RSVP_TE));
    EXPECT_NE(text.find("  Total sent errors                             : 3\n"), std::string::npos);
    EXPECT_EQ(text.find("Total liveness missed count"), std::string::npos);
}

TEST_F(Counters, AnUnknownTransportShowsItsReceivedErrorsAsSent) {
    for (const std::int32_t transport : {4, 77, -1}) {
        const std::string text = session_counters(delay_counters(transport));
        EXPECT_NE(text.find("  Total sent errors                             : 360\n"
                            "  Total received errors                         : 360\n"),
                  std::string::npos);
        EXPECT_EQ(text.find("Total liveness missed count"), std::string::npos);
    }
}

TEST_F(Counters, DetailListsTheReasonsOfAnInterfaceFourFurtherIn) {
    pm_show_options.detail = true;
    pm_delay_counters_info_parcel counters = delay_counters(PM_TRANSPORT_INTERFACE);
    counters.ExclusiveCounters.InterfaceExclusiveCounters = {21, 22, 23, 24, 25, 26};
    EXPECT_EQ(session_counters(counters, 2),
              "  Packets:\n"
              "    Total sent                                  : 100\n"
              "    Total received                              : 90\n"
              "  Errors:\n"
              "      TX:\n"
              "        Reason interface down                   : 21\n"
              "        Reason no MPLS caps                     : 22\n"
              "        Reason IPv4 protocol down               : 23\n"
              "        Reason IPv6 protocol down               : 24\n"
              "        Reason IPv4 and IPv6 protocol down      : 25\n"
              "        Reason next hop MAC missing             : 26\n"
              "        Reason no IP address                    : 2\n"
              "        Reason other                            : 1\n"
              "      RX:\n"
              "        Reason negative delay                   : 10\n"
              "        Reason delay threshold exceeded         : 20\n"
              "        Reason missing TX timestamp             : 30\n"
              "        Reason missing RX timestamp             : 40\n"
              "        Reason probe full                       : 50\n"
              "        Reason probe not started                : 60\n"
              "        Reason control code error               : 70\n"
              "        Reason control code notif               : 80\n"
              "  Probes:\n"
              "    Total started                               : 9\n"
              "    Total completed                             : 8\n"
              "    Total incomplete                            : 7\n"
              "    Total advertisements                        : 6\n");
}

TEST_F(Counters, DetailListsOneSendReasonOfAnEndpoint) {
    pm_delay_counters_info_parcel counters = delay_counters(PM_TRANSPORT_ENDPOINT);
    counters.ExclusiveCounters.EndpointExclusiveCounters = {1000, 5};
    EXPECT_EQ(captured([&] { pm_show_error_reasons(&counters, PM_DIRECTION_TX, 0); }),
              "TX:\n"
              "  Reason missing segment list labels            : 1000\n");
}

TEST_F(Counters, DetailListsTwoSendReasonsOfAnyOtherTransport) {
    for (const std::int32_t transport : {1, 2, 4, -1}) {
        const pm_delay_counters_info_parcel counters = delay_counters(transport);
        EXPECT_EQ(captured([&] { pm_show_error_reasons(&counters, PM_DIRECTION_TX, 0); }),
                  "TX:\n"
                  "  Reason no IP address                          : 2\n"
                  "  Reason other                                  : 1\n");
    }
}

TEST_F(Counters, ADirectionThatIsNoneListsNothing) {
    const pm_delay_counters_info_parcel delay{};
    const pm_srpolicy_liveness_counters_info_parcel policy{};
    const pm_endpoint_liveness_counters_info_parcel endpoint{};
    for (const int direction : {2, -1}) {
        EXPECT_EQ(captured([&] { pm_show_error_reasons(&delay, direction, 0); }), "");
        EXPECT_EQ(captured([&] { pm_show_srpolicy_liveness_reasons(&policy, direction, 0); }), "");
        EXPECT_EQ(captured([&] { pm_show_endpoint_liveness_reasons(&endpoint, direction, 0); }), "");
    }
}

TEST_F(Counters, NoCountersListNoReasons) {
    for (const int direction : {PM_DIRECTION_TX, PM_DIRECTION_RX}) {
        EXPECT_EQ(captured([&] { pm_show_error_reasons(nullptr, direction, 0); }), "");
        EXPECT_EQ(captured([&] { pm_show_srpolicy_liveness_reasons(nullptr, direction, 0); }), "");
        EXPECT_EQ(captured([&] { pm_show_endpoint_liveness_reasons(nullptr, direction, 0); }), "");
    }
}

// In field order: sent, send errors, received, six received errors, four of probes, missed.
constexpr pm_srpolicy_liveness_counters_info_parcel POLICY_LIVENESS = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14};
// The same with the missing labels behind the send errors.
constexpr pm_endpoint_liveness_counters_info_parcel ENDPOINT_LIVENESS = {1, 2, 99, 3,  4,  5,  6, 7,
                                                                         8, 9, 10, 11, 12, 13, 14};

TEST_F(Counters, SRPolicyLivenessShowsItsTotals) {
    EXPECT_EQ(captured([] { pm_show_srpolicy_liveness_counters(&POLICY_LIVENESS, 0); }),
              "Packets:\n"
              "  Total sent                                    : 1\n"
              "  Total received                                : 3\n"
              "Errors:\n"
              "  Total sent errors                             : 2\n"
              "  Total received errors                         : 39\n"
              "Probes:\n"
              "  Total started                                 : 10\n"
              "  Total completed                               : 11\n"
              "  Total incomplete                              : 12\n"
              "  Total advertisements                          : 13\n"
              "  Total liveness missed count                   : 14\n");
}

TEST_F(Counters, EndpointLivenessShowsItsReceivedErrorsTwice) {
    EXPECT_EQ(captured([] { pm_show_endpoint_liveness_counters(&ENDPOINT_LIVENESS, 0); }),
              "Packets:\n"
              "  Total sent                                    : 1\n"
              "  Total received                                : 3\n"
              "Errors:\n"
              "  Total sent errors                             : 39\n"
              "  Total received errors                         : 39\n"
              "Probes:\n"
              "  Total started                                 : 10\n"
              "  Total completed                               : 11\n"
              "  Total incomplete                              : 12\n"
              "  Total advertisements                          : 13\n"
              "  Total liveness missed count                   : 14\n");
}

TEST_F(Counters, OneNegativeDelayOfAnEndpointPrintsOneInBothTotals) {
    pm_endpoint_liveness_counters_info_parcel counters{};
    counters.ReceivedPacketErrorNegativeDelay = 1;
    EXPECT_NE(captured([&] { pm_show_endpoint_liveness_counters(&counters, 0); })
                  .find("  Total sent errors                             : 1\n"
                        "  Total received errors                         : 1\n"),
              std::string::npos);
}

constexpr char LIVENESS_RX_REASONS[] =
    "    RX:\n"
    "      Reason negative delay                     : 4\n"
    "      Reason delay threshold exceeded           : 5\n"
    "      Reason missing TX timestamp               : 6\n"
    "      Reason missing RX timestamp               : 7\n"
    "      Reason probe full                         : 8\n"
    "      Reason probe not started                  : 9\n"
    "Probes:\n";

TEST_F(Counters, DetailListsTheReasonsOfSRPolicyLiveness) {
    pm_show_options.detail = true;
    EXPECT_NE(captured([] { pm_show_srpolicy_liveness_counters(&POLICY_LIVENESS, 0); })
                  .find(std::string("Errors:\n"
                                    "    TX:\n"
                                    "      Reason other                              : 2\n") +
                        LIVENESS_RX_REASONS),
              std::string::npos);
}

TEST_F(Counters, DetailListsTheReasonsOfEndpointLiveness) {
    pm_show_options.detail = true;
    EXPECT_NE(captured([] { pm_show_endpoint_liveness_counters(&ENDPOINT_LIVENESS, 0); })
                  .find(std::string("Errors:\n"
                                    "    TX:\n"
                                    "      Reason missing segment list labels        : 99\n"
                                    "      Reason other                              : 2\n") +
                        LIVENESS_RX_REASONS),
              std::string::npos);
}

}  // namespace
