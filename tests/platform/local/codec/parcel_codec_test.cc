// SPDX-License-Identifier: Apache-2.0
// The parcel codec: round trips of every record type, and damaged or hostile parcels.
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

#include "platform/local/codec/parcel_decoder.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/support/codec_fixture.h"
#include "tests/support/random_record.h"

namespace {

class EveryType : public testing::TestWithParam<const parcel_descriptor *> {};

TEST_P(EveryType, DecodesWhatWasEncoded) {
    const parcel_descriptor *descriptor = GetParam();
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
        const random_record record(descriptor, seed);
        const parcel bytes = encode(record.data(), descriptor);
        const decoded_record decoded(bytes, descriptor);
        ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS) << "seed " << seed;
        ASSERT_EQ(first_difference(descriptor, record.data(), decoded.data()), "") << "seed " << seed;
        ASSERT_EQ(encode(decoded.data(), descriptor), bytes) << "seed " << seed;
    }
}

TEST_P(EveryType, RefusesAnEncodingCutAtAnyLength) {
    const parcel_descriptor *descriptor = GetParam();
    const random_record record(descriptor, 7);
    const parcel whole = encode(record.data(), descriptor);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        parcel cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        if (length >= 20) {
            reseal(&cut);
        }
        const decoded_record decoded(cut, descriptor);
        ASSERT_NE(decoded.code(), ERRCODE_SUCCESS) << "cut at " << length << " of " << whole.size();
        ASSERT_TRUE(decoded.all_zero()) << "cut at " << length;
    }
}

TEST_P(EveryType, RefusesABitChangedAnywhere) {
    const parcel_descriptor *descriptor = GetParam();
    const random_record record(descriptor, 11);
    parcel bytes = encode(record.data(), descriptor);
    for (std::size_t bit = 0; bit < bytes.size() * 8; bit += 1 + bytes.size() / 64) {
        bytes[bit / 8] ^= static_cast<std::uint8_t>(1U << (bit % 8));
        const decoded_record decoded(bytes, descriptor);
        ASSERT_NE(decoded.code(), ERRCODE_SUCCESS) << "bit " << bit;
        bytes[bit / 8] ^= static_cast<std::uint8_t>(1U << (bit % 8));
    }
}

TEST_P(EveryType, SurvivesResealedDamage) {
    const parcel_descriptor *descriptor = GetParam();
    std::mt19937 random(17);
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        const random_record record(descriptor, seed);
        parcel bytes = encode(record.data(), descriptor);
        for (int change = 0; change < 3; ++change) {
            bytes[20 + random() % (bytes.size() - 20)] = static_cast<std::uint8_t>(random());
        }
        reseal(&bytes);
        const decoded_record decoded(bytes, descriptor);
        ASSERT_TRUE(decoded.code() == ERRCODE_SUCCESS || decoded.all_zero());
    }
}

