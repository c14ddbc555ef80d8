// SPDX-License-Identifier: Apache-2.0
// Checkpoint blobs: the records that they decode into, and one decoder for each.
//
// A checkpoint item carries its payload as bytes in the binary form of Protocol Buffers. A decoder
// turns them into a plain record with one member for each field, in the order of the field numbers,
// and a presence bit for each. A field that was not seen is zero: text and elements null, count 0.
//
// A decoder takes the record, which it clears first, the blob (null when the length is 0) and, where
// the message has texts or arrays, the allocator for them. It returns a chkpt_status. After a failure
// the record holds what came before it. What was allocated belongs to the caller, also after a
// failure: one block for each text and one for each array.
//
// Unlike a parser of Protocol Buffers, a decoder takes a text or an array once only, expects the
// elements of an array one after another and not packed, keeps the low bits of a number that is too
// long, and ends in success at an unknown field that runs past the end.
#pragma once

#include <cstddef>
#include <cstdint>

enum chkpt_status : std::int32_t {
    CHKPT_DECODED = 0,           // the blob was read to its end
    CHKPT_TRUNCATED = -1,        // a number or a known field runs past the end; or a text or array came twice
    CHKPT_INVALID_TYPE = -2,     // an unknown field of a wire type that does not exist
    CHKPT_UNEXPECTED_TYPE = -3,  // a known field of another wire type than its own
    CHKPT_NO_MEMORY = -4,        // there is no allocator, or it returned null
};

// Returns `size` bytes, aligned for any object, or null. `context` is what the decoder was given.
using ChkptAllocFn = void *(*)(std::size_t size, void *context);

// An array: `count` elements, null when there is none.
template <class Element>
struct chkpt_array {
    Element *elements;
    std::uint32_t count;

    const Element *begin() const { return elements; }
    const Element *end() const { return elements + count; }
};

// Whether field `number` of a record was seen.
template <class Record>
[[nodiscard]] constexpr bool chkpt_has(const Record &record, unsigned number) {
    return (record.presence >> (number - 1) & 1) != 0;
}

// A session checkpoint, one for each measured interface -------------------------------------------

struct ChkptAdvertisement {
    std::uint64_t time_msec;  // since the epoch; 0 is never
    std::uint32_t reason;     // pm_advert_reason_e
    bool in_flight;
    std::uint32_t average_usec;
    std::uint32_t minimum_usec;
    std::uint32_t maximum_usec;
    std::uint32_t variance_usec;
    std::uint64_t loss_percent;
    bool a_flag;
    std::uint32_t presence;
};

struct ChkptControlCode {
    std::uint32_t code;
    std::uint64_t time_msec;  // of its receipt, since the epoch; 0 is never
    std::uint32_t presence;
};

struct ChkptScb {
    char *interface_name;
    std::uint32_t advertisement_kind;  // 0 delay, else loss
    ChkptAdvertisement last_advertisement;
    ChkptControlCode last_error;
    ChkptControlCode last_notification;
    std::uint32_t presence;
};

// A distribution record ---------------------------------------------------------------------------
// Only the line cards are displayed; what the numbered members mean is known to the publisher alone.

struct ChkptDistributionValues {
    std::uint32_t value_1;
    std::uint32_t value_2;
    std::uint32_t value_3;
    std::uint32_t value_4;
    std::uint32_t presence;
};

struct ChkptDistributionGroup {
    std::uint32_t value_1;
    std::uint32_t value_2;
    chkpt_array<ChkptDistributionValues> values;
    std::uint32_t presence;
};

struct ChkptDistributionEntry {
    std::uint32_t value_1;
    chkpt_array<ChkptDistributionGroup> groups;
    std::uint32_t value_3;
    std::uint32_t presence;
};

struct ChkptDistribution {
    chkpt_array<std::uint32_t> linecards;  // node ids
    std::uint32_t value_2;
    std::uint32_t value_3;
    chkpt_array<ChkptDistributionEntry> entries;
    std::uint32_t presence;
};

// A distributed session ---------------------------------------------------------------------------

inline constexpr std::uint32_t CHKPT_NO_NODE = 0xFFFFFFFF;
inline constexpr std::uint32_t CHKPT_NO_NPU = 65535;
inline constexpr std::uint32_t CHKPT_HOST_NPU = 1;  // any other host type is the CPU

struct ChkptSessionIdPair {
    std::uint32_t session_id;
    char *segment_list;
    std::uint32_t presence;
};

struct ChkptSegmentListInfo {
    char *segment_list;
    bool is_up;
    std::uint32_t value_3;  // not displayed
    std::uint32_t presence;
};

struct ChkptDrSession {
    char *policy_name;
    std::uint32_t lsp_id;
    bool is_up;
    chkpt_array<ChkptSessionIdPair> session_ids;
    std::uint32_t node_id;  // CHKPT_NO_NODE: none
    std::uint32_t npu_id;   // CHKPT_NO_NPU: none
    std::uint32_t host_type;
    std::uint32_t value_8;  // not displayed
    chkpt_array<ChkptSegmentListInfo> segment_lists;
    std::uint32_t presence;
};

// A message that nothing refers to.
struct ChkptSingleValue {
    std::uint32_t value;
    std::uint32_t presence;
};

// The blobs of pm_chkpt_scb_parcel, pm_chkpt_dr_info and pm_chkpt_dr_db_sess_info.
[[nodiscard]] std::int32_t ChkptScb_decode(ChkptScb *record, const std::uint8_t *data, std::uint32_t length,
                                           ChkptAllocFn alloc, void *context);
[[nodiscard]] std::int32_t ChkptDistribution_decode(ChkptDistribution *record, const std::uint8_t *data,
                                                    std::uint32_t length, ChkptAllocFn alloc, void *context);
[[nodiscard]] std::int32_t ChkptDrSession_decode(ChkptDrSession *record, const std::uint8_t *data, std::uint32_t length,
                                                 ChkptAllocFn alloc, void *context);

// The messages inside them.
[[nodiscard]] std::int32_t ChkptAdvertisement_decode(ChkptAdvertisement *record, const std::uint8_t *data,
                                                     std::uint32_t length);
[[nodiscard]] std::int32_t ChkptControlCode_decode(ChkptControlCode *record, const std::uint8_t *data,
                                                   std::uint32_t length);
[[nodiscard]] std::int32_t ChkptDistributionEntry_decode(ChkptDistributionEntry *record, const std::uint8_t *data,
                                                         std::uint32_t length, ChkptAllocFn alloc, void *context);
[[nodiscard]] std::int32_t ChkptDistributionGroup_decode(ChkptDistributionGroup *record, const std::uint8_t *data,
                                                         std::uint32_t length, ChkptAllocFn alloc, void *context);
[[nodiscard]] std::int32_t ChkptDistributionValues_decode(ChkptDistributionValues *record, const std::uint8_t *data,
                                                          std::uint32_t length);
[[nodiscard]] std::int32_t ChkptSessionIdPair_decode(ChkptSessionIdPair *record, const std::uint8_t *data,
                                                     std::uint32_t length, ChkptAllocFn alloc, void *context);
[[nodiscard]] std::int32_t ChkptSegmentListInfo_decode(ChkptSegmentListInfo *record, const std::uint8_t *data,
                                                       std::uint32_t length, ChkptAllocFn alloc, void *context);
[[nodiscard]] std::int32_t ChkptSingleValue_decode(ChkptSingleValue *record, const std::uint8_t *data,
                                                   std::uint32_t length);
