// SPDX-License-Identifier: Apache-2.0
// The names of counters and time stamps, as one list each.
#include "perf-store/diff/counters.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "perf-store/datasets/record_shape.h"
#include "platform/local/codec/parcel_wire.h"

namespace perf_store {

namespace {

using parcel_notation::kind;
using parcel_wire::generic_array;
using parcel_wire::load;

// In the order of their letters.
constexpr std::string_view COUNTERS[] = {
    "Advertisement",
    "KPKTAttachErrorCount",
    "LastRXPacketCounter",
    "LastTXPacketCounter",
    "LivenessDetectionMissedCount",
    "LivenessDownNotifications",
    "LivenessDownWithTXPacketErrorNotificatins",
    "LivenessUPNotificatins",
    "NextHopMacAddressGetErrorCount",
    "NumberOfEnqueues",
    "PA_QueryPacketSentErrors",
    "PA_QueryPacketsSent",
    "PT_QueryPacketSentErrors",
    "PT_QueryPacketsSent",
    "PacketIP_UDP_PuntCounter",
    "PacketIPv4UDPRxCounter",
    "PacketIPv4UDPRxErrorCounter",
    "PacketIPv6RxErrorCounter",
    "PacketIPv6UDPRxCounter",
    "PacketKPKTRxCounter",
    "PacketKPKTRxErrorCounter",
    "PacketKPKTRxIPv4Counter",
    "PacketKPKTRxIPv6Counter",
    "PacketKPKTRxMPLSCounter",
    "PacketKPKTRxProtectionPacket",
    "PacketKPKT_RxPuntCounter",
    "PacketPD_RxCounter",
    "PacketPD_RxErrorCounter",
    "PacketPD_RxPuntCounter",
    "ProbesComplete",
    "ProbesIncomplete",
    "ProbesStarted",
    "QueryPacketReceived",
    "QueryPacketSentErrorIPv4DownWithV4NextHop",
    "QueryPacketSentErrorIPv4IPv6DownWithoutNextHop",
    "QueryPacketSentErrorIPv6DownWithV6NextHop",
    "QueryPacketSentErrorInterfaceDown",
    "QueryPacketSentErrorNextHopMACMissing",
    "QueryPacketSentErrorNoIPAddress",
    "QueryPacketSentErrorNoMPLSCaps",
    "QueryPacketSentErrors",
    "QueryPacketsReceived",
    "QueryPacketsSent",
    "QueryPacketsSentErrorSlLabelMissing",
    "RXCounter",
    "ReceivedPacketControlCodeError",
    "ReceivedPacketControlCodeNotification",
    "ReceivedPacketErrorDelayExceedsThreshold",
    "ReceivedPacketErrorInvalidPacket",
    "ReceivedPacketErrorInvalidQuerierControlCode",
    "ReceivedPacketErrorInvalidSessionID",
    "ReceivedPacketErrorInvalidSourcePortNumber",
    "ReceivedPacketErrorMissingRxTimestamp",
    "ReceivedPacketErrorMissingTxTimestamp",
    "ReceivedPacketErrorNegativeDelay",
    "ReceivedPacketErrorNoReturnPath",
    "ReceivedPacketErrorNoSession",
    "ReceivedPacketErrorNoSourceAddress",
    "ReceivedPacketErrorProbeFull",
    "ReceivedPacketErrorProbeNotStarted",
    "ReceivedPacketErrorTimestampNotAvailable",
    "ReceivedPacketErrorURO_TLVNotPresent",
    "ReceivedPacketErrorUnsupportedMandatoryTLV",
    "ReceivedPacketErrorUnsupportedTimestampFormat",
    "ReplyPacketSent",
    "ReplyPacketSentError",
    "TXCounter",
    "TotalInvalidSessionIDNotifications",
    "TotalLivenessDownNotifications",
    "TotalLivenessUpNotifications",
    "TotalMalformedNotifications",
    "TotalNotificationPackets",
    "TotalNotifications",
    "TotalPacketsErrors",
    "TotalPacketsReceived",
    "TotalPacketsSent",
};

// The times of a probe's hop by hop report are not among them: their unit is another.
constexpr std::string_view TIME_STAMPS[] = {
    "AdvertisementTimestamp",
    "AggregationTimestamp",
    "HighWaterMarkTS",
    "InstallTime",
    "LastNotificationReceiveTimestamp",
    "LastNotificationToFIBTimestamp",
    "LastSessionStateChangeTimestamp",
    "LivenessStateChangeTimestamp",
    "MaximumTimerDriftTimestamp",
    "ProbeStartTimeStamp",
    "ProbeStartTimestamp",
    "QueryTimestamp",
    "RXTimestampsOfLastThreeNPUPackets",
    "RecordCreationTimestamp",
    "RecordSendTimestamp",
    "TimeOfAdvertisement",
    "Timestamp",
    "TimestampOfAdvertisement",
};
static_assert(std::ranges::is_sorted(COUNTERS) && std::ranges::is_sorted(TIME_STAMPS));

std::uint64_t newest(const std::uint8_t *from, const value_shape &shape, bool is_stamp);

std::uint64_t newest_of_record(const std::uint8_t *from, const record_shape &shape) {
    if (is_union(shape)) {
        const field_shape *arm = shape.arm_of(load<std::uint32_t>(from));
        return arm == nullptr || arm->type == nullptr ? 0 : newest(from + arm->offset, *arm->type, false);
    }
    std::uint64_t result = 0;
    for (const field_shape &field : shape.fields) {
        result = std::max(result, newest(from + field.offset, *field.type, is_time_stamp(field.name)));
    }
    return result;
}

std::uint64_t newest_of_elements(const std::uint8_t *from, std::uint32_t count, const value_shape &shape,
                                 bool is_stamp) {
    std::uint64_t result = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        result = std::max(result, newest(from + std::size_t{i} * shape.size, shape, is_stamp));
    }
    return result;
}

// `is_stamp`: numbers here are time stamps.
std::uint64_t newest(const std::uint8_t *from, const value_shape &shape, bool is_stamp) {
    switch (shape.what) {
    case kind::u64: return is_stamp ? load<std::uint64_t>(from) : 0;
    case kind::record:
    case kind::tagged_union: return newest_of_record(from, shape);
    case kind::fixed_array: return newest_of_elements(from, shape.count, *shape.element, is_stamp);
    case kind::array: {
        const auto array = load<generic_array>(from);
        return is_scalar(shape.element->what) && !is_stamp
                   ? 0
                   : newest_of_elements(array.elements, array.count, *shape.element, is_stamp);
    }
    case kind::optional: {
        const auto *value = load<const std::uint8_t *>(from);
        return value == nullptr ? 0 : newest(value, *shape.element, is_stamp);
    }
    default: return 0;
    }
}

}  // namespace

bool is_counter(std::string_view member) { return std::ranges::binary_search(COUNTERS, member); }

bool is_time_stamp(std::string_view member) { return std::ranges::binary_search(TIME_STAMPS, member); }

std::string counter_change(std::uint64_t from, std::uint64_t to, unsigned bits, std::uint64_t interval_msec) {
    constexpr double MSEC_PER_SECOND = 1000;
    const std::uint64_t range = bits == 64 ? UINT64_MAX : (std::uint64_t{1} << bits) - 1;
    const std::uint64_t growth = (to - from) & range;
    const bool went_back = to < from;
    if (went_back && growth > range / 2) {
        return "reset";
    }
    std::string text = "+" + std::to_string(growth) + (went_back ? " (wrapped)" : "");
    if (interval_msec != 0) {
        char rate[64];
        std::snprintf(rate, sizeof rate, ", %.3f/s",
                      static_cast<double>(growth) * MSEC_PER_SECOND / static_cast<double>(interval_msec));
        text += rate;
    }
    return text;
}

std::uint64_t newest_time_stamp(const void *record, const parcel_descriptor *type) {
    return newest_of_record(static_cast<const std::uint8_t *>(record), shape_of(type).record());
}

}  // namespace perf_store
