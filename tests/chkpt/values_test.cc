// SPDX-License-Identifier: Apache-2.0
// The values that checkpoint blobs decode to, and what is particular to numbers, texts and arrays.
#include <gtest/gtest.h>
#include <string>

#include "tests/chkpt/decoded.h"

namespace {

constexpr std::uint64_t LARGEST_U64 = 0xFFFFFFFFFFFFFFFF;
constexpr std::uint32_t LARGEST_U32 = 0xFFFFFFFF;

// Records -----------------------------------------------------------------------------------------

TEST(ChkptValues, AnAdvertisementHasNineFields) {
    const auto [status, record, memory] = decode(ChkptAdvertisement_decode, blob()
                                                                                .number(1, 1709647387042)
                                                                                .number(2, 20)
                                                                                .number(3, 1)
                                                                                .number(4, 41)
                                                                                .number(5, 51)
                                                                                .number(6, 61)
                                                                                .number(7, 71)
                                                                                .number(8, LARGEST_U64)
                                                                                .number(9, 1));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_EQ(record.time_msec, 1709647387042U);
    EXPECT_EQ(record.reason, 20U);
    EXPECT_TRUE(record.in_flight);
    EXPECT_EQ(record.average_usec, 41U);
    EXPECT_EQ(record.minimum_usec, 51U);
    EXPECT_EQ(record.maximum_usec, 61U);
    EXPECT_EQ(record.variance_usec, 71U);
    EXPECT_EQ(record.loss_percent, LARGEST_U64);
    EXPECT_TRUE(record.a_flag);
    EXPECT_EQ(record.presence, 0x1FFU);
}

TEST(ChkptValues, ASessionHasItsNameItsAdvertisementAndTwoCodes) {
    const auto [status, record, memory] =
        decode(ChkptScb_decode, blob()
                                    .text(1, "eth0/1/0/4")
                                    .number(2, 7)
                                    .message(3, blob().number(4, 1200))
                                    .message(4, blob().number(1, 28).number(2, LARGEST_U64))
                                    .message(5, blob().number(1, LARGEST_U32).number(2, 5)));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_STREQ(record.interface_name, "eth0/1/0/4");
    EXPECT_EQ(record.advertisement_kind, 7U);
    EXPECT_EQ(record.last_advertisement.average_usec, 1200U);
    EXPECT_EQ(record.last_advertisement.presence, 1U << 3);
    EXPECT_EQ(record.last_error.code, 28U);
    EXPECT_EQ(record.last_error.time_msec, LARGEST_U64);
    EXPECT_EQ(record.last_notification.code, LARGEST_U32);
    EXPECT_EQ(record.last_notification.time_msec, 5U);
    EXPECT_TRUE(chkpt_has(record, 1) && chkpt_has(record, 5) && !chkpt_has(record, 6));
    ASSERT_EQ(memory->sizes().size(), 1U);
    EXPECT_EQ(memory->sizes()[0], std::string("eth0/1/0/4").size() + 1);
}

TEST(ChkptValues, ADistributionNestsThreeDeep) {
    const blob values = blob().number(1, 21).number(2, 22).number(3, 23).number(4, 24);
    const blob group = blob().number(1, 11).number(2, 12).message(3, values).message(3, {});
    const blob entry = blob().number(1, 1).message(2, group).number(3, 3);
    const auto [status, record, memory] = decode(ChkptDistribution_decode, blob()
                                                                               .number(1, 16)
                                                                               .number(1, LARGEST_U32)
                                                                               .number(1, 0)
                                                                               .number(2, 5)
                                                                               .number(3, 6)
                                                                               .message(4, {})
                                                                               .message(4, entry));
    EXPECT_EQ(status, CHKPT_DECODED);
    ASSERT_EQ(record.linecards.count, 3U);
    EXPECT_EQ(record.linecards.elements[0], 16U);
    EXPECT_EQ(record.linecards.elements[1], LARGEST_U32);
    EXPECT_EQ(record.linecards.elements[2], 0U);
    EXPECT_EQ(record.value_2, 5U);
    EXPECT_EQ(record.value_3, 6U);
    ASSERT_EQ(record.entries.count, 2U);
    EXPECT_EQ(record.entries.elements[0].presence, 0U);
    EXPECT_EQ(record.entries.elements[0].groups.elements, nullptr);
    const ChkptDistributionEntry &last = record.entries.elements[1];
    EXPECT_EQ(last.value_1, 1U);
    EXPECT_EQ(last.value_3, 3U);
    ASSERT_EQ(last.groups.count, 1U);
    EXPECT_EQ(last.groups.elements[0].value_1, 11U);
    EXPECT_EQ(last.groups.elements[0].value_2, 12U);
    ASSERT_EQ(last.groups.elements[0].values.count, 2U);
    const ChkptDistributionValues &first = last.groups.elements[0].values.elements[0];
    EXPECT_EQ(first.value_1, 21U);
    EXPECT_EQ(first.value_2, 22U);
    EXPECT_EQ(first.value_3, 23U);
    EXPECT_EQ(first.value_4, 24U);
    // Line cards, entries, groups and values: one block each, of exactly the elements' size.
    EXPECT_EQ(memory->sizes(),
              (std::vector<std::size_t>{3 * sizeof(std::uint32_t), 2 * sizeof(ChkptDistributionEntry),
                                        sizeof(ChkptDistributionGroup), 2 * sizeof(ChkptDistributionValues)}));
}

TEST(ChkptValues, ADistributedSessionHasItsHostAndItsSegmentLists) {
    const auto [status, record, memory] =
        decode(ChkptDrSession_decode, blob()
                                          .text(1, "policy-1")
                                          .number(2, 5)
                                          .number(3, 1)
                                          .message(4, blob().number(1, 4097).text(2, "sl-a"))
                                          .message(4, blob().text(2, "sl-b"))
                                          .number(5, CHKPT_NO_NODE)
                                          .number(6, CHKPT_NO_NPU)
                                          .number(7, CHKPT_HOST_NPU)
                                          .number(8, 88)
                                          .message(9, blob().text(1, "sl-c").number(2, 1).number(3, 33)));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_STREQ(record.policy_name, "policy-1");
    EXPECT_EQ(record.lsp_id, 5U);
    EXPECT_TRUE(record.is_up);
    ASSERT_EQ(record.session_ids.count, 2U);
    EXPECT_EQ(record.session_ids.elements[0].session_id, 4097U);
    EXPECT_STREQ(record.session_ids.elements[0].segment_list, "sl-a");
    EXPECT_EQ(record.session_ids.elements[1].session_id, 0U);
    EXPECT_STREQ(record.session_ids.elements[1].segment_list, "sl-b");
    EXPECT_EQ(record.session_ids.elements[1].presence, 2U);
    EXPECT_EQ(record.node_id, CHKPT_NO_NODE);
    EXPECT_EQ(record.npu_id, CHKPT_NO_NPU);
    EXPECT_EQ(record.host_type, CHKPT_HOST_NPU);
    EXPECT_EQ(record.value_8, 88U);
    ASSERT_EQ(record.segment_lists.count, 1U);
    EXPECT_STREQ(record.segment_lists.elements[0].segment_list, "sl-c");
    EXPECT_TRUE(record.segment_lists.elements[0].is_up);
    EXPECT_EQ(record.segment_lists.elements[0].value_3, 33U);
}

// Numbers -----------------------------------------------------------------------------------------

std::uint32_t single_value(const blob &content) {
    const auto [status, record, memory] = decode(ChkptSingleValue_decode, blob().tag(1, 0).add(content));
    EXPECT_EQ(status, CHKPT_DECODED);
    return record.value;
}

TEST(ChkptNumbers, A32BitNumberKeepsItsLowBits) {
    EXPECT_EQ(single_value(blob().varint(0)), 0U);
    EXPECT_EQ(single_value(blob().varint(127)), 127U);
    EXPECT_EQ(single_value(blob().varint(128)), 128U);
    EXPECT_EQ(single_value(blob().varint(LARGEST_U32)), LARGEST_U32);
    EXPECT_EQ(single_value(blob().varint(0x100000005)), 5U);
    EXPECT_EQ(single_value(blob().varint(LARGEST_U64)), LARGEST_U32);
}

TEST(ChkptNumbers, BytesBeyondTheNumberAreReadAndDropped) {
    EXPECT_EQ(single_value(blob().raw({0x85, 0x80, 0x00})), 5U) << "longer than it needs to be";
    for (std::size_t more : {6U, 9U, 10U, 11U, 64U, 1000U}) {
        blob content;
        content.raw({0x81, 0x80, 0x80, 0x80, 0xF0});  // bits 0 and 32 to 34
        content.append(std::vector<std::uint8_t>(more, 0xFF));
        content.raw({0x7F});
        EXPECT_EQ(single_value(content), 1U) << more;
    }
}

TEST(ChkptNumbers, A64BitNumberTakesTenBytes) {
    const auto time = [](const blob &content) {
        const auto [status, record, memory] = decode(ChkptControlCode_decode, blob().tag(2, 0).add(content));
        EXPECT_EQ(status, CHKPT_DECODED);
        return record.time_msec;
    };
    for (unsigned bit = 0; bit < 64; ++bit) {
        EXPECT_EQ(time(blob().varint(1ULL << bit)), 1ULL << bit);
        EXPECT_EQ(time(blob().varint((1ULL << bit) - 1)), (1ULL << bit) - 1);
    }
    EXPECT_EQ(time(blob().raw({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01})), LARGEST_U64);
    EXPECT_EQ(time(blob().raw({0x81, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0xFE, 0xFF, 0x7F})), 1U)
        << "the tenth byte has one bit, those behind it have none";
}

TEST(ChkptNumbers, AFlagIsAnyOfItsLow32Bits) {
    const auto flag = [](std::uint64_t value) {
        const auto [status, record, memory] = decode(ChkptAdvertisement_decode, blob().number(9, value));
        EXPECT_EQ(status, CHKPT_DECODED);
        EXPECT_TRUE(chkpt_has(record, 9));
        return record.a_flag;
    };
    EXPECT_FALSE(flag(0));
    EXPECT_TRUE(flag(1));
    EXPECT_TRUE(flag(2));
    EXPECT_TRUE(flag(1U << 31));
    EXPECT_FALSE(flag(1ULL << 32));
}

TEST(ChkptNumbers, ATagKeepsItsLow32Bits) {
    const auto [status, record, memory] = decode(ChkptSingleValue_decode, blob().varint(0x100000008).varint(5));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_EQ(record.value, 5U);
}

TEST(ChkptNumbers, ALengthKeepsItsLow32Bits) {
    const auto [status, record, memory] =
        decode(ChkptSegmentListInfo_decode, blob().tag(1, 2).varint(0x100000002).raw({'s', 'l'}).number(2, 1));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_STREQ(record.segment_list, "sl");
    EXPECT_TRUE(record.is_up);
}

TEST(ChkptNumbers, TheLastOfSeveralStands) {
    const auto [status, record, memory] = decode(ChkptSingleValue_decode, blob().number(1, 5).number(1, 6));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_EQ(record.value, 6U);
}

TEST(ChkptNumbers, OneThatIsCutLeavesWhatWasThere) {
    const auto [status, record, memory] = decode(ChkptSingleValue_decode, blob().number(1, 5).tag(1, 0).raw({0x86}));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    EXPECT_EQ(record.value, 5U);
    EXPECT_TRUE(chkpt_has(record, 1));
}

// Texts -------------------------------------------------------------------------------------------

TEST(ChkptTexts, AreTerminatedWhateverTheyHold) {
    const std::string with_zero("a\0b", 3);
    const auto [status, record, memory] = decode(ChkptSessionIdPair_decode, blob().text(2, with_zero));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_EQ(std::string(record.segment_list, 4), std::string("a\0b\0", 4));
    EXPECT_EQ(memory->sizes(), std::vector<std::size_t>{4});
}

TEST(ChkptTexts, AnEmptyOneIsNotAnAbsentOne) {
    const auto [status, record, memory] = decode(ChkptSessionIdPair_decode, blob().text(2, ""));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_STREQ(record.segment_list, "");
    EXPECT_EQ(memory->sizes(), std::vector<std::size_t>{1});
}

TEST(ChkptTexts, ASecondOneLeavesTheFirst) {
    const auto [status, record, memory] = decode(ChkptSessionIdPair_decode, blob().text(2, "one").text(2, "two"));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    EXPECT_STREQ(record.segment_list, "one");
    EXPECT_EQ(memory->sizes().size(), 1U);
}

TEST(ChkptTexts, OneThatIsCutAsksForNoMemory) {
    std::int32_t status = 0;
    ChkptSessionIdPair record;
    const blob cut = blob().tag(2, 2).raw({9, 's', 'l'});
    status = ChkptSessionIdPair_decode(&record, cut.bytes.data(), static_cast<std::uint32_t>(cut.bytes.size()), nullptr,
                                       nullptr);
    EXPECT_EQ(status, CHKPT_TRUNCATED) << "the length is looked at before the allocator";
}

// Single messages ---------------------------------------------------------------------------------

TEST(ChkptMessages, TheLastOfSeveralStandsAloneAndNothingIsMerged) {
    const auto [status, record, memory] =
        decode(ChkptScb_decode, blob().message(4, blob().number(1, 5).number(2, 6)).message(4, blob().number(2, 7)));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_EQ(record.last_error.code, 0U);
    EXPECT_EQ(record.last_error.time_msec, 7U);
    EXPECT_EQ(record.last_error.presence, 2U);
}

TEST(ChkptMessages, OneThatIsLongerThanTheBlobLeavesTheOneBefore) {
    const auto [status, record, memory] =
        decode(ChkptScb_decode, blob().message(4, blob().number(1, 5)).tag(4, 2).raw({3, 0x08, 0x06}));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    EXPECT_EQ(record.last_error.code, 5U);
    EXPECT_TRUE(chkpt_has(record, 4));
}

TEST(ChkptMessages, ADamagedOneKeepsWhatItHasWithoutBeingPresent) {
    const auto [status, record, memory] = decode(
        ChkptScb_decode, blob().message(3, blob().number(2, 5).tag(4, 2).raw({0})).message(5, blob().number(1, 1)));
    EXPECT_EQ(status, CHKPT_UNEXPECTED_TYPE);
    EXPECT_FALSE(chkpt_has(record, 3));
    EXPECT_EQ(record.last_advertisement.reason, 5U);
    EXPECT_EQ(record.last_advertisement.presence, 2U);
    EXPECT_EQ(record.last_notification.presence, 0U) << "nothing behind the damage is read";
}

TEST(ChkptMessages, ANestedMessageEndsWithItsLength) {
    // The number would go on in the bytes behind the message.
    const auto [status, record, memory] =
        decode(ChkptScb_decode, blob().message(4, blob().tag(1, 0).raw({0x85})).raw({0x01, 0x01}));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    EXPECT_EQ(record.last_error.code, 0U);
}

TEST(ChkptMessages, ADamagedOneBehindAGoodOneStandsInItsPlace) {
    const auto [status, record, memory] =
        decode(ChkptScb_decode, blob().message(4, blob().number(1, 5)).message(4, blob().number(2, 7).raw({0x81})));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    EXPECT_TRUE(chkpt_has(record, 4)) << "the first one was good";
    EXPECT_EQ(record.last_error.code, 0U);
    EXPECT_EQ(record.last_error.time_msec, 7U);
}

TEST(ChkptMessages, AnUnknownFieldThatRunsPastANestedMessageEndsThatMessageOnly) {
    const auto [status, record, memory] =
        decode(ChkptScb_decode, blob().message(4, blob().tag(15, 1).raw({0})).message(5, blob().number(1, 1)));
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_TRUE(chkpt_has(record, 4));
    EXPECT_EQ(record.last_error.presence, 0U);
    EXPECT_EQ(record.last_notification.code, 1U);
}

// Arrays ------------------------------------------------------------------------------------------

TEST(ChkptArrays, TheAllocatorIsLookedForBeforeTheElementsAreCounted) {
    ChkptDistribution record;
    const blob cut = blob().tag(1, 0).raw({0x80});
    EXPECT_EQ(ChkptDistribution_decode(&record, cut.bytes.data(), static_cast<std::uint32_t>(cut.bytes.size()), nullptr,
                                       nullptr),
              CHKPT_NO_MEMORY);
}

TEST(ChkptArrays, AMessageOfAnotherTypeThanTheFirstLeavesItsElementZero) {
    const auto [status, record, memory] = decode(ChkptDrSession_decode, blob().tag(4, 2).raw({0}).tag(4, 0).raw({0}));
    EXPECT_EQ(status, CHKPT_UNEXPECTED_TYPE);
    ASSERT_EQ(record.session_ids.count, 2U);
    EXPECT_EQ(record.session_ids.elements[1].session_id, 0U);
    EXPECT_EQ(record.session_ids.elements[1].segment_list, nullptr);
    EXPECT_FALSE(chkpt_has(record, 4));
}

TEST(ChkptArrays, TheElementsAreCountedByTheTypeOfTheArray) {
    // As messages, the second one would have five bytes.
    const auto [status, record, memory] = decode(ChkptDrSession_decode, blob().tag(4, 2).raw({0}).tag(4, 0).raw({5}));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    EXPECT_EQ(record.session_ids.count, 0U);
    EXPECT_EQ(record.session_ids.elements, nullptr);
}

TEST(ChkptArrays, ASecondRunIsTruncatedAndLeavesTheFirst) {
    const auto [status, record, memory] =
        decode(ChkptDistribution_decode, blob().number(1, 5).number(1, 6).number(2, 9).number(1, 7));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    ASSERT_EQ(record.linecards.count, 2U);
    EXPECT_EQ(record.linecards.elements[1], 6U);
    EXPECT_EQ(memory->sizes().size(), 1U);
}

TEST(ChkptArrays, AnUnknownFieldSplitsARun) {
    const auto [status, record, memory] =
        decode(ChkptDistribution_decode, blob().number(1, 5).number(15, 0).number(1, 7));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    EXPECT_EQ(record.linecards.count, 1U);
}

TEST(ChkptArrays, ATagThatIsCutBehindARunStoresNothing) {
    const auto [status, record, memory] =
        decode(ChkptDistribution_decode, blob().number(1, 5).number(1, 6).raw({0x90}));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    EXPECT_EQ(record.linecards.elements, nullptr);
    EXPECT_EQ(record.linecards.count, 0U);
    EXPECT_EQ(record.presence, 0U);
    EXPECT_TRUE(memory->sizes().empty());
}

TEST(ChkptArrays, DamageBehindTheTagAfterARunLeavesTheRun) {
    const auto [status, record, memory] = decode(ChkptDistribution_decode, blob().number(1, 5).tag(2, 0));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    EXPECT_EQ(record.linecards.count, 1U);
    EXPECT_TRUE(chkpt_has(record, 1));
}

TEST(ChkptArrays, ElementsBehindADamagedOneAreZero) {
    const blob good = blob().number(1, 11).text(2, "sl");
    const auto [status, record, memory] =
        decode(ChkptDrSession_decode,
               blob().message(4, good).message(4, blob().number(1, 12).raw({0x80})).message(4, good).number(5, 1));
    EXPECT_EQ(status, CHKPT_TRUNCATED);
    ASSERT_EQ(record.session_ids.count, 3U);
    EXPECT_STREQ(record.session_ids.elements[0].segment_list, "sl");
    EXPECT_EQ(record.session_ids.elements[1].session_id, 12U);
    EXPECT_EQ(record.session_ids.elements[1].segment_list, nullptr);
    EXPECT_EQ(record.session_ids.elements[2].session_id, 0U);
    EXPECT_EQ(record.session_ids.elements[2].segment_list, nullptr);
    EXPECT_EQ(record.session_ids.elements[2].presence, 0U);
    EXPECT_EQ(record.presence, 0U) << "an array is present when all of it was read";
    EXPECT_EQ(record.node_id, 0U);
}

TEST(ChkptArrays, AnElementOfAnotherWireTypeIsUnexpectedAndTheRestIsZero) {
    const auto [status, record, memory] =
        decode(ChkptDistribution_decode, blob().number(1, 5).tag(1, 2).raw({0}).number(1, 7));
    EXPECT_EQ(status, CHKPT_UNEXPECTED_TYPE);
    ASSERT_EQ(record.linecards.count, 3U);
    EXPECT_EQ(record.linecards.elements[0], 5U);
    EXPECT_EQ(record.linecards.elements[1], 0U);
    EXPECT_EQ(record.linecards.elements[2], 0U);
    EXPECT_FALSE(chkpt_has(record, 1));
}

TEST(ChkptArrays, PackedNumbersAreUnexpected) {
    EXPECT_EQ(decode(ChkptDistribution_decode, blob().text(1, "\x10\x20")).status, CHKPT_UNEXPECTED_TYPE);
}

TEST(ChkptArrays, TagsOfOneRunMayBeWrittenDifferently) {
    const auto [status, record, memory] =
        decode(ChkptDistribution_decode, blob().number(1, 5).raw({0x88, 0x80, 0x00, 6}).number(1, 7));
    EXPECT_EQ(status, CHKPT_DECODED);
    ASSERT_EQ(record.linecards.count, 3U);
    EXPECT_EQ(record.linecards.elements[1], 6U);
}

TEST(ChkptArrays, ALongRunIsOneAllocation) {
    constexpr std::uint32_t COUNT = 100000;
    blob input;
    for (std::uint32_t i = 0; i < COUNT; ++i) {
        input.number(1, i);
    }
    const auto [status, record, memory] = decode(ChkptDistribution_decode, input);
    EXPECT_EQ(status, CHKPT_DECODED);
    ASSERT_EQ(record.linecards.count, COUNT);
    for (std::uint32_t i = 0; i < COUNT; ++i) {
        ASSERT_EQ(record.linecards.elements[i], i);
    }
    EXPECT_EQ(memory->sizes(), std::vector<std::size_t>{COUNT * sizeof(std::uint32_t)});
}

TEST(ChkptMemory, TheContextReachesTheAllocatorOfNestedMessages) {
    int calls = 0;
    const blob input = blob().text(1, "p").message(9, blob().text(1, "sl"));
    ChkptDrSession record;
    const std::int32_t status = ChkptDrSession_decode(
        &record, input.bytes.data(), static_cast<std::uint32_t>(input.bytes.size()),
        [](std::size_t size, void *context) -> void * {
            alignas(16) static std::uint8_t pool[256];
            static std::size_t used = 0;
            ++*static_cast<int *>(context);
            void *const block = pool + used;
            used += (size + 15) / 16 * 16;
            return block;
        },
        &calls);
    EXPECT_EQ(status, CHKPT_DECODED);
    EXPECT_EQ(calls, 3);
    EXPECT_STREQ(record.segment_lists.elements[0].segment_list, "sl");
}

}  // namespace
