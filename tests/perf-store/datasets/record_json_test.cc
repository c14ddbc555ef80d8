// SPDX-License-Identifier: Apache-2.0
// Records to JSON and back: whole records, numbers and texts.
#include <algorithm>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/perf-store/datasets/json_of_record.h"
#include "tests/support/random_record.h"

namespace {

using namespace perf_store;

const parcel_descriptor *const VALUES = pm_values_parcel_descriptor();
const parcel_descriptor *const SAMPLE = pm_scb_sample_parcel_descriptor();
const parcel_descriptor *const PORTS = pm_rx_udp_port_parcel_descriptor();
const parcel_descriptor *const DETECTION = pm_liveness_detection_parcel_descriptor();
const parcel_descriptor *const ADVERT = pm_lm_adv_sample_parcel_descriptor();
const parcel_descriptor *const KEY = pm_profile_key_parcel_descriptor();
const parcel_descriptor *const SEGMENT = pm_segment_parcel_descriptor();

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

TEST(RecordJson, FieldsMayComeInAnyOrder) {
    EXPECT_EQ(again(VALUES, R"({"Variance":4,"Average":1,"Maximum":3,"Minimum":2})"),
              R"({"Average":1,"Minimum":2,"Maximum":3,"Variance":4})");
}

TEST(RecordJson, AFieldGivenTwiceIsRefused) {
    EXPECT_EQ(refusal(VALUES, R"({"Average":1,"Average":1})"), "Average: given twice");
    EXPECT_EQ(refusal(VALUES, R"({"Average":1,"Minimum":2,"Average":0})"), "Average: given twice");
}

TEST(RecordJson, NamesAreTakenToTheLetter) {
    EXPECT_EQ(refusal(VALUES, R"({"average":1})"), "average: unknown field; did you mean Average?");
    EXPECT_EQ(refusal(VALUES, R"({"Average ":1})"), "Average : unknown field; did you mean Average?");
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
    std::string json = "before";
    const pm_error error = append_record(&record, KEY, json_fields::all, &json);
    EXPECT_TRUE(error);
    EXPECT_EQ(error.text(), "a text is not UTF-8");
    EXPECT_EQ(json, "before");
}

}  // namespace
