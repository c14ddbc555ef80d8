// SPDX-License-Identifier: Apache-2.0
// Synthetic data sets: the values of the records make sense, alone and together.
#include "tests/perf-store/generator/generated_set.h"

#include <map>

#include <gtest/gtest.h>

namespace {

using perf_store::gen_options;

constexpr gen_options MANY{.nodes = 4, .interfaces = 60, .policies = 150, .paths = 2, .endpoints = 80, .tunnels = 60};

const generated_set &many() {
    static const generated_set set(MANY);
    return set;
}

// What the session items of one node, kind and transport add up to.
struct session_sums {
    std::uint32_t sessions = 0;
    std::uint32_t running = 0;
    std::uint64_t sent = 0;
    std::uint64_t received = 0;
    std::uint64_t errors = 0;

    void add(const pm_scb_parcel &block) {
        const pm_querier_delay_counters_parcel &counters = block.SessionCounters.GenericCounters;
        ++sessions;
        running += block.CurrentProbe.ProbeNotRunningReason == PM_NOT_RUNNING_NONE ? 1 : 0;
        sent += counters.QueryPacketsSent;
        received += counters.QueryPacketsReceived;
        errors += counters.QueryPacketSentErrors;
    }
};

session_sums interface_sums(std::uint32_t node, pm_measurement_type_e kind) {
    session_sums sums;
    many().each<pm_session_parcel>("session/", [&](const generated_item &item, const pm_session_parcel &session) {
        if (item.node == node && session.Session.type == PM_TRANSPORT_INTERFACE && session.MeasurementType == kind) {
            sums.add(session.Session.InterfaceSession.Session);
        }
    });
    return sums;
}

session_sums endpoint_sums(pm_measurement_type_e kind) {
    session_sums sums;
    many().each<pm_session_parcel>("session/", [&](const generated_item &, const pm_session_parcel &session) {
        if (session.Session.type == PM_TRANSPORT_ENDPOINT && session.MeasurementType == kind) {
            sums.add(session.Session.EndpointSession.Session);
        }
    });
    return sums;
}

void expect_totals(const session_sums &sums, const pm_delay_transport_summary_parcel &summary) {
    const pm_delay_session_counter_parcel &counts = summary.DelaySessionCounters;
    EXPECT_GT(sums.sessions, 0U);
    EXPECT_EQ(counts.TotalDelaySessions, sums.sessions);
    EXPECT_EQ(counts.TotalProbeRunningDelaySessions, sums.running);
    EXPECT_EQ(counts.TotalProbeRunningWithErrorDelaySessions, sums.sessions - sums.running);
    EXPECT_EQ(counts.TotalProbeRunningIPv4DelaySessions + counts.TotalProbeRunningIPv6DelaySessions +
                  counts.TotalProbeRunningMPLSDelaySessions + counts.TotalProbeRunningSRv6DelaySessions,
              sums.running);
    EXPECT_EQ(summary.DelayTransportCounters.GenericCounters.QueryPacketsSent, sums.sent);
    EXPECT_EQ(summary.DelayTransportCounters.GenericCounters.QueryPacketsReceived, sums.received);
    EXPECT_EQ(summary.DelayTransportCounters.GenericCounters.QueryPacketSentErrors, sums.errors);
}

TEST(GeneratorSummary, InterfaceTotalsAreThoseOfTheCardsSessions) {
    for (const std::uint32_t card : {0x10U, 0x20U}) {
        const pm_summary_parcel &summary = many().summary(card);
        EXPECT_EQ(summary.TotalInterfaces, 30U);
        expect_totals(interface_sums(card, PM_MEASUREMENT_DELAY), summary.DelaySummary.InterfaceDelaySummary);
        const session_sums loss = interface_sums(card, PM_MEASUREMENT_LOSS);
        EXPECT_EQ(summary.LossSummary.InterfaceLossSummary.TotalLossSessions, loss.sessions);
        EXPECT_EQ(summary.LossSummary.DelayGlobalCounters.QueryPacketsSent, loss.sent);
    }
}

TEST(GeneratorSummary, EndpointTotalsAreThoseOfTheSessions) {
    const pm_summary_parcel &summary = many().summary(0x100);
    EXPECT_EQ(summary.TotalEndpoints, 80U);
    expect_totals(endpoint_sums(PM_MEASUREMENT_DELAY), summary.DelaySummary.EndpointDelaySummary);
    const session_sums liveness = endpoint_sums(PM_MEASUREMENT_LIVENESS);
    const pm_endpoint_liveness_summary_parcel &shown = summary.LivenessSummary.EndpointLivenessSummary;
    EXPECT_GT(liveness.sessions, 0U);
    EXPECT_EQ(shown.EndpointLivenessSessionCounters.TotalSessions, liveness.sessions);
    EXPECT_EQ(shown.EndpointLivenessSessionCounters.TotalProbeRunningSessions, liveness.running);
    EXPECT_EQ(shown.EndpointLivenessTransportCounters.QueryPacketsSent, liveness.sent);
    EXPECT_EQ(shown.EndpointLivenessTransportCounters.LivenessDetectionMissedCount, liveness.sent - liveness.received);
}

TEST(GeneratorSummary, TunnelTotalsAreThoseOfTheCounters) {
    session_sums sums;
    many().each<pm_rsvpte_counters_parcel>("rsvpte/counters/", [&](const generated_item &, const auto &tunnel) {
        for (const auto &lsp : tunnel.RSVPTELSPDelayCounters) {
            pm_scb_parcel block{};
            block.SessionCounters = lsp.Counters;
            sums.add(block);
        }
    });
    sums.running = 0;
    many().each<pm_rsvpte_parcel>("rsvpte/detail/", [&](const generated_item &, const pm_rsvpte_parcel &tunnel) {
        const auto reason = tunnel.RSVPTELSPDelaySessions[0].CurrentProbe.ProbeNotRunningReason;
        sums.running += reason == PM_NOT_RUNNING_NONE ? 1 : 0;
    });
    EXPECT_EQ(many().summary(0x100).TotalRSVP_TETunnels, 60U);
    expect_totals(sums, many().summary(0x100).DelaySummary.RSVP_TEDelaySummary);
}

// At each level the counters are the sums of the level below.
TEST(GeneratorSummary, PolicyTotalsAreThoseOfAllLevelsOfTheCounters) {
    std::uint64_t delay_sent = 0;
    std::uint64_t liveness_sent = 0;
    many().each<pm_srpolicy_counters_parcel>("srpolicy/counters/", [&](const generated_item &item, const auto &policy) {
        for (const auto &candidate : policy.CandidateCounters) {
            const bool is_delay = candidate.Counters != nullptr;
            std::uint64_t of_lists = 0;
            for (const auto &list : candidate.SegmentListCounters) {
                std::uint64_t of_paths = 0;
                for (const auto &path : list.AtomicPathCounters) {
                    of_paths += is_delay ? path.Counters->GenericCounters.QueryPacketsSent
                                         : path.LivenessCounters->QueryPacketsSent;
                }
                EXPECT_EQ(is_delay ? list.Counters->GenericCounters.QueryPacketsSent
                                   : list.LivenessCounters->QueryPacketsSent,
                          of_paths)
                    << item.path;
                of_lists += of_paths;
            }
            EXPECT_EQ(is_delay ? candidate.Counters->GenericCounters.QueryPacketsSent
                               : candidate.LivenessCounters->QueryPacketsSent,
                      of_lists)
                << item.path;
            (is_delay ? delay_sent : liveness_sent) += of_lists;
        }
    });
    const pm_summary_parcel &summary = many().summary(0x100);
    const auto &delay = summary.DelaySummary.SRPolicyDelaySummary;
    EXPECT_GT(delay_sent, 0U);
    EXPECT_GT(liveness_sent, 0U);
    EXPECT_EQ(summary.TotalSRPolicies, 150U);
    EXPECT_EQ(delay.DelayTransportCounters.GenericCounters.QueryPacketsSent, delay_sent);
    EXPECT_EQ(summary.LivenessSummary.SRPolicyLivenessSummary.SRPolicyLivenessTransportCounters.QueryPacketsSent,
              liveness_sent);
}

// Walks the detail records: the candidate path has the reason.
TEST(GeneratorSummary, PolicySessionsAreCountedByStateAndEncapsulation) {
    std::map<std::string, std::uint32_t> counts;
    many().each<pm_srpolicy_parcel>("srpolicy/detail/", [&](const generated_item &, const pm_srpolicy_parcel &policy) {
        for (const auto &candidate : policy.CandidatePaths) {
            const bool runs = candidate.CurrentProbe.ProbeNotRunningReason == PM_NOT_RUNNING_NONE;
            const bool is_liveness = candidate.LivenessDetectionEnabled != 0;
            for (const auto &list : candidate.SegmentLists) {
                const bool is_srv6 = list.Segments[0].USIDInfo != nullptr;
                const std::string kind = is_liveness ? "liveness " : "delay ";
                counts[kind + (!runs ? "error" : is_srv6 ? "srv6" : "mpls")] += list.AtomicPaths.count;
            }
        }
    });
    const pm_summary_parcel &summary = many().summary(0x100);
    const auto &delay = summary.DelaySummary.SRPolicyDelaySummary.DelaySessionCounters;
    const auto &liveness = summary.LivenessSummary.SRPolicyLivenessSummary.SRPolicyLivenessSessionCounters;
    EXPECT_GT(counts["delay mpls"], 0U);
    EXPECT_GT(counts["delay srv6"], 0U);
    EXPECT_EQ(delay.TotalProbeRunningMPLSDelaySessions, counts["delay mpls"]);
    EXPECT_EQ(delay.TotalProbeRunningSRv6DelaySessions, counts["delay srv6"]);
    EXPECT_EQ(delay.TotalProbeRunningWithErrorDelaySessions, counts["delay error"]);
    EXPECT_EQ(liveness.TotalProbeRunningIPv4Sessions, counts["liveness mpls"]);
    EXPECT_EQ(liveness.TotalProbeRunningIPv6Sessions, counts["liveness srv6"]);
    EXPECT_EQ(liveness.TotalProbeRunningWithErrorSessions, counts["liveness error"]);
}

TEST(GeneratorSummary, TheNodesPacketsAreThoseOfAllItsSummaries) {
    for (const std::uint32_t node : many().nodes()) {
        const pm_summary_parcel &summary = many().summary(node);
        const auto sent_by = [](const pm_delay_transport_summary_parcel &transport) {
            return transport.DelayTransportCounters.GenericCounters.QueryPacketsSent;
        };
        const std::uint64_t delay =
            sent_by(summary.DelaySummary.EndpointDelaySummary) + sent_by(summary.DelaySummary.InterfaceDelaySummary) +
            sent_by(summary.DelaySummary.SRPolicyDelaySummary) + sent_by(summary.DelaySummary.RSVP_TEDelaySummary);
        const std::uint64_t liveness =
            summary.LivenessSummary.EndpointLivenessSummary.EndpointLivenessTransportCounters.QueryPacketsSent +
            summary.LivenessSummary.SRPolicyLivenessSummary.SRPolicyLivenessTransportCounters.QueryPacketsSent;
        EXPECT_EQ(summary.DelaySummary.DelayGlobalCounters.QueryPacketsSent, delay);
        EXPECT_EQ(summary.GlobalCounters.QueryPacketsSent,
                  delay + liveness + summary.LossSummary.DelayGlobalCounters.QueryPacketsSent);
        EXPECT_LE(summary.GlobalCounters.QueryPacketsReceived, summary.GlobalCounters.QueryPacketsSent);
        EXPECT_EQ(summary.GlobalCounters.QueryPacketsSent == 0, node == 0x101) << "only the standby is idle";
    }
}

// A block of a session that shows one: running ones have packets and sane delays, the others a reason
// and as many errors as one counter explains.
void expect_plausible(const pm_scb_parcel &block, const std::string &path) {
    const pm_querier_delay_counters_parcel &counters = block.SessionCounters.GenericCounters;
    const pm_values_parcel &values = block.CurrentProbe.ProbeResults;
    EXPECT_LE(counters.QueryPacketsReceived, counters.QueryPacketsSent) << path;
    EXPECT_LE(block.CurrentProbe.NumberOfPacketsReceived, block.CurrentProbe.NumberOfPacketsSent) << path;
    if (block.CurrentProbe.ProbeNotRunningReason != PM_NOT_RUNNING_NONE) {
        EXPECT_EQ(counters.QueryPacketsSent, 0U) << path;
        EXPECT_GT(counters.QueryPacketSentErrors, 0U) << path;
        return;
    }
    EXPECT_EQ(counters.QueryPacketSentErrors, 0U) << path;
    EXPECT_EQ(counters.ProbesStarted, counters.ProbesComplete + counters.ProbesIncomplete + 1) << path;
    if (block.MeasurementType == PM_MEASUREMENT_DELAY) {
        EXPECT_GE(values.Minimum, 50U) << path;
        EXPECT_LE(values.Minimum, values.Average) << path;
        EXPECT_LE(values.Average, values.Maximum) << path;
        EXPECT_LE(values.Maximum, 20000U) << path;
        EXPECT_LE(values.Variance, values.Average - values.Minimum) << path;
    }
}

TEST(GeneratorSessions, AFewAreDownAndSayWhyTheOthersMeasure) {
    std::uint32_t down = 0;
    std::uint32_t all = 0;
    many().each<pm_session_parcel>("session/", [&](const generated_item &item, const pm_session_parcel &session) {
        const bool of_interface = session.Session.type == PM_TRANSPORT_INTERFACE;
        if (of_interface || session.Session.type == PM_TRANSPORT_ENDPOINT) {
            const pm_scb_parcel &block =
                of_interface ? session.Session.InterfaceSession.Session : session.Session.EndpointSession.Session;
            expect_plausible(block, item.path);
            ++all;
            down += block.CurrentProbe.ProbeNotRunningReason != PM_NOT_RUNNING_NONE ? 1 : 0;
        }
    });
    EXPECT_EQ(all, 2 * 60U + 80U);
    EXPECT_GT(down, 0U);
    EXPECT_LT(down, all / 8);
}

TEST(GeneratorSessions, TheInterfaceShowsTheFaultThatItsCountersCount) {
    std::uint32_t faults = 0;
    const generated_set set({.interfaces = 400, .policies = 0, .endpoints = 0, .tunnels = 0});
    set.each<pm_intf_parcel>("intf/detail/", [&](const generated_item &item, const pm_intf_parcel &interface) {
        const pm_scb_parcel &block = interface.DelayMeasurementSessions[0];
        const auto &errors = block.SessionCounters.ExclusiveCounters.InterfaceExclusiveCounters;
        EXPECT_EQ(errors.QueryPacketSentErrorInterfaceDown != 0, interface.InterfaceState == 0) << item.path;
        EXPECT_EQ(errors.QueryPacketSentErrorNoMPLSCaps != 0, interface.MPLSCaps == 0) << item.path;
        EXPECT_EQ(errors.QueryPacketSentErrorIPv4DownWithV4NextHop != 0,
                  interface.InterfaceState != 0 && interface.IPv4ProtocolState == 0)
            << item.path;
        EXPECT_EQ(errors.QueryPacketSentErrorNextHopMACMissing != 0, interface.NextHopMacAddress.octets[0] == 0)
            << item.path;
        faults += block.CurrentProbe.ProbeNotRunningReason != PM_NOT_RUNNING_NONE ? 1 : 0;
    });
    EXPECT_GT(faults, 4U);
    EXPECT_LT(faults, 40U);
}

TEST(GeneratorSessions, TheCountersOfADownTunnelAreThoseOfItsReason) {
    std::uint32_t down = 0;
    std::map<std::string, pm_probe_running_error_reason> reasons;
    const generated_set set({.interfaces = 0, .policies = 0, .endpoints = 0, .tunnels = 200});
    set.each<pm_rsvpte_parcel>("rsvpte/detail/", [&](const generated_item &, const pm_rsvpte_parcel &tunnel) {
        reasons[tunnel.TunnelName] = tunnel.RSVPTELSPDelaySessions[0].CurrentProbe.ProbeNotRunningReason;
    });
    set.each<pm_rsvpte_counters_parcel>("rsvpte/counters/", [&](const generated_item &item, const auto &tunnel) {
        const auto &counters = tunnel.RSVPTELSPDelayCounters[0].Counters.GenericCounters;
        const bool is_down = reasons.at(tunnel.TunnelName) != PM_NOT_RUNNING_NONE;
        EXPECT_EQ(counters.QueryPacketSentErrorNoIPAddress != 0, is_down) << item.path;
        EXPECT_EQ(counters.QueryPacketSentErrorNoIPAddress, counters.QueryPacketSentErrors) << item.path;
        down += is_down ? 1 : 0;
    });
    EXPECT_GT(down, 0U);
}

// The number that an address ends with.
std::uint32_t last_part(const pm_record_address &address) {
    return address.IPAddressType == PM_RECORD_ADDRESS_IPV4
               ? address.IPv4 >> 24U  // in the network's order
               : static_cast<std::uint32_t>(address.IPv6.octets[14] << 8U) + address.IPv6.octets[15];
}

TEST(GeneratorAddresses, TheNextHopOfAnInterfaceIsTheOtherEndOfItsLink) {
    std::uint32_t over_ipv6 = 0;
    many().each<pm_intf_parcel>("intf/detail/", [&](const generated_item &item, const pm_intf_parcel &interface) {
        const pm_record_address &own = interface.InUseSourceIPAddress;
        EXPECT_EQ(interface.NextHop.IPAddressType, own.IPAddressType) << item.path;
        EXPECT_EQ(last_part(interface.NextHop), last_part(own) + 1) << item.path;
        over_ipv6 += own.IPAddressType == PM_RECORD_ADDRESS_IPV4 ? 0 : 1;
    });
    EXPECT_GT(over_ipv6, 10U);
}

TEST(GeneratorAddresses, AnEndpointsSegmentHasItsNumber) {
    std::uint32_t segments = 0;
    const auto check = [&](const pm_endpoint_detail &endpoint, const pm_segment_parcel &segment) {
        ASSERT_NE(segment.USIDInfo, nullptr) << endpoint.EndpointName;
        const std::uint8_t *const octets = segment.USIDInfo->SIDValue.octets;
        EXPECT_EQ(static_cast<std::uint32_t>(octets[4] << 8U) + octets[5], last_part(endpoint.EndPointAddress))
            << endpoint.EndpointName;
        ++segments;
    };
    many().each<pm_endpoint_common>("endpoint/detail/", [&](const generated_item &, const pm_endpoint_common &item) {
        for (const pm_endpoint_detail &endpoint : item.EndpointDelay) {
            for (const auto &profile : endpoint.EP_Consolidated_Detail) {
                for (const auto &list : profile.EP_SegmentLists) {
                    for (const pm_segment_parcel &segment : list.Segments) {
                        check(endpoint, segment);
                    }
                }
            }
        }
    });
    EXPECT_GT(segments, 5U);
}

TEST(GeneratorAddresses, PoliciesAreEncapsulatedFromTheRouter) {
    std::uint32_t over_srv6 = 0;
    many().each<pm_srpolicy_parcel>("srpolicy/detail/", [&](const generated_item &item, const auto &policy) {
        const pm_record_address &source = policy.SRv6EncapsulationSourceAddress;
        if (source.IPAddressType != PM_RECORD_ADDRESS_NONE) {
            EXPECT_EQ(last_part(source), 1U) << item.path;  // the router is the first host of its network
            ++over_srv6;
        }
    });
    EXPECT_GT(over_srv6, 10U);
}

}  // namespace
