// Records to JSON and back: tools/perf-store/record_reader.h and record_writer.h.
#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "perf-store/datasets/json_document.h"
#include "perf-store/datasets/record_reader.h"
#include "perf-store/datasets/record_writer.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/support/random_record.h"

namespace {

using namespace perf_store;

// A record read from JSON.
class record_of {
public:
    record_of(const parcel_descriptor *type, const std::string &json) {
        std::size_t length = 0;
        const char *problem = nullptr;
        if (!document_.read(json.c_str(), &length, &problem) || length != json.size()) {
            refusal_ = "not one document: " + json;
            return;
        }
        record_reader reader(&document_, &path_, &memory_);
        try {
            record_ = reader.read(document_.root(), shape_of(type).record());
        } catch (const input_error &error) {
            refusal_ = error.what();
        }
    }

    [[nodiscard]] const void *data() const { return record_; }
    [[nodiscard]] const std::string &refusal() const { return refusal_; }  // empty for none

private:
    json_document document_;
    member_path path_;
    record_memory memory_;
    void *record_ = nullptr;
    std::string refusal_;
};

std::string written(const void *record, const parcel_descriptor *type) {
    std::string json;
    append_record(record, shape_of(type).record(), perf_store::json_fields::all, &json);
    return json;
}

// What is written of the record that is read, or why it is not read.
std::string again(const parcel_descriptor *type, const std::string &json) {
    const record_of record(type, json);
    return record.refusal().empty() ? written(record.data(), type) : record.refusal();
}

std::string refusal(const parcel_descriptor *type, const std::string &json) { return record_of(type, json).refusal(); }

const parcel_descriptor *const VALUES = pm_values_parcel_descriptor();
const parcel_descriptor *const SAMPLE = pm_scb_sample_parcel_descriptor();
const parcel_descriptor *const PORTS = pm_rx_udp_port_parcel_descriptor();
const parcel_descriptor *const DETECTION = pm_liveness_detection_parcel_descriptor();
const parcel_descriptor *const ADVERT = pm_lm_adv_sample_parcel_descriptor();
const parcel_descriptor *const KEY = pm_profile_key_parcel_descriptor();
const parcel_descriptor *const SEGMENT = pm_segment_parcel_descriptor();
const parcel_descriptor *const BUFFER = pm_chkpt_scb_parcel_descriptor();
const parcel_descriptor *const BATCH = pm_stats_batch_elem_t_descriptor();
const parcel_descriptor *const HISTORY = pm_intf_history_parcel_descriptor();

class EveryRecordType : public testing::TestWithParam<const parcel_descriptor *> {};

TEST_P(EveryRecordType, ComesBackFromJsonAsItWas) {
    const parcel_descriptor *type = GetParam();
    for (std::uint64_t seed = 0; seed < 25; ++seed) {
        const random_record record(type, seed);
        const std::string json = written(record.data(), type);
        const record_of read(type, json);
        ASSERT_EQ(read.refusal(), "") << "seed " << seed << "\n" << json;
        ASSERT_EQ(first_difference(type, record.data(), read.data()), "") << "seed " << seed << "\n" << json;
        ASSERT_EQ(written(read.data(), type), json) << "seed " << seed;
    }
}

TEST_P(EveryRecordType, NamesItsFieldsAsTheSchemaSpellsThem) {
    const parcel_descriptor *type = GetParam();
    const std::vector<std::uint64_t> zero(type->layout[0].size / 8 + 1);
    const std::string json = written(zero.data(), type);
    const record_type schema(type);
    std::size_t at = 0;
    for (const parcel_notation::field &field : schema.record().fields) {
        const std::string member = (at == 0 ? "{\"" : ",\"") + std::string(field.name) + "\":";
        const std::size_t found = json.find(member, at);
        ASSERT_NE(found, std::string::npos) << member << " in " << json;
        at = found + member.size();
    }
}

TEST_P(EveryRecordType, AnEmptyObjectIsTheZeroRecord) {
    const parcel_descriptor *type = GetParam();
    const std::vector<std::uint64_t> zero(type->layout[0].size / 8 + 1);
    const record_of read(type, "{}");
    ASSERT_EQ(read.refusal(), "");
    EXPECT_EQ(std::memcmp(read.data(), zero.data(), type->layout[0].size), 0);
}

TEST_P(EveryRecordType, RefusesAFieldThatItDoesNotHave) {
    EXPECT_EQ(refusal(GetParam(), R"({"NoSuchField":1})"), "NoSuchField: unknown field");
}

INSTANTIATE_TEST_SUITE_P(RecordJson, EveryRecordType,
                         testing::ValuesIn(pm_descriptors().begin(), pm_descriptors().end()),
                         [](const auto &type) { return std::string(type.param->name); });

TEST(RecordJson, ThereAreTwoHundredTypes) { EXPECT_EQ(pm_descriptors().size(), 200U); }

TEST(RecordJson, FieldsMayComeInAnyOrder) {
    EXPECT_EQ(again(VALUES, R"({"Variance":4,"Average":1,"Maximum":3,"Minimum":2})"),
              R"({"Average":1,"Minimum":2,"Maximum":3,"Variance":4})");
}

TEST(RecordJson, AFieldGivenTwiceIsRefused) {
    EXPECT_EQ(refusal(VALUES, R"({"Average":1,"Average":1})"), "Average: given twice");
    EXPECT_EQ(refusal(VALUES, R"({"Average":1,"Minimum":2,"Average":0})"), "Average: given twice");
}

TEST(RecordJson, NamesAreTakenToTheLetter) {
    EXPECT_EQ(refusal(VALUES, R"({"average":1})"), "average: unknown field");
    EXPECT_EQ(refusal(VALUES, R"({"Average ":1})"), "Average : unknown field");
    const std::string empty = refusal(VALUES, R"({"":1})");
    EXPECT_TRUE(empty.ends_with("unknown field")) << empty;
    EXPECT_EQ(empty.find('['), std::string::npos) << empty << " looks like an element of an array";
}

TEST(RecordJson, SomethingElseThanAnObjectIsRefused) {
    EXPECT_EQ(refusal(SEGMENT, R"({"USIDInfo":[]})"), "USIDInfo: expected an object, found an array");
    EXPECT_EQ(refusal(SEGMENT, R"({"USIDInfo":"x"})"), "USIDInfo: expected an object, found text");
    EXPECT_EQ(refusal(SEGMENT, R"({"USIDInfo":true})"), "USIDInfo: expected an object, found a boolean");
    EXPECT_EQ(refusal(pm_scb_probe_results_parcel_descriptor(), R"({"ProbeValues":null})"),
              "ProbeValues: expected an object, found null");
}

TEST(RecordJson, D) {
    EXPECT_EQ(again(VALUES, R"({"Average":0,"Minimum":4294967295,"Maximum":"0xffffffff","Variance":"017"})"),
              R"({"Average":0,"Minimum":4294967295,"Maximum":4294967295,"Variance":15})");
    EXPECT_EQ(refusal(VALUES, R"({"Average":4294967296})"), "Average: 4294967296 is out of range for D");
    EXPECT_EQ(refusal(VALUES, R"({"Average":"0x100000000"})"), "Average: 0x100000000 is out of range for D");
    EXPECT_EQ(refusal(VALUES, R"({"Average":-1})"), "Average: -1 is out of range for D");
    EXPECT_EQ(refusal(VALUES, R"({"Average":99999999999999999999})"),
              "Average: 99999999999999999999 is out of range for D");
}

TEST(RecordJson, Hexadecimal) {
    const parcel_descriptor *type = pm_srpolicy_parcel_descriptor();
    const record_of policy(type, R"({"InterfaceName":"0xffffffff"})");
    ASSERT_EQ(policy.refusal(), "");
    EXPECT_EQ(static_cast<const pm_srpolicy_parcel *>(policy.data())->InterfaceName, 0xFFFFFFFFU);
    EXPECT_NE(written(policy.data(), type).find(R"("InterfaceName":4294967295)"), std::string::npos);
    EXPECT_EQ(refusal(type, R"({"InterfaceName":4294967296})"), "InterfaceName: 4294967296 is out of range for D%h");
}

TEST(RecordJson, H) {
    EXPECT_EQ(again(SAMPLE, R"({"MeasurementValue":0,"QueryTimestamp":"0xFFFFFFFFFFFFFFFF"})"),
              R"({"MeasurementValue":0,"QueryTimestamp":"18446744073709551615"})");
    EXPECT_EQ(again(SAMPLE, R"({"MeasurementValue":18446744073709551615,"QueryTimestamp":4294967296})"),
              R"({"MeasurementValue":"18446744073709551615","QueryTimestamp":4294967296})");
    EXPECT_EQ(refusal(SAMPLE, R"({"QueryTimestamp":18446744073709551616})"),
              "QueryTimestamp: 18446744073709551616 is out of range for H");
    EXPECT_EQ(refusal(SAMPLE, R"({"QueryTimestamp":"-1"})"), "QueryTimestamp: -1 is out of range for H");
}

TEST(RecordJson, NumbersAboveTwoToThe53AreWrittenAsText) {
    EXPECT_EQ(again(SAMPLE, R"({"MeasurementValue":9007199254740992,"QueryTimestamp":9007199254740993})"),
              R"({"MeasurementValue":9007199254740992,"QueryTimestamp":"9007199254740993"})");
}

TEST(RecordJson, I) {
    EXPECT_EQ(again(PORTS, R"({"ConfiguredPortNumber":0,"IPv4PortNumber":65535,"IPv6PortNumber":"0xffff"})"),
              R"({"ConfiguredPortNumber":0,"IPv4PortNumber":65535,"IPv6PortNumber":65535})");
    EXPECT_EQ(refusal(PORTS, R"({"IPv4PortNumber":65536})"), "IPv4PortNumber: 65536 is out of range for I");
    EXPECT_EQ(refusal(PORTS, R"({"IPv4PortNumber":-1})"), "IPv4PortNumber: -1 is out of range for I");
}

TEST(RecordJson, C) {
    EXPECT_EQ(again(DETECTION, R"({"Multiplier":255})"), R"({"Multiplier":255,"LoggingStateChangeEnabled":false})");
    EXPECT_EQ(again(DETECTION, R"({"Multiplier":"0377"})"), R"({"Multiplier":255,"LoggingStateChangeEnabled":false})");
    EXPECT_EQ(refusal(DETECTION, R"({"Multiplier":256})"), "Multiplier: 256 is out of range for C");
    EXPECT_EQ(refusal(DETECTION, R"({"Multiplier":-1})"), "Multiplier: -1 is out of range for C");
}

TEST(RecordJson, Enumeration) {
    const auto reason = [](const char *value) {
        return again(ADVERT,
                     R"({"Timestamp":1,"AdvertisementReason":)" + std::string(value) + R"(,"LossPercentage":2})");
    };
    const auto with = [](const char *value) {
        return R"({"Timestamp":1,"AdvertisementReason":)" + std::string(value) + R"(,"LossPercentage":2})";
    };
    EXPECT_EQ(reason("0"), with("0"));
    EXPECT_EQ(reason("-1"), with("-1"));
    EXPECT_EQ(reason("2147483647"), with("2147483647"));
    EXPECT_EQ(reason("\"0x7fffffff\""), with("2147483647"));
    EXPECT_EQ(reason("-2147483648"), with("-2147483648"));
    EXPECT_EQ(reason("\"-0x80000000\""), with("-2147483648"));
    EXPECT_EQ(reason("2147483648"), "AdvertisementReason: 2147483648 is out of range for [pm_advert_reason_e]e");
    EXPECT_EQ(reason("-2147483649"), "AdvertisementReason: -2147483649 is out of range for [pm_advert_reason_e]e");
    EXPECT_EQ(reason("18446744073709551615"),
              "AdvertisementReason: 18446744073709551615 is out of range for [pm_advert_reason_e]e");
    EXPECT_EQ(reason("null"), "AdvertisementReason: expected a number, found null");
    EXPECT_EQ(reason("\"periodic\""), "AdvertisementReason: periodic is not an integer");
}

TEST(RecordJson, OtherValuesThanIntegersAreRefused) {
    const auto average = [](const char *value) { return refusal(VALUES, "{\"Average\":" + std::string(value) + "}"); };
    EXPECT_EQ(average("1.0"), "Average: 1.0 is not an integer");
    EXPECT_EQ(average("1e3"), "Average: 1e3 is not an integer");
    EXPECT_EQ(average("\"\""), "Average: empty text is not an integer");
    EXPECT_EQ(average("\"ten\""), "Average: ten is not an integer");
    EXPECT_EQ(average("\"0x\""), "Average: 0x is not an integer");
    EXPECT_EQ(average("\" 1\""), "Average:  1 is not an integer");
    EXPECT_EQ(average("true"), "Average: expected a number, found a boolean");
    EXPECT_EQ(average("null"), "Average: expected a number, found null");
    EXPECT_EQ(average("[1]"), "Average: expected a number, found an array");
    EXPECT_EQ(average("{}"), "Average: expected a number, found an object");
}

TEST(RecordJson, Boolean) {
    EXPECT_EQ(again(DETECTION, R"({"LoggingStateChangeEnabled":true})"),
              R"({"Multiplier":0,"LoggingStateChangeEnabled":true})");
    EXPECT_EQ(again(DETECTION, R"({"LoggingStateChangeEnabled":false})"),
              R"({"Multiplier":0,"LoggingStateChangeEnabled":false})");
    EXPECT_EQ(refusal(DETECTION, R"({"LoggingStateChangeEnabled":1})"),
              "LoggingStateChangeEnabled: expected a boolean, found a number");
    EXPECT_EQ(refusal(DETECTION, R"({"LoggingStateChangeEnabled":"true"})"),
              "LoggingStateChangeEnabled: expected a boolean, found text");
    EXPECT_EQ(refusal(DETECTION, R"({"LoggingStateChangeEnabled":null})"),
              "LoggingStateChangeEnabled: expected a boolean, found null");
}

TEST(RecordJson, AnyOtherBooleanThanZeroIsTrue) {
    pm_liveness_detection_parcel record{};
    record.LoggingStateChangeEnabled = 7;
    EXPECT_EQ(written(&record, DETECTION), R"({"Multiplier":0,"LoggingStateChangeEnabled":true})");
}

// Texts ------------------------------------------------------------------------------------------

std::string key_named(const std::string &name) {
    return R"({"ProfileIsSet":false,"MeasurementType":0,"Transport_type":0,"Name":)" + name + "}";
}

TEST(RecordJson, AnAbsentTextIsNotAnEmptyOne) {
    const record_of absent(KEY, key_named("null"));
    const record_of empty(KEY, key_named(R"("")"));
    ASSERT_EQ(absent.refusal() + empty.refusal(), "");
    EXPECT_EQ(static_cast<const pm_profile_key_parcel *>(absent.data())->Name, nullptr);
    EXPECT_STREQ(static_cast<const pm_profile_key_parcel *>(empty.data())->Name, "");
    EXPECT_EQ(written(absent.data(), KEY), key_named("null"));
    EXPECT_EQ(written(empty.data(), KEY), key_named(R"("")"));
}

TEST(RecordJson, Text) {
    EXPECT_EQ(again(KEY, key_named(R"("gold")")), key_named(R"("gold")"));
    EXPECT_EQ(again(KEY, key_named(R"("K\u00f6ln \"\\\/\n")")), key_named("\"K\xC3\xB6ln \\\"\\\\/\\u000a\""));
    const std::string longest(100000, 'x');
    EXPECT_EQ(again(KEY, key_named('"' + longest + '"')), key_named('"' + longest + '"'));
}

TEST(RecordJson, ATextWithAZeroByteIsRefused) {
    EXPECT_EQ(refusal(KEY, R"({"Name":"a\u0000b"})"), "Name: text holds a zero byte");
}

TEST(RecordJson, OtherValuesThanTextAreRefused) {
    EXPECT_EQ(refusal(KEY, R"({"Name":1})"), "Name: expected text, found a number");
    EXPECT_EQ(refusal(KEY, R"({"Name":[]})"), "Name: expected text, found an array");
}

TEST(RecordJson, ATextThatIsNotUtf8CannotBeWritten) {
    pm_profile_key_parcel record{};
    record.Name = "K\xF6ln";
    EXPECT_THROW(static_cast<void>(written(&record, KEY)), std::runtime_error);
}

// Addresses --------------------------------------------------------------------------------------

TEST(RecordJson, Ipv4Ipv6AndMacText) {
    const parcel_descriptor *type = pm_intf_parcel_descriptor();
    const record_of record(
        type, R"({"SourceAddress":"10.0.0.1","SourceV6Address":"2001:db8::1","LinkLocalIV6Address":"FE80::2",)"
              R"("SourceMacAddress":"00:11:22:33:44:55","NextHopMacAddress":"0011.2233.44FF"})");
    ASSERT_EQ(record.refusal(), "");
    const auto &interface = *static_cast<const pm_intf_parcel *>(record.data());
    const std::uint8_t ipv4[] = {10, 0, 0, 1};
    const std::uint8_t ipv6[16] = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    const std::uint8_t mac[] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
    EXPECT_EQ(std::memcmp(&interface.SourceAddress, ipv4, sizeof ipv4), 0);
    EXPECT_EQ(std::memcmp(&interface.SourceV6Address, ipv6, sizeof ipv6), 0);
    EXPECT_EQ(std::memcmp(&interface.SourceMacAddress, mac, sizeof mac), 0);
    const std::string json = written(record.data(), type);
    EXPECT_NE(json.find(R"("SourceAddress":"10.0.0.1","SourceV6Address":"2001:db8::1","LinkLocalIV6Address":"fe80::2",)"
                        R"("SourceMacAddress":"00:11:22:33:44:55","NextHopMacAddress":"00:11:22:33:44:ff")"),
              std::string::npos)
        << json;
    EXPECT_EQ(refusal(type, R"({"SourceAddress":"10.0.0"})"), "SourceAddress: 10.0.0 is not an IPv4 address");
    EXPECT_EQ(refusal(type, R"({"SourceAddress":"::1"})"), "SourceAddress: ::1 is not an IPv4 address");
    EXPECT_EQ(refusal(type, R"({"SourceAddress":null})"), "SourceAddress: expected text, found null");
    EXPECT_EQ(refusal(type, R"({"SourceAddress":167772161})"), "SourceAddress: expected text, found a number");
    EXPECT_EQ(refusal(type, R"({"SourceV6Address":"10.0.0.1"})"), "SourceV6Address: 10.0.0.1 is not an IPv6 address");
    EXPECT_EQ(refusal(type, R"({"SourceMacAddress":"00:11"})"), "SourceMacAddress: 00:11 is not a MAC address");
}

std::string segment(const std::string &address) {
    return R"({"IPAddress":)" + address + R"(,"MPLSLabel":null,"USIDInfo":null})";
}

TEST(RecordJson, AddressText) {
    EXPECT_EQ(again(SEGMENT, segment(R"("10.0.0.1")")), segment(R"("10.0.0.1")"));
    EXPECT_EQ(again(SEGMENT, segment(R"("2001:DB8:0::1")")), segment(R"("2001:db8::1")"));
    EXPECT_EQ(again(SEGMENT, segment("null")), segment("null"));
}

TEST(RecordJson, AddressTextGivesKindAndBytes) {
    const record_of ipv4(SEGMENT, segment(R"("10.0.0.1")"));
    const record_of ipv6(SEGMENT, segment(R"("2001:db8::1")"));
    const record_of none(SEGMENT, segment("null"));
    ASSERT_EQ(ipv4.refusal() + ipv6.refusal() + none.refusal(), "");
    const auto &first = static_cast<const pm_segment_parcel *>(ipv4.data())->IPAddress;
    const auto &second = static_cast<const pm_segment_parcel *>(ipv6.data())->IPAddress;
    const std::uint8_t first_bytes[] = {10, 0, 0, 1};
    const std::uint8_t second_bytes[16] = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_EQ(static_cast<int>(first.IPAddressType), 0);
    EXPECT_EQ(std::memcmp(&first.IPv4, first_bytes, sizeof first_bytes), 0);
    EXPECT_EQ(static_cast<int>(second.IPAddressType), 1);
    EXPECT_EQ(std::memcmp(&second.IPv6, second_bytes, sizeof second_bytes), 0);
    EXPECT_EQ(static_cast<int>(static_cast<const pm_segment_parcel *>(none.data())->IPAddress.IPAddressType), 2);
}

TEST(RecordJson, TheUnionFormOfAnAddressIsReadToo) {
    EXPECT_EQ(again(SEGMENT, segment(R"({"IPAddressType":0,"IPv4":"10.0.0.1"})")), segment(R"("10.0.0.1")"));
    EXPECT_EQ(again(SEGMENT, segment(R"({"IPv6":"2001:db8::1","IPAddressType":"0x1"})")), segment(R"("2001:db8::1")"));
    EXPECT_EQ(again(SEGMENT, segment(R"({"IPAddressType":2})")), segment("null"));
    EXPECT_EQ(again(SEGMENT, segment(R"({"IPAddressType":1})")), segment(R"("::")"));
}

TEST(RecordJson, AnAddressOfAnUnlistedKindKeepsItsKind) {
    EXPECT_EQ(again(SEGMENT, segment(R"({"IPAddressType":9})")), segment(R"({"IPAddressType":9})"));
}

TEST(RecordJson, WhatIsNoAddressIsRefused) {
    EXPECT_EQ(refusal(SEGMENT, segment(R"("10.0.0.256")")), "IPAddress: 10.0.0.256 is not an address");
    EXPECT_EQ(refusal(SEGMENT, segment(R"("")")), "IPAddress:  is not an address");
    EXPECT_EQ(refusal(SEGMENT, segment("1")), "IPAddress: expected text, found a number");
    EXPECT_EQ(refusal(SEGMENT, segment(R"({"IPAddressType":0,"IPv6":"::1"})")),
              "IPAddress.IPv6: is not the arm that IPAddressType 0 selects");
    EXPECT_EQ(refusal(SEGMENT, segment(R"({"IPAddressType":2,"IPv4":"10.0.0.1"})")),
              "IPAddress.IPv4: is not the arm that IPAddressType 2 selects");
}

// Optionals --------------------------------------------------------------------------------------

TEST(RecordJson, Optional) {
    EXPECT_EQ(again(SEGMENT, R"({"MPLSLabel":null})"), R"({"IPAddress":"0.0.0.0","MPLSLabel":null,"USIDInfo":null})");
    EXPECT_EQ(again(SEGMENT, R"({"MPLSLabel":0})"), R"({"IPAddress":"0.0.0.0","MPLSLabel":0,"USIDInfo":null})");
    EXPECT_EQ(again(SEGMENT, R"({"USIDInfo":{"SIDBehavior":65535}})"),
              R"({"IPAddress":"0.0.0.0","MPLSLabel":null,"USIDInfo":)"
              R"({"SIDValue":"::","USIDLength":0,"SIDFormat":0,"SIDBehavior":65535}})");
    EXPECT_EQ(refusal(SEGMENT, R"({"MPLSLabel":4294967296})"), "MPLSLabel: 4294967296 is out of range for D");
    EXPECT_EQ(refusal(SEGMENT, R"({"USIDInfo":{"SIDBehavior":65536}})"),
              "USIDInfo.SIDBehavior: 65536 is out of range for I");
}

TEST(RecordJson, AnOptionalAddressOfKindNoneIsNotAnAbsentOne) {
    const parcel_descriptor *type = pm_srpolicy_atomic_path_parcel_descriptor();
    const record_of absent(type, R"({"ResponderAddress":null})");
    const record_of none(type, R"({"ResponderAddress":{"IPAddressType":2}})");
    const record_of given(type, R"({"ResponderAddress":"10.0.0.1"})");
    ASSERT_EQ(absent.refusal() + none.refusal() + given.refusal(), "");
    EXPECT_EQ(static_cast<const pm_srpolicy_atomic_path_parcel *>(absent.data())->ResponderAddress, nullptr);
    const pm_record_address *address =
        static_cast<const pm_srpolicy_atomic_path_parcel *>(none.data())->ResponderAddress;
    ASSERT_NE(address, nullptr);
    EXPECT_EQ(static_cast<int>(address->IPAddressType), 2);
    EXPECT_NE(written(absent.data(), type).find(R"("ResponderAddress":null)"), std::string::npos);
    EXPECT_NE(written(none.data(), type).find(R"("ResponderAddress":{"IPAddressType":2})"), std::string::npos);
    EXPECT_NE(written(given.data(), type).find(R"("ResponderAddress":"10.0.0.1")"), std::string::npos);
}

// Arrays -----------------------------------------------------------------------------------------

TEST(RecordJson, Array) {
    const parcel_descriptor *type = pm_aggr_history_parcel_descriptor();
    EXPECT_EQ(again(type, R"({"AggregatedHistoryList":[]})"), R"({"AggregatedHistoryList":[]})");
    const std::string two =
        R"({"AggregatedHistoryList":[{"AggregationTimestamp":1,"AggregatedProbeValues":)"
        R"({"Average":1,"Minimum":2,"Maximum":3,"Variance":4}},{"AggregationTimestamp":2,"AggregatedProbeValues":)"
        R"({"Average":0,"Minimum":0,"Maximum":0,"Variance":0}}]})";
    EXPECT_EQ(again(type, two), two);
    EXPECT_EQ(refusal(type, R"({"AggregatedHistoryList":{}})"),
              "AggregatedHistoryList: expected an array, found an object");
    EXPECT_EQ(refusal(type, R"({"AggregatedHistoryList":null})"),
              "AggregatedHistoryList: expected an array, found null");
    EXPECT_EQ(refusal(type, R"({"AggregatedHistoryList":[{},{"AggregatedProbeValues":{"Minimum":-1}}]})"),
              "AggregatedHistoryList[1].AggregatedProbeValues.Minimum: -1 is out of range for D");
}

TEST(RecordJson, AnEmptyArrayHasNoElements) {
    const record_of record(pm_aggr_history_parcel_descriptor(), R"({"AggregatedHistoryList":[]})");
    ASSERT_EQ(record.refusal(), "");
    const auto &list = static_cast<const pm_aggr_history_parcel *>(record.data())->AggregatedHistoryList;
    EXPECT_EQ(list.count, 0U);
    EXPECT_EQ(list.elements, nullptr);
}

TEST(RecordJson, AnErrorNamesTheElement) {
    const parcel_descriptor *type = pm_srpolicy_parcel_descriptor();
    EXPECT_EQ(refusal(type, R"({"CandidatePaths":[{},{},{"Preference":4294967296}]})"),
              "CandidatePaths[2].Preference: 4294967296 is out of range for D");
    EXPECT_EQ(refusal(type, R"({"CandidatePaths":[{"SegmentLists":[{},{"AtomicPaths":[{"Labels":[1,2,"x"]}]}]}]})"),
              "CandidatePaths[0].SegmentLists[1].AtomicPaths[0].Labels[2]: x is not an integer");
    EXPECT_EQ(refusal(type, R"({"CandidatePaths":[{},[]]})"), "CandidatePaths[1]: expected an object, found an array");
}

TEST(RecordJson, OpaqueBytesAreHexadecimalText) {
    EXPECT_EQ(again(BUFFER, R"({"buf":"00ffA1"})"), R"({"buf":"00ffa1"})");
    EXPECT_EQ(again(BUFFER, R"({"buf":""})"), R"({"buf":""})");
    EXPECT_EQ(again(BUFFER, R"({})"), R"({"buf":""})");
    const std::string longest(200000, 'e');
    EXPECT_EQ(again(BUFFER, R"({"buf":")" + longest + R"("})"), R"({"buf":")" + longest + R"("})");
    EXPECT_EQ(refusal(BUFFER, R"({"buf":"123"})"), "buf: expected an even number of hexadecimal digits");
    EXPECT_EQ(refusal(BUFFER, R"({"buf":"1g"})"), "buf: expected an even number of hexadecimal digits");
    EXPECT_EQ(refusal(BUFFER, R"({"buf":"0x12"})"), "buf: expected an even number of hexadecimal digits");
    EXPECT_EQ(refusal(BUFFER, R"({"buf":[1,2]})"), "buf: expected text, found an array");
    EXPECT_EQ(refusal(BUFFER, R"({"buf":null})"), "buf: expected text, found null");
}

TEST(RecordJson, OpaqueBytesStandInTheirOrder) {
    const record_of record(BUFFER, R"({"buf":"0102ff"})");
    ASSERT_EQ(record.refusal(), "");
    const auto &buffer = static_cast<const pm_chkpt_scb_parcel *>(record.data())->buf;
    ASSERT_EQ(buffer.count, 3U);
    EXPECT_EQ(buffer[0], 0x01);
    EXPECT_EQ(buffer[1], 0x02);
    EXPECT_EQ(buffer[2], 0xFF);
}

TEST(RecordJson, AFixedArrayMayBeGivenShort) {
    EXPECT_EQ(again(BATCH, R"({"Count":[1,2,3]})"), R"({"Count":[1,2,3,0,0,0,0,0,0,0]})");
    EXPECT_EQ(again(BATCH, R"({"Count":[]})"), R"({"Count":[0,0,0,0,0,0,0,0,0,0]})");
    EXPECT_EQ(again(BATCH, R"({"Count":[1,2,3,4,5,6,7,8,9,10]})"), R"({"Count":[1,2,3,4,5,6,7,8,9,10]})");
    EXPECT_EQ(refusal(BATCH, R"({"Count":[1,2,3,4,5,6,7,8,9,10,11]})"), "Count: 11 elements are too many for 10A(D)");
    EXPECT_EQ(refusal(BATCH, R"({"Count":[1,4294967296]})"), "Count[1]: 4294967296 is out of range for D");
    EXPECT_EQ(refusal(BATCH, R"({"Count":null})"), "Count: expected an array, found null");
}

TEST(RecordJson, AFixedArrayOfRecordsMayBeGivenShort) {
    const parcel_descriptor *type = pm_stats_batch_t_descriptor();
    const std::string zero = R"({"Count":[0,0,0,0,0,0,0,0,0,0]})";
    EXPECT_EQ(again(type, R"({"Count":[{},{"Count":[0,5]}]})"),
              R"({"Count":[)" + zero + R"(,{"Count":[0,5,0,0,0,0,0,0,0,0]},)" + zero + "," + zero + "," + zero + "," +
                  zero + "," + zero + "]}");
    EXPECT_EQ(refusal(type, R"({"Count":[{},{},{},{},{},{},{},{}]})"), "Count: 8 elements are too many for 7A($252)");
}

// Unions -----------------------------------------------------------------------------------------

std::string history(const std::string &info) {
    return R"({"InterfaceName":null,"InterfaceHandle":0,"HistoryInfo":)" + info + R"(,"BundleMembers":[]})";
}

TEST(RecordJson, AUnionIsItsDiscriminatorAndTheSelectedArm) {
    const std::string probe = history(R"({"HistoryType":0,"ProbeHistory":{"ProbeHistoryList":[]}})");
    const std::string loss = history(R"({"HistoryType":6,"LMPacketHistory":{"LMPacketHisotryList":)"
                                     R"([{"Timestamp":1,"TXCounter":2,"RXCounter":3}]}})");
    EXPECT_EQ(again(HISTORY, probe), probe);
    EXPECT_EQ(again(HISTORY, loss), loss);
    EXPECT_EQ(again(HISTORY, history(R"({"ProbeHistory":{},"HistoryType":"0"})")), probe);
}

TEST(RecordJson, AnArmThatIsLeftOutIsZero) {
    EXPECT_EQ(again(HISTORY, history(R"({"HistoryType":3})")),
              history(R"({"HistoryType":3,"AdvertisementHistory":{"AdvertisementHistoryList":[]}})"));
    EXPECT_EQ(again(HISTORY, history("{}")), history(R"({"HistoryType":0,"ProbeHistory":{"ProbeHistoryList":[]}})"));
}

TEST(RecordJson, AnEmptyArmAndAnUnlistedDiscriminatorCarryNothing) {
    EXPECT_EQ(again(HISTORY, history(R"({"HistoryType":1})")), history(R"({"HistoryType":1})"));
    EXPECT_EQ(again(HISTORY, history(R"({"HistoryType":77})")), history(R"({"HistoryType":77})"));
    EXPECT_EQ(again(HISTORY, history(R"({"HistoryType":4294967295})")), history(R"({"HistoryType":4294967295})"));
    const parcel_descriptor *profile = pm_liveness_transport_profile_parcel_descriptor();
    for (const char *config :
         {R"("LivenessDetectionConfig":{"TransportType":0})", R"("LivenessDetectionConfig":{"TransportType":77})"}) {
        EXPECT_NE(again(profile, "{" + std::string(config) + "}").find(config), std::string::npos) << config;
    }
}

TEST(RecordJson, AnArmThatTheDiscriminatorDoesNotSelectIsRefused) {
    EXPECT_EQ(refusal(HISTORY, history(R"({"HistoryType":2,"ProbeHistory":{}})")),
              "HistoryInfo.ProbeHistory: is not the arm that HistoryType 2 selects");
    EXPECT_EQ(refusal(HISTORY, history(R"({"HistoryType":1,"ProbeHistory":{}})")),
              "HistoryInfo.ProbeHistory: is not the arm that HistoryType 1 selects");
    EXPECT_EQ(refusal(HISTORY, history(R"({"HistoryType":77,"ProbeHistory":{}})")),
              "HistoryInfo.ProbeHistory: is not the arm that HistoryType 77 selects");
    EXPECT_EQ(refusal(HISTORY, history(R"({"ProbeHistory":{}})")),
              "HistoryInfo.ProbeHistory: needs HistoryType beside it");
    EXPECT_EQ(refusal(HISTORY, history(R"({"HistoryType":0,"ProbeHistory":{},"AggregatedHistory":{}})")),
              "HistoryInfo.AggregatedHistory: a union has one arm only");
}

TEST(RecordJson, OtherMembersOfAUnionAreRefused) {
    EXPECT_EQ(refusal(HISTORY, history(R"({"HistoryType":0,"NoSuchHistory":{}})")),
              "HistoryInfo.NoSuchHistory: unknown field");
    EXPECT_EQ(refusal(HISTORY, history(R"({"HistoryType":0,"HistoryType":0})")),
              "HistoryInfo.HistoryType: given twice");
    EXPECT_EQ(refusal(HISTORY, history(R"({"HistoryType":"probe"})")),
              "HistoryInfo.HistoryType: probe is not an integer");
    EXPECT_EQ(refusal(HISTORY, history(R"({"HistoryType":4294967296})")).substr(0, 51),
              "HistoryInfo.HistoryType: 4294967296 is out of range");
    EXPECT_EQ(refusal(HISTORY, history("[]")), "HistoryInfo: expected an object, found an array");
    EXPECT_EQ(refusal(HISTORY, history("null")), "HistoryInfo: expected an object, found null");
    EXPECT_EQ(
        refusal(HISTORY, history(R"({"HistoryType":0,"ProbeHistory":{"ProbeHistoryList":[{"PacketsSent":-1}]}})")),
        "HistoryInfo.ProbeHistory.ProbeHistoryList[0].PacketsSent: -1 is out of range for D");
}

TEST(RecordJson, ARecursiveTypeIsReadToAnyUsefulDepth) {
    std::string json = history(R"({"HistoryType":1})");
    for (int i = 0; i < 60; ++i) {
        json = R"({"InterfaceName":null,"InterfaceHandle":0,"HistoryInfo":{"HistoryType":1},"BundleMembers":[)" + json +
               "]}";
    }
    EXPECT_EQ(again(HISTORY, json), json);
}

// Memory -----------------------------------------------------------------------------------------

TEST(RecordMemory, IsZeroAndAlignedWheneverItIsGiven) {
    record_memory memory;
    for (int round = 0; round < 3; ++round) {
        for (const std::size_t size : {1UL, 7UL, 8UL, 65536UL, 65537UL, 3UL, 1000000UL, 24UL}) {
            std::uint8_t *bytes = memory.allocate(size);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % 8, 0U);
            EXPECT_TRUE(std::all_of(bytes, bytes + size, [](std::uint8_t byte) { return byte == 0; })) << size;
            std::memset(bytes, 0xA5, size);
        }
        memory.reset();
    }
}

TEST(RecordMemory, PiecesDoNotOverlap) {
    record_memory memory;
    std::vector<std::uint8_t *> pieces;
    for (int i = 0; i < 5000; ++i) {
        pieces.push_back(memory.allocate(40));
        std::memset(pieces.back(), i, 40);
    }
    for (int i = 0; i < 5000; ++i) {
        const auto wanted = static_cast<std::uint8_t>(i);
        ASSERT_EQ(pieces[static_cast<std::size_t>(i)][0], wanted);
        ASSERT_EQ(pieces[static_cast<std::size_t>(i)][39], wanted);
    }
}

}  // namespace
