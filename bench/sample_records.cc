// SPDX-License-Identifier: Apache-2.0
// Fills records with values like those of a router.
#include "bench/sample_records.h"

#include <array>

namespace {

constexpr std::uint64_t NOW_MSEC = 1709647387042ULL;

pm_delay_counters_info_parcel delay_counters(pm_transport_type_e transport, std::uint64_t sent) {
    pm_delay_counters_info_parcel counters{};
    counters.GenericCounters.QueryPacketsSent = sent;
    counters.GenericCounters.QueryPacketsReceived = sent - 17;
    counters.GenericCounters.ReceivedPacketErrorNegativeDelay = 2;
    counters.GenericCounters.ProbesStarted = sent / 30;
    counters.GenericCounters.ProbesComplete = sent / 30 - 1;
    counters.GenericCounters.Advertisement = 12;
    counters.ExclusiveCounters.TransportType = transport;
    return counters;
}

pm_delay_transport_summary_parcel delay_summary(pm_transport_type_e transport, std::uint32_t sessions) {
    return {{sessions, 3, sessions - 3, sessions / 2, sessions / 4, sessions / 8, sessions / 8},
            delay_counters(transport, 9600ULL * sessions)};
}

pm_values_parcel values(std::uint32_t average) { return {average, average - 30, average + 120, 45}; }

pm_record_address address(std::uint32_t value) {
    pm_record_address result{};
    result.IPv4 = value;
    return result;
}

}  // namespace

const pm_summary_parcel &sample_summary() {
    static const pm_summary_parcel the_summary = [] {
        static std::array<pm_npu_summary_parcel, 2> npus{};
        for (std::uint16_t i = 0; i < npus.size(); ++i) {
            npus[i].NPU_ID = i;
            npus[i].NPULivenessSummary.NPU_SRPolicyLivenessSummary.NPULivenessSessionCounters = {1, 40, 0, 0, 2, 43};
            npus[i].NPUGlobalCounters.TotalSessions = 43;
            npus[i].NPUGlobalCounters.NPUPacketCounters = {7200000, 7199821, 0};
            npus[i].NPUGlobalCounters.NPUNotificationCounters = {81, 81, 52, 29, 0, 0};
        }
        pm_summary_parcel summary{};
        summary.TotalEndpoints = 40;
        summary.TotalInterfaces = 96;
        summary.TotalSRPolicies = 500;
        summary.TotalRSVP_TETunnels = 20;
        summary.DelaySummary.EndpointDelaySummary = delay_summary(PM_TRANSPORT_ENDPOINT, 80);
        summary.DelaySummary.InterfaceDelaySummary = delay_summary(PM_TRANSPORT_INTERFACE, 96);
        summary.DelaySummary.SRPolicyDelaySummary = delay_summary(PM_TRANSPORT_SR_POLICY, 2000);
        summary.DelaySummary.RSVP_TEDelaySummary = delay_summary(PM_TRANSPORT_RSVP_TE, 20);
        summary.DelaySummary.DelayGlobalCounters = {21081600, 21081532, 3, 1};
        summary.LivenessSummary.EndpointLivenessSummary = {{40, 1, 39, 30, 9, 0}, {384000, 0, 2, 383120, 1}};
        summary.LivenessSummary.SRPolicyLivenessSummary = {{2000, 12, 1988, 1500, 488}, {19200000, 14, 19198211, 3}};
        summary.GlobalCounters = {40665600, 40662863, 3, 1};
        summary.NPUSummary = {npus.size(), npus.data()};
        summary.CheckpointOperationQueue = {0, 214, 17, NOW_MSEC - 86400000};
        summary.TXTimerDrift = {NOW_MSEC - 3600000, 11, 2, 1};
        summary.ProbeSummary = {{4, 0, 2, 0, 2}, {19200, 0, 19200, 0}};
        return summary;
    }();
    return the_summary;
}

