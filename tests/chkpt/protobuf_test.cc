// SPDX-License-Identifier: Apache-2.0
// Blobs that Protocol Buffers' own library encoded, of messages filled at random, decode to every
// value that was put in.
#include <google/protobuf/message.h>
#include <gtest/gtest.h>
#include <random>
#include <string>

#include "checkpoint.pb.h"
#include "tests/chkpt/decoded.h"

namespace {

using google::protobuf::FieldDescriptor;
using google::protobuf::Message;

constexpr unsigned ROUNDS = 2000;
constexpr unsigned MAX_ELEMENTS = 4;

// Random content -----------------------------------------------------------------------------------

class filler {
public:
    explicit filler(unsigned seed) : random_(seed) {}

    // Fills about three fields of four.
    void fill(Message &message) {
        for (int i = 0; i < message.GetDescriptor()->field_count(); ++i) {
            const FieldDescriptor &field = *message.GetDescriptor()->field(i);
            const unsigned times = field.is_repeated() ? below(MAX_ELEMENTS + 1) : static_cast<unsigned>(below(4) != 0);
            for (unsigned time = 0; time < times; ++time) {
                fill_field(message, field);
            }
        }
    }

private:
    unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    // Numbers of every length, the largest included.
    std::uint64_t number() { return random_() >> below(64); }
    std::string text() {
        std::string result(below(40), '\0');
        for (char &c : result) {
            c = static_cast<char>('!' + below(90));
        }
        return result;
    }

    void fill_field(Message &message, const FieldDescriptor &field) {
        const google::protobuf::Reflection &reflection = *message.GetReflection();
        switch (field.cpp_type()) {
        case FieldDescriptor::CPPTYPE_UINT32:
            if (field.is_repeated()) {
                reflection.AddUInt32(&message, &field, static_cast<std::uint32_t>(number()));
            } else {
                reflection.SetUInt32(&message, &field, static_cast<std::uint32_t>(number()));
            }
            break;
        case FieldDescriptor::CPPTYPE_UINT64: reflection.SetUInt64(&message, &field, number()); break;
        case FieldDescriptor::CPPTYPE_BOOL: reflection.SetBool(&message, &field, below(2) != 0); break;
        case FieldDescriptor::CPPTYPE_STRING: reflection.SetString(&message, &field, text()); break;
        case FieldDescriptor::CPPTYPE_MESSAGE:
            fill(field.is_repeated() ? *reflection.AddMessage(&message, &field)
                                     : *reflection.MutableMessage(&message, &field));
            break;
        default: FAIL() << "no such field in checkpoint.proto: " << field.full_name();
        }
    }

