// SPDX-License-Identifier: Apache-2.0
// See chkpt.h. The messages' descriptions, and the decoder of each.
#include "chkpt/chkpt.h"

#include <cstring>
#include <type_traits>

#include "chkpt/message_decoder.h"

namespace chkpt_decoder {

template <>
struct message<ChkptAdvertisement> {
    using members =
        fields<&ChkptAdvertisement::time_msec, &ChkptAdvertisement::reason, &ChkptAdvertisement::in_flight,
               &ChkptAdvertisement::average_usec, &ChkptAdvertisement::minimum_usec, &ChkptAdvertisement::maximum_usec,
               &ChkptAdvertisement::variance_usec, &ChkptAdvertisement::loss_percent, &ChkptAdvertisement::a_flag>;
};

template <>
struct message<ChkptControlCode> {
    using members = fields<&ChkptControlCode::code, &ChkptControlCode::time_msec>;
};

template <>
struct message<ChkptScb> {
    using members = fields<&ChkptScb::interface_name, &ChkptScb::advertisement_kind, &ChkptScb::last_advertisement,
                           &ChkptScb::last_error, &ChkptScb::last_notification>;
};

template <>
struct message<ChkptDistributionValues> {
    using members = fields<&ChkptDistributionValues::value_1, &ChkptDistributionValues::value_2,
                           &ChkptDistributionValues::value_3, &ChkptDistributionValues::value_4>;
};

template <>
struct message<ChkptDistributionGroup> {
    using members =
        fields<&ChkptDistributionGroup::value_1, &ChkptDistributionGroup::value_2, &ChkptDistributionGroup::values>;
};

template <>
struct message<ChkptDistributionEntry> {
    using members =
        fields<&ChkptDistributionEntry::value_1, &ChkptDistributionEntry::groups, &ChkptDistributionEntry::value_3>;
};

template <>
struct message<ChkptDistribution> {
    using members = fields<&ChkptDistribution::linecards, &ChkptDistribution::value_2, &ChkptDistribution::value_3,
                           &ChkptDistribution::entries>;
};

template <>
struct message<ChkptSessionIdPair> {
    using members = fields<&ChkptSessionIdPair::session_id, &ChkptSessionIdPair::segment_list>;
};

template <>
struct message<ChkptSegmentListInfo> {
    using members =
        fields<&ChkptSegmentListInfo::segment_list, &ChkptSegmentListInfo::is_up, &ChkptSegmentListInfo::value_3>;
};

template <>
struct message<ChkptDrSession> {
    using members = fields<&ChkptDrSession::policy_name, &ChkptDrSession::lsp_id, &ChkptDrSession::is_up,
                           &ChkptDrSession::session_ids, &ChkptDrSession::node_id, &ChkptDrSession::npu_id,
                           &ChkptDrSession::host_type, &ChkptDrSession::value_8, &ChkptDrSession::segment_lists>;
};

template <>
struct message<ChkptSingleValue> {
    using members = fields<&ChkptSingleValue::value>;
};

}  // namespace chkpt_decoder

namespace {

template <class Record>
std::int32_t decode(Record *record, const std::uint8_t *data, std::uint32_t length, ChkptAllocFn alloc = nullptr,
                    void *context = nullptr) {
    static_assert(std::is_trivial_v<Record>);
    std::memset(record, 0, sizeof *record);
    return chkpt_decoder::decode_message(*record, {data, data + length}, {alloc, context});
}

}  // namespace

std::int32_t ChkptScb_decode(ChkptScb *record, const std::uint8_t *data, std::uint32_t length, ChkptAllocFn alloc,
                             void *context) {
    return decode(record, data, length, alloc, context);
}

std::int32_t ChkptDistribution_decode(ChkptDistribution *record, const std::uint8_t *data, std::uint32_t length,
                                      ChkptAllocFn alloc, void *context) {
    return decode(record, data, length, alloc, context);
}

std::int32_t ChkptDrSession_decode(ChkptDrSession *record, const std::uint8_t *data, std::uint32_t length,
                                   ChkptAllocFn alloc, void *context) {
    return decode(record, data, length, alloc, context);
}

std::int32_t ChkptAdvertisement_decode(ChkptAdvertisement *record, const std::uint8_t *data, std::uint32_t length) {
    return decode(record, data, length);
}

std::int32_t ChkptControlCode_decode(ChkptControlCode *record, const std::uint8_t *data, std::uint32_t length) {
    return decode(record, data, length);
}

std::int32_t ChkptDistributionEntry_decode(ChkptDistributionEntry *record, const std::uint8_t *data,
                                           std::uint32_t length, ChkptAllocFn alloc, void *context) {
    return decode(record, data, length, alloc, context);
}

std::int32_t ChkptDistributionGroup_decode(ChkptDistributionGroup *record, const std::uint8_t *data,
                                           std::uint32_t length, ChkptAllocFn alloc, void *context) {
    return decode(record, data, length, alloc, context);
}

std::int32_t ChkptDistributionValues_decode(ChkptDistributionValues *record, const std::uint8_t *data,
                                            std::uint32_t length) {
    return decode(record, data, length);
}

std::int32_t ChkptSessionIdPair_decode(ChkptSessionIdPair *record, const std::uint8_t *data, std::uint32_t length,
                                       ChkptAllocFn alloc, void *context) {
    return decode(record, data, length, alloc, context);
}

std::int32_t ChkptSegmentListInfo_decode(ChkptSegmentListInfo *record, const std::uint8_t *data, std::uint32_t length,
                                         ChkptAllocFn alloc, void *context) {
    return decode(record, data, length, alloc, context);
}

std::int32_t ChkptSingleValue_decode(ChkptSingleValue *record, const std::uint8_t *data, std::uint32_t length) {
    return decode(record, data, length);
}