const pm_srpolicy_parcel &sample_policy() {
    static const pm_srpolicy_parcel the_policy = [] {
        static std::array<std::uint32_t, 3> labels = {16011, 24001, 24017};
        static std::array<pm_record_address, 2> hops = {address(0x0b0200c0), address(0x0c0200c0)};
        static std::array<pm_scb_sample_parcel, 4> samples = {
            {{1201113, NOW_MSEC}, {1204001, NOW_MSEC + 3000}, {1199875, NOW_MSEC + 6000}, {1210042, NOW_MSEC + 9000}}};
        static std::array<pm_segment_parcel, 3> segments{};
        for (std::size_t i = 0; i < segments.size(); ++i) {
            segments[i].IPAddress.IPAddressType = PM_RECORD_ADDRESS_NONE;
            segments[i].MPLSLabel = &labels[i];
        }
        static std::array<pm_srpolicy_atomic_path_parcel, 2> atomic_paths{};
        for (pm_srpolicy_atomic_path_parcel &path : atomic_paths) {
            path.HopAddress = {hops.size(), hops.data()};
            path.Labels = {labels.size(), labels.data()};
            path.OutgoingInterface = 0x8000010;
            path.SessionId = 41;
            path.TraceId = 77777;
            path.LastAdvertisementInformation = {NOW_MSEC - 90000, PM_ADVERT_REASON_PERIODIC_AVERAGE, values(1200), 0,
                                                 0};
            path.NextAdvertisementInformation = {2, values(1210), 1207};
            path.CurrentProbeHistory = {samples.size(), samples.data()};
            path.CurrentProbeResults = {values(1205), 4, 4};
            path.LastProbeResults = {values(1203), 10, 10};
            path.LivenessDetectionEnabled = 1;
            path.LivenessDetectionInfo = {1, 0, NOW_MSEC - 600000};
            path.ProbeStartTimeStamp = NOW_MSEC;
        }
        static std::array<pm_srpolicy_segment_list_parcel, 2> lists{};
        for (pm_srpolicy_segment_list_parcel &list : lists) {
            list.SegmentListName = "sl-gold-1";
            list.Segments = {segments.size(), segments.data()};
            list.LastAdvertisementInformation = {NOW_MSEC - 90000, PM_ADVERT_REASON_PERIODIC_AVERAGE, values(1200), 0,
                                                 0};
            list.NextAdvertisementInformation = {2, values(1210), 1207};
            list.CurrentProbeResults = {values(1205), 8, 8};
            list.LastProbeResults = {values(1203), 20, 20};
            list.AtomicPathTotalCount = atomic_paths.size();
            list.LivenessDetectionEnabled = 1;
            list.LivenessDetectionInfo = {1, 0, NOW_MSEC - 600000};
            list.AtomicPaths = {atomic_paths.size(), atomic_paths.data()};
            list.ProbeStartTimeStamp = NOW_MSEC;
            list.SegmentListID = 3;
        }
        static std::array<pm_srpolicy_candidate_path_parcel, 2> paths{};
        for (pm_srpolicy_candidate_path_parcel &path : paths) {
            path.Preference = 100;
            path.Origin = PM_SRPOLICY_ORIGIN_CONFIGURED;
            path.Discriminator = 10;
            path.SourceAddressV4 = 0x010200c0;
            path.ProfileName = "gold";
            path.ProfileKey = {1, PM_MEASUREMENT_DELAY, PM_TRANSPORT_SR_POLICY, "gold"};
            path.PeriodicAdvertisementIntervalInSec = 120;
            path.LastAdvertisementInformation = {NOW_MSEC - 90000, PM_ADVERT_REASON_PERIODIC_AVERAGE, values(1200), 0,
                                                 0};
            path.NextAdvertisementInformation = {2, values(1210), 1207};
            path.LastProbeResults = {values(1203), 40, 40};
            path.SegmentListTotalCount = lists.size();
            path.SegmentLists = {lists.size(), lists.data()};
        }
        pm_srpolicy_parcel policy{};
        policy.Color = 10;
        policy.EndPointAddress = address(0x0b0200c0);
        policy.PolicyName = "srte_c_10_ep_192.0.2.11";
        policy.CandidatePathTotalCount = paths.size();
        policy.CandidatePaths = {paths.size(), paths.data()};
        return policy;
    }();
    return the_policy;
}

const pm_intf_parcel &sample_interface() {
    static const pm_intf_parcel the_interface = [] {
        static std::array<pm_scb_sample_parcel, 4> samples = {
            {{210113, NOW_MSEC}, {214001, NOW_MSEC + 3000}, {209875, NOW_MSEC + 6000}, {211042, NOW_MSEC + 9000}}};
        static pm_scb_parcel session{};
        session.SessionId = 1;
        session.TraceId = 4711;
        session.ProfileKey.Name = "default";
        session.CurrentProbe = {NOW_MSEC, 18250, 2250, 3000, 0, 3000000, 0, 4, 4, values(210), PM_NOT_RUNNING_NONE};
        session.ProbeHistory = {samples.size(), samples.data()};
        session.SessionCounters = delay_counters(PM_TRANSPORT_INTERFACE, 96000);
        session.PeriodicAdvertisementIntervalInSec = 120;
        session.LastAdvertisementInformation = {NOW_MSEC - 90000, PM_ADVERT_REASON_PERIODIC_AVERAGE, values(209), 0, 0};
        session.NextAdvertisementInformation = {2, values(211), 210};
        pm_intf_parcel intf{};
        intf.InterfaceName = "eth0/1/0/4";
        intf.InterfaceHandle = 0x8000120;
        intf.InterfaceState = 1;
        intf.MPLSCaps = 1;
        intf.IPv4ProtocolState = 1;
        intf.SourceAddress = 0x0100010a;
        intf.InUseSourceIPAddress = address(0x0100010a);
        intf.InUseDestinationIPAddress = address(0x0200010a);
        intf.NextHop = address(0x0200010a);
        intf.DelayMeasurementSessions = {1, &session};
        intf.PMCapsAdd = 1;
        return intf;
    }();
    return the_interface;
}