TEST_P(EveryType, AllocatesInProportionToItsEncoding) {
    // Every element takes so many bytes on the wire at the least that its structure stays within
    // the bound; so no legitimate record is ever refused for it.
    const parcel_descriptor *descriptor = GetParam();
    parcel_plan::made_plan plan;
    ASSERT_EQ(parcel_plan::compile(descriptor, descriptor->schema, &plan), ERRCODE_SUCCESS);
    for (const parcel_plan::plan_program &program : plan.programs) {
        for (const parcel_plan::plan_step &step : plan.steps_of(program)) {
            if (step.kind == parcel_plan::step_kind::array) {
                EXPECT_LE(step.size, PARCEL_GROWTH * plan.programs[step.program].least_wire);
            } else if (step.kind == parcel_plan::step_kind::optional) {
                EXPECT_LE(step.size + 7, PARCEL_GROWTH * (1 + plan.programs[step.program].least_wire));
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Codec, EveryType, testing::ValuesIn(pm_descriptors().begin(), pm_descriptors().end()),
                         [](const auto &type) { return std::string(type.param->name); });

TEST(Codec, AnAbsentOptionalAndAnEmptyArrayDecodeAsNull) {
    const pm_srpolicy_atomic_path_parcel path{};
    const decoded_record decoded(encode(&path, pm_srpolicy_atomic_path_parcel_descriptor()),
                                 pm_srpolicy_atomic_path_parcel_descriptor());
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    const auto &result = decoded.as<pm_srpolicy_atomic_path_parcel>();
    EXPECT_EQ(result.FlowLabel, nullptr);
    EXPECT_EQ(result.HopAddress.count, 0U);
    EXPECT_EQ(result.HopAddress.elements, nullptr);
}

TEST(Codec, AnAddressOfKindNoneCarriesNoBytes) {
    pm_segment_parcel with_address{};
    pm_segment_parcel without_address{};
    with_address.IPAddress.IPv4 = 0x01020304;
    without_address.IPAddress.IPAddressType = PM_RECORD_ADDRESS_NONE;
    EXPECT_EQ(encode(&with_address, pm_segment_parcel_descriptor()).size(),
              encode(&without_address, pm_segment_parcel_descriptor()).size() + 4);
}

TEST(Codec, AnEmptyTextIsNotAnAbsentOne) {
    pm_profile_key_parcel key{};
    key.Name = "";
    const decoded_record decoded(encode(&key, pm_profile_key_parcel_descriptor()), pm_profile_key_parcel_descriptor());
    ASSERT_NE(decoded.as<pm_profile_key_parcel>().Name, nullptr);
    EXPECT_STREQ(decoded.as<pm_profile_key_parcel>().Name, "");
}

TEST(Codec, ARecordOfAnotherTypeIsRefused) {
    const pm_values_parcel values{};
    const decoded_record decoded(encode(&values, pm_values_parcel_descriptor()), pm_scb_sample_parcel_descriptor());
    EXPECT_EQ(decoded.code(), PARCEL_OTHER_TYPE);
}

TEST(Codec, NullArgumentsAreRefused) {
    pm_values_parcel values{};
    parcel bytes;
    EXPECT_EQ(parcel_decode(nullptr, 0, &values, pm_values_parcel_descriptor()), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(parcel_decode("x", 1, nullptr, pm_values_parcel_descriptor()), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(parcel_decode("x", 1, &values, nullptr), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(parcel_encode(nullptr, pm_values_parcel_descriptor(), &bytes), ERRCODE_INVALID_ARGUMENT);
    parcel_free_indirections(nullptr, pm_values_parcel_descriptor());
}

TEST(Codec, AnArrayWithACountAndNoElementsIsNotEncoded) {
    pm_pps_summary_npu_ptr record{};
    record.NPUinfoList.count = 3;
    parcel bytes = {1, 2};
    EXPECT_EQ(parcel_encode(&record, pm_pps_summary_npu_ptr_descriptor(), &bytes), ERRCODE_INVALID_ARGUMENT);
    EXPECT_EQ(bytes, (parcel{1, 2}));
}

TEST(Codec, AnEncodingIsAppendedToWhatIsThere) {
    pm_values_parcel values{};
    values.Average = 7;
    const parcel alone = encode(&values, pm_values_parcel_descriptor());
    parcel after = {1, 2, 3};
    ASSERT_EQ(parcel_encode(&values, pm_values_parcel_descriptor(), &after), ERRCODE_SUCCESS);
    parcel wanted = {1, 2, 3};
    wanted.insert(wanted.end(), alone.begin(), alone.end());
    EXPECT_EQ(after, wanted);
}

TEST(Codec, BytesAfterTheRecordAreRefused) {
    const pm_values_parcel values{};
    parcel bytes = encode(&values, pm_values_parcel_descriptor());
    bytes.push_back(0);
    reseal(&bytes);
    EXPECT_EQ(decoded_record(bytes, pm_values_parcel_descriptor()).code(), PARCEL_MALFORMED);
}

TEST(Codec, APresenceByteOtherThanZeroAndOneIsRefused) {
    const auto code = [](std::uint8_t presence) {
        return decoded_record(with_fields(pm_endpoint_atomic_counters_data_parcel_descriptor(), {0, presence}),
                              pm_endpoint_atomic_counters_data_parcel_descriptor())
            .code();
    };
    EXPECT_EQ(code(0), ERRCODE_SUCCESS);
    EXPECT_EQ(code(1), PARCEL_MALFORMED);  // present, but not there
    EXPECT_EQ(code(2), PARCEL_MALFORMED);
}

TEST(Codec, ATextWithAZeroByteIsRefused) {
    const parcel fields = {4, 'a', 0, 'b', 0, 0, 0, 0};
    EXPECT_EQ(decoded_record(with_fields(pm_sl_session_id_map_info_descriptor(), fields),
                             pm_sl_session_id_map_info_descriptor())
                  .code(),
              PARCEL_MALFORMED);
}

TEST(Codec, ACountThatTheBytesCannotHoldIsRefusedBeforeAnythingIsAllocated) {
    const parcel fields = {0xFF, 0xFF, 0xFF, 0xFF, 0x0F};  // 2^32 - 1 elements, and none there
    EXPECT_EQ(
        decoded_record(with_fields(pm_dr_retry_queue_info_descriptor(), fields), pm_dr_retry_queue_info_descriptor())
            .code(),
        PARCEL_MALFORMED);
}

TEST(Codec, AnArrayWhoseCountIsALongZeroIsNull) {
    const parcel_descriptor *type = make_type("$1={List}a(I){Last}C;", 24, {0, 16});
    const decoded_record decoded(with_fields(type, {0x80, 0x00, 9}), type);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    EXPECT_EQ(decoded.as<parcel_array<std::uint16_t>>().count, 0U);
    EXPECT_EQ(decoded.as<parcel_array<std::uint16_t>>().elements, nullptr);
    EXPECT_EQ(static_cast<const std::uint8_t *>(decoded.data())[16], 9);
}

TEST(Codec, ALengthBeyondThirtyTwoBitsIsRefused) {
    const parcel fields = {0xFF, 0xFF, 0xFF, 0xFF, 0x7F};
    EXPECT_EQ(
        decoded_record(with_fields(pm_dr_retry_queue_info_descriptor(), fields), pm_dr_retry_queue_info_descriptor())
            .code(),
        PARCEL_MALFORMED);
}

// A chain of interface histories, each the only bundle member of the one before.
std::vector<pm_intf_history_parcel> history_chain(std::size_t length) {
    std::vector<pm_intf_history_parcel> chain(length);
    for (std::size_t i = 0; i + 1 < length; ++i) {
        chain[i].BundleMembers = {1, &chain[i + 1]};
        chain[i].HistoryInfo.HistoryType = PM_HISTORY_DM_PACKET;
    }
    return chain;
}

TEST(Codec, ARecursiveTypeDecodesToItsDepthLimit) {
    const auto chain = history_chain(PARCEL_MAX_DEPTH - 1);
    const decoded_record decoded(encode(chain.data(), pm_intf_history_parcel_descriptor()),
                                 pm_intf_history_parcel_descriptor());
    EXPECT_EQ(decoded.code(), ERRCODE_SUCCESS);
    EXPECT_EQ(first_difference(pm_intf_history_parcel_descriptor(), chain.data(), decoded.data()), "");
}

TEST(Codec, ARecordNestedBeyondTheLimitIsNotEncoded) {
    const auto chain = history_chain(PARCEL_MAX_DEPTH + 1);
    parcel bytes;
    EXPECT_EQ(parcel_encode(chain.data(), pm_intf_history_parcel_descriptor(), &bytes), ERRCODE_RANGE);
    EXPECT_TRUE(bytes.empty());
}

TEST(Codec, NestingBeyondTheLimitIsRefused) {
    // Each level: no name, handle 0, history type 1 (no arm), one bundle member.
    parcel fields;
    for (int level = 0; level < 1000; ++level) {
        fields.insert(fields.end(), {0, 0, 0, 0, 0, 1, 0, 0, 0, 1});
    }
    EXPECT_EQ(
        decoded_record(with_fields(pm_intf_history_parcel_descriptor(), fields), pm_intf_history_parcel_descriptor())
            .code(),
        PARCEL_MALFORMED);
}

TEST(Codec, FreeingLeavesTheRecordZero) {
    const random_record record(pm_srpolicy_parcel_descriptor(), 3);
    const parcel bytes = encode(record.data(), pm_srpolicy_parcel_descriptor());
    pm_srpolicy_parcel policy{};
    ASSERT_EQ(
        parcel_decode(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &policy, pm_srpolicy_parcel_descriptor()),
        ERRCODE_SUCCESS);
    parcel_free_indirections(&policy, pm_srpolicy_parcel_descriptor());
    const pm_srpolicy_parcel zero{};
    EXPECT_EQ(std::memcmp(&policy, &zero, sizeof policy), 0);
    parcel_free_indirections(&policy, pm_srpolicy_parcel_descriptor());  // nothing left to free
}

TEST(Codec, WhatARecordHangsOnIsFoundAgain) {
    struct text_record {
        std::uint8_t First;
        const char *Text;
        parcel_array<std::uint16_t> List;
    };
    const parcel_descriptor *type = make_type("$1={First}C{Text}s{List}a(I);", sizeof(text_record), {0, 8, 16});
    std::uint16_t numbers[] = {5, 6};
    const text_record full{1, "ab", {2, numbers}};
    const text_record without_text{1, nullptr, {2, numbers}};
    const text_record empty{1, nullptr, {0, nullptr}};
    parcel_plan::made_plan plan;
    ASSERT_EQ(parcel_plan::compile(type, type->schema, &plan), ERRCODE_SUCCESS);
    const auto block_of = [&](const decoded_record &decoded) {
        return parcel_indirections(plan, static_cast<const std::uint8_t *>(decoded.data()));
    };
    const decoded_record first(encode(&full, type), type);
    EXPECT_EQ(block_of(first), first.as<text_record>().Text);
    const decoded_record second(encode(&without_text, type), type);
    EXPECT_EQ(block_of(second), second.as<text_record>().List.elements);
    EXPECT_NE(block_of(second), nullptr);
    EXPECT_EQ(block_of(decoded_record(encode(&empty, type), type)), nullptr);
}

TEST(Header, MayBeAllThatThereIs) {
    const pm_values_parcel values{};
    parcel bytes = encode(&values, pm_values_parcel_descriptor());
    parcel_header header{};
    ASSERT_EQ(parcel_read_header(bytes.data(), bytes.size(), &header), ERRCODE_SUCCESS);
    bytes.resize(header.size);
    reseal(&bytes);
    EXPECT_EQ(parcel_read_header(bytes.data(), bytes.size(), &header), ERRCODE_SUCCESS);
    EXPECT_EQ(header.type, "pm_values_parcel");
    bytes.pop_back();  // the last letter of the name
    reseal(&bytes);
    EXPECT_EQ(parcel_read_header(bytes.data(), bytes.size(), &header), PARCEL_MALFORMED);
}

TEST(Header, SaysTypeVersionAndSchema) {
    const pm_values_parcel values{};
    const parcel bytes = encode(&values, pm_values_parcel_descriptor());
    parcel_header header{};
    ASSERT_EQ(parcel_read_header(bytes.data(), bytes.size(), &header), ERRCODE_SUCCESS);
    EXPECT_EQ(header.type, "pm_values_parcel");
    EXPECT_EQ(header.version_major, 19U);
    EXPECT_EQ(header.version_minor, 8U);
    EXPECT_EQ(header.fingerprint, parcel_fingerprint(pm_values_parcel_descriptor()));
}

// The wire form byte by byte, as docs/parcel-encoding.md gives it.
TEST(Header, AndFieldsAreWhereTheDocumentSays) {
    pm_sl_session_info info{};
    info.SegmentListName = "sl";
    info.LivenessSessionStateUp = 1;
    std::uint64_t sent = 0x0102030405060708ULL;
    info.RecordSendTimestamp = sent;
    const parcel bytes = encode(&info, pm_sl_session_info_descriptor());
    EXPECT_EQ(parcel(bytes.begin(), bytes.begin() + 4), (parcel{'P', 'M', 'P', 1}));
    std::uint64_t sum = 0;
    std::memcpy(&sum, bytes.data() + 4, sizeof sum);
    EXPECT_EQ(sum, checksum(bytes.data() + 12, bytes.size() - 12));
    const std::string schema = "$192={SegmentListName}s{LivenessSessionStateUp}b{RecordSendTimestamp}PH;";
    std::uint64_t fingerprint = 0;
    std::memcpy(&fingerprint, bytes.data() + 12, sizeof fingerprint);
    EXPECT_EQ(fingerprint, checksum(schema.data(), schema.size()));
    parcel rest = {19, 8, 18};
    const std::string name = "pm_sl_session_info";
    rest.insert(rest.end(), name.begin(), name.end());
    const parcel fields = {3, 's', 'l', 1, 0, 0, 0, 8, 7, 6, 5, 4, 3, 2, 1};
    rest.insert(rest.end(), fields.begin(), fields.end());
    EXPECT_EQ(parcel(bytes.begin() + 20, bytes.end()), rest);
}

}  // namespace