    std::mt19937_64 random_;
};

// Comparison ---------------------------------------------------------------------------------------

// Presence of fields, the first one in bit 0, is what the library says.
template <class Record>
void expect_presence(const Record &record, const Message &message) {
    for (int i = 0; i < message.GetDescriptor()->field_count(); ++i) {
        const FieldDescriptor &field = *message.GetDescriptor()->field(i);
        const google::protobuf::Reflection &reflection = *message.GetReflection();
        const bool present =
            field.is_repeated() ? reflection.FieldSize(message, &field) != 0 : reflection.HasField(message, &field);
        EXPECT_EQ(chkpt_has(record, static_cast<unsigned>(field.number())), present) << field.full_name();
    }
}

void expect_text(const char *text, bool present, const std::string &expected) {
    ASSERT_EQ(text != nullptr, present);
    if (present) {
        EXPECT_EQ(text, expected);
    }
}

void expect_same(std::uint32_t number, std::uint32_t expected) { EXPECT_EQ(number, expected); }

void expect_same(const ChkptAdvertisement &record, const checkpoint::Advertisement &message) {
    expect_presence(record, message);
    EXPECT_EQ(record.time_msec, message.time_msec());
    EXPECT_EQ(record.reason, message.reason());
    EXPECT_EQ(record.in_flight, message.in_flight());
    EXPECT_EQ(record.average_usec, message.average_usec());
    EXPECT_EQ(record.minimum_usec, message.minimum_usec());
    EXPECT_EQ(record.maximum_usec, message.maximum_usec());
    EXPECT_EQ(record.variance_usec, message.variance_usec());
    EXPECT_EQ(record.loss_percent, message.loss_percent());
    EXPECT_EQ(record.a_flag, message.a_flag());
}

void expect_same(const ChkptControlCode &record, const checkpoint::ControlCode &message) {
    expect_presence(record, message);
    EXPECT_EQ(record.code, message.code());
    EXPECT_EQ(record.time_msec, message.time_msec());
}

void expect_same(const ChkptScb &record, const checkpoint::Scb &message) {
    expect_presence(record, message);
    expect_text(record.interface_name, message.has_interface_name(), message.interface_name());
    EXPECT_EQ(record.advertisement_kind, message.advertisement_kind());
    expect_same(record.last_advertisement, message.last_advertisement());
    expect_same(record.last_error, message.last_error());
    expect_same(record.last_notification, message.last_notification());
}

void expect_same(const ChkptDistributionValues &record, const checkpoint::DistributionValues &message);
void expect_same(const ChkptDistributionGroup &record, const checkpoint::DistributionGroup &message);
void expect_same(const ChkptDistributionEntry &record, const checkpoint::DistributionEntry &message);
void expect_same(const ChkptSessionIdPair &record, const checkpoint::SessionIdPair &message);
void expect_same(const ChkptSegmentListInfo &record, const checkpoint::SegmentListInfo &message);

template <class Element, class Expected>
void expect_all_same(const chkpt_array<Element> &array, const Expected &expected) {
    ASSERT_EQ(array.count, static_cast<std::uint32_t>(expected.size()));
    EXPECT_EQ(array.elements == nullptr, expected.empty());
    for (std::uint32_t i = 0; i < array.count; ++i) {
        expect_same(array.elements[i], expected[static_cast<int>(i)]);
    }
}

void expect_same(const ChkptDistributionValues &record, const checkpoint::DistributionValues &message) {
    expect_presence(record, message);
    EXPECT_EQ(record.value_1, message.value_1());
    EXPECT_EQ(record.value_2, message.value_2());
    EXPECT_EQ(record.value_3, message.value_3());
    EXPECT_EQ(record.value_4, message.value_4());
}

void expect_same(const ChkptDistributionGroup &record, const checkpoint::DistributionGroup &message) {
    expect_presence(record, message);
    EXPECT_EQ(record.value_1, message.value_1());
    EXPECT_EQ(record.value_2, message.value_2());
    expect_all_same(record.values, message.values());
}

void expect_same(const ChkptDistributionEntry &record, const checkpoint::DistributionEntry &message) {
    expect_presence(record, message);
    EXPECT_EQ(record.value_1, message.value_1());
    expect_all_same(record.groups, message.groups());
    EXPECT_EQ(record.value_3, message.value_3());
}

void expect_same(const ChkptDistribution &record, const checkpoint::Distribution &message) {
    expect_presence(record, message);
    expect_all_same(record.linecards, message.linecards());
    EXPECT_EQ(record.value_2, message.value_2());
    EXPECT_EQ(record.value_3, message.value_3());
    expect_all_same(record.entries, message.entries());
}

void expect_same(const ChkptSessionIdPair &record, const checkpoint::SessionIdPair &message) {
    expect_presence(record, message);
    EXPECT_EQ(record.session_id, message.session_id());
    expect_text(record.segment_list, message.has_segment_list(), message.segment_list());
}

void expect_same(const ChkptSegmentListInfo &record, const checkpoint::SegmentListInfo &message) {
    expect_presence(record, message);
    expect_text(record.segment_list, message.has_segment_list(), message.segment_list());
    EXPECT_EQ(record.is_up, message.is_up());
    EXPECT_EQ(record.value_3, message.value_3());
}

void expect_same(const ChkptDrSession &record, const checkpoint::DrSession &message) {
    expect_presence(record, message);
    expect_text(record.policy_name, message.has_policy_name(), message.policy_name());
    EXPECT_EQ(record.lsp_id, message.lsp_id());
    EXPECT_EQ(record.is_up, message.is_up());
    expect_all_same(record.session_ids, message.session_ids());
    EXPECT_EQ(record.node_id, message.node_id());
    EXPECT_EQ(record.npu_id, message.npu_id());
    EXPECT_EQ(record.host_type, message.host_type());
    EXPECT_EQ(record.value_8, message.value_8());
    expect_all_same(record.segment_lists, message.segment_lists());
}

void expect_same(const ChkptSingleValue &record, const checkpoint::SingleValue &message) {
    expect_presence(record, message);
    EXPECT_EQ(record.value, message.value());
}

template <class Message, class Record, auto Decode>
struct peer {
    static void check(unsigned seed) {
        Message message;
        filler(seed).fill(message);
        blob input;
        input.append(message.SerializeAsString());
        const decoded<Record> result = decode<Record>(Decode, input);
        SCOPED_TRACE(message.DebugString());
        EXPECT_EQ(result.status, CHKPT_DECODED);
        expect_same(result.record, message);
    }
};

template <class Peer>
class EncodedByProtobuf : public testing::Test {};

using peers =
    testing::Types<peer<checkpoint::Advertisement, ChkptAdvertisement, ChkptAdvertisement_decode>,
                   peer<checkpoint::ControlCode, ChkptControlCode, ChkptControlCode_decode>,
                   peer<checkpoint::Scb, ChkptScb, ChkptScb_decode>,
                   peer<checkpoint::DistributionValues, ChkptDistributionValues, ChkptDistributionValues_decode>,
                   peer<checkpoint::DistributionGroup, ChkptDistributionGroup, ChkptDistributionGroup_decode>,
                   peer<checkpoint::DistributionEntry, ChkptDistributionEntry, ChkptDistributionEntry_decode>,
                   peer<checkpoint::Distribution, ChkptDistribution, ChkptDistribution_decode>,
                   peer<checkpoint::SessionIdPair, ChkptSessionIdPair, ChkptSessionIdPair_decode>,
                   peer<checkpoint::SegmentListInfo, ChkptSegmentListInfo, ChkptSegmentListInfo_decode>,
                   peer<checkpoint::DrSession, ChkptDrSession, ChkptDrSession_decode>,
                   peer<checkpoint::SingleValue, ChkptSingleValue, ChkptSingleValue_decode>>;
TYPED_TEST_SUITE(EncodedByProtobuf, peers);

TYPED_TEST(EncodedByProtobuf, DecodesToWhatWasEncoded) {
    for (unsigned seed = 0; seed < ROUNDS && !this->HasFailure(); ++seed) {
        TypeParam::check(seed);
    }
}

}  // namespace
