// SPDX-License-Identifier: Apache-2.0
// Records straight from their text: as the careful reader reads them, or not at all.
#include "perf-store/datasets/direct_reader.h"

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
const parcel_descriptor *const KEY = pm_profile_key_parcel_descriptor();
const parcel_descriptor *const INTERFACE = pm_intf_parcel_descriptor();
const parcel_descriptor *const SESSION = pm_scb_parcel_descriptor();
const parcel_descriptor *const SEGMENT = pm_segment_parcel_descriptor();
const parcel_descriptor *const HISTORY = pm_intf_history_parcel_descriptor();

// A record that is read directly; data() is null when it is left to the careful reader.
class direct_record {
public:
    direct_record(const parcel_descriptor *type, const std::string &json) : json_(json), cursor_(json_) {
        const void *record = nullptr;
        if (direct_reader(&cursor_, &memory_).read(type, &record) && cursor_.passed() == json.size()) {
            record_ = record;
        }
    }

    [[nodiscard]] const void *data() const { return record_; }

private:
    std::string json_;
    json_cursor cursor_;
    record_memory memory_;
    const void *record_ = nullptr;
};

// All fields of a record that is read directly; "left" when it is not.
std::string direct(const parcel_descriptor *type, const std::string &json) {
    const direct_record record(type, json);
    return record.data() == nullptr ? "left" : written(record.data(), type);
}

// How the careful reader reads the same otherwise; nothing when it does not.
std::string difference(const parcel_descriptor *type, const std::string &json) {
    const direct_record direct(type, json);
    const record_of careful(type, json);
    return direct.data() == nullptr || !careful.refusal().empty()
               ? "not read"
               : first_difference(type, careful.data(), direct.data());
}

class EveryRecordTypeDirectly : public testing::TestWithParam<const parcel_descriptor *> {};

TEST_P(EveryRecordTypeDirectly, IsReadAsItWasWritten) {
    const parcel_descriptor *type = GetParam();
    for (std::uint64_t seed = 0; seed < 25; ++seed) {
        const random_record record(type, seed);
        const std::string json = written(record.data(), type);
        const direct_record read(type, json);
        if (json.find('\\') != std::string::npos) {
            ASSERT_EQ(read.data(), nullptr) << json;
            continue;
        }
        ASSERT_NE(read.data(), nullptr) << "seed " << seed << "\n" << json;
        ASSERT_EQ(first_difference(type, record.data(), read.data()), "") << "seed " << seed << "\n" << json;
    }
}

TEST_P(EveryRecordTypeDirectly, AnEmptyObjectIsTheZeroRecord) {
    const parcel_descriptor *type = GetParam();
    const std::vector<std::uint64_t> zero(type->layout[0].size / 8 + 1);
    const direct_record read(type, "{}");
    ASSERT_NE(read.data(), nullptr);
    EXPECT_EQ(std::memcmp(read.data(), zero.data(), type->layout[0].size), 0);
}

INSTANTIATE_TEST_SUITE_P(DirectReader, EveryRecordTypeDirectly,
                         testing::ValuesIn(pm_descriptors().begin(), pm_descriptors().end()),
                         [](const auto &type) { return std::string(type.param->name); });

TEST(DirectReader, FieldsMayComeInAnyOrder) {
    EXPECT_EQ(direct(VALUES, R"({"Variance":4,"Average":1,"Maximum":3})"),
              R"({"Average":1,"Minimum":0,"Maximum":3,"Variance":4})");
}

TEST(DirectReader, WhiteSpaceMayBeAroundEveryToken) {
    EXPECT_EQ(direct(KEY, " {\n\t\"ProfileIsSet\" :\r true , \"Name\" : null}"),
              R"({"ProfileIsSet":true,"MeasurementType":0,"Transport_type":0,"Name":null})");
    EXPECT_EQ(difference(HISTORY, R"( { "HistoryInfo" : { "HistoryType" : 2 , "AggregatedHistory" : )"
                                  R"({ "AggregatedHistoryList" : [ { "AggregationTimestamp" : 5 } , { } ] } } })"),
              "");
}

TEST(DirectReader, NumbersGoToTheEndsOfTheirTypes) {
    EXPECT_EQ(direct(VALUES, R"({"Average":4294967295,"Minimum":"0xFFFFFFFF","Maximum":"010","Variance":-0})"),
              R"({"Average":4294967295,"Minimum":4294967295,"Maximum":8,"Variance":0})");
    EXPECT_EQ(direct(VALUES, R"({"Average":4294967296})"), "left");
    EXPECT_EQ(direct(VALUES, R"({"Average":-1})"), "left");
    EXPECT_EQ(direct(VALUES, R"({"Average":"-1"})"), "left");
    EXPECT_EQ(difference(INTERFACE, R"({"PrimaryVlanTag":65535})"), "");
    EXPECT_EQ(direct(INTERFACE, R"({"PrimaryVlanTag":65536})"), "left");
    const parcel_descriptor *code = pm_scb_control_code_descriptor();
    EXPECT_EQ(direct(code, R"({"ControlCode":255,"Timestamp":999999999999999999})"),
              R"({"ControlCode":255,"Timestamp":"999999999999999999"})");
    EXPECT_EQ(direct(code, R"({"ControlCode":256})"), "left");
    EXPECT_EQ(direct(code, R"({"Timestamp":1000000000000000001})"),
              R"({"ControlCode":0,"Timestamp":"1000000000000000001"})");
    EXPECT_EQ(direct(code, R"({"Timestamp":18446744073709551615})"),
              R"({"ControlCode":0,"Timestamp":"18446744073709551615"})");
    EXPECT_EQ(direct(code, R"({"Timestamp":18446744073709551616})"), "left");
    EXPECT_EQ(direct(code, R"({"Timestamp":100000000000000000000000001})"), "left");
}

TEST(DirectReader, EnumerationsAreSigned) {
    for (const char *const value : {"2147483647", "-2147483648", "-1", "\"-1\"", "0"}) {
        EXPECT_EQ(difference(KEY, std::string(R"({"MeasurementType":)") + value + "}"), "") << value;
    }
    EXPECT_EQ(direct(KEY, R"({"MeasurementType":-7})"),
              R"({"ProfileIsSet":false,"MeasurementType":-7,"Transport_type":0,"Name":null})");
    EXPECT_EQ(direct(KEY, R"({"MeasurementType":2147483648})"), "left");
    EXPECT_EQ(direct(KEY, R"({"MeasurementType":-2147483649})"), "left");
}

TEST(DirectReader, AddressesAreTheirTexts) {
    for (const char *const address :
         {R"("10.0.0.1")", R"("2001:DB8::1")", "null", R"({"IPAddressType":0,"IPv4":"10.0.0.1"})",
          R"({"IPAddressType":2})", R"({"IPAddressType":1})"}) {
        EXPECT_EQ(difference(SEGMENT, std::string(R"({"IPAddress":)") + address + "}"), "") << address;
    }
    for (const char *const address : {R"("10.0.0")", R"("")", "1", R"({"IPv4":"10.0.0.1","IPAddressType":0})",
                                      R"({"IPAddressType":0,"IPv6":"::1"})", R"({"IPAddressType":2,"":1})",
                                      R"({"IPAddressType":0,"IPv4":"10.0.0.1","IPv4":"10.0.0.1"})",
                                      R"({"IPAddressType":4294967296})", R"({"IPv4":"10.0.0.1"})"}) {
        EXPECT_EQ(direct(SEGMENT, std::string(R"({"IPAddress":)") + address + "}"), "left") << address;
    }
    EXPECT_EQ(difference(INTERFACE, R"({"SourceAddress":"10.0.0.1","SourceV6Address":"::1",)"
                                    R"("SourceMacAddress":"0011.2233.44ff"})"),
              "");
    EXPECT_EQ(direct(INTERFACE, R"({"SourceAddress":"::1"})"), "left");
    EXPECT_EQ(direct(INTERFACE, R"({"SourceV6Address":"10.0.0.1"})"), "left");
    EXPECT_EQ(direct(INTERFACE, R"({"SourceMacAddress":"00:11"})"), "left");
}

// Elements move while there come more of them than there was room for; those hold memory of their own.
TEST(DirectReader, ArraysGrow) {
    for (const std::size_t count : {1UL, 2UL, 3UL, 64UL, 65UL, 5000UL}) {
        std::string samples;
        std::string sessions;
        for (std::size_t i = 0; i < count; ++i) {
            const std::string number = std::to_string(i + 1);
            samples += (i == 0 ? "" : ",") + (R"({"MeasurementValue":)" + number + R"(,"QueryTimestamp":7})");
            sessions += (i == 0 ? "" : ",") + (R"({"SessionId":)" + number + R"(,"ProfileName":"p)" + number +
                                               R"(","ProbeHistory":[{"MeasurementValue":)" + number + "}]}");
        }
        EXPECT_EQ(difference(SESSION, R"({"ProbeHistory":[)" + samples + "]}"), "") << count;
        EXPECT_EQ(difference(INTERFACE, R"({"DelayMeasurementSessions":[)" + sessions + "]}"), "") << count;
    }
}

TEST(DirectReader, AbsentValuesAreNull) {
    EXPECT_EQ(difference(SESSION, R"({"ResponderAddress":null,"QueryNumberOfHops":null,"ProfileName":null})"), "");
    EXPECT_EQ(
        difference(SESSION, R"({"ResponderAddress":"::1","QueryNumberOfHops":3,"ProfileName":"","ProbeHistory":[]})"),
        "");
    EXPECT_EQ(direct(VALUES, R"({"Average":null})"), "left");
    EXPECT_EQ(direct(SESSION, R"({"ProbeHistory":null})"), "left");
}

TEST(DirectReader, BuffersAreHexadecimal) {
    const parcel_descriptor *type = pm_chkpt_scb_parcel_descriptor();
    EXPECT_EQ(direct(type, R"({"buf":"00fF10"})"), R"({"buf":"00ff10"})");
    EXPECT_EQ(direct(type, R"({"buf":""})"), R"({"buf":""})");
    EXPECT_EQ(direct(type, R"({"buf":"00f"})"), "left");
    EXPECT_EQ(direct(type, R"({"buf":"0g"})"), "left");
    EXPECT_EQ(direct(type, R"({"buf":[0]})"), "left");
}

TEST(DirectReader, ArraysOfFixedLengthMayBeShorter) {
    const parcel_descriptor *type = pm_stats_batch_elem_t_descriptor();
    EXPECT_EQ(direct(type, R"({"Count":[]})"), R"({"Count":[0,0,0,0,0,0,0,0,0,0]})");
    EXPECT_EQ(direct(type, R"({"Count":[1,2]})"), R"({"Count":[1,2,0,0,0,0,0,0,0,0]})");
    EXPECT_EQ(direct(type, R"({"Count":[1,2,3,4,5,6,7,8,9,10]})"), R"({"Count":[1,2,3,4,5,6,7,8,9,10]})");
    EXPECT_EQ(direct(type, R"({"Count":[1,2,3,4,5,6,7,8,9,10,11]})"), "left");
    EXPECT_EQ(direct(type, R"({"Count":[1,]})"), "left");
    EXPECT_EQ(direct(type, R"({"Count":{}})"), "left");
}

std::string nested(std::size_t depth) {
    std::string begin;
    std::string end;
    for (std::size_t i = 1; i < depth; ++i) {
        begin += R"({"BundleMembers":[)";
        end += "]}";
    }
    return begin + "{}" + end;
}

TEST(DirectReader, LeavesRecordsThatNestDeeply) {
    EXPECT_EQ(difference(HISTORY, nested(64)), "");
    EXPECT_EQ(direct(HISTORY, nested(65)), "left");
    EXPECT_EQ(direct(HISTORY, nested(100000)), "left");
}

// What is wrong, and what is right in a way that is not usual.
TEST(DirectReader, LeavesTheRestToTheCarefulReader) {
    for (const char *const json : {"",
                                   " ",
                                   "{",
                                   "[]",
                                   "1",
                                   "null",
                                   R"({"Average":1)",
                                   R"({"Average":1,})",
                                   R"({"Average":1 "Minimum":2})",
                                   R"({"Average":1,"Average":1})",
                                   R"({"Minimum":1,"Average":2,"Minimum":1})",
                                   R"({"NoSuchField":1})",
                                   R"({"":1})",
                                   R"({"Averag":1})",
                                   R"({"Averagee":1})",
                                   R"({"average":1})",
                                   R"({"\u0041verage":1})",
                                   R"({"Average" 1})",
                                   R"({Average:1})",
                                   R"({"Average":01})",
                                   R"({"Average":1.0})",
                                   R"({"Average":1e3})",
                                   R"({"Average":1.})",
                                   R"({"Average":+1})",
                                   R"({"Average":-})",
                                   R"({"Average":--1})",
                                   R"({"Average":-01})",
                                   R"({"Average":0x10})",
                                   R"({"Average":""})",
                                   R"({"Average":"x"})",
                                   R"({"Average":"1)",
                                   R"({"Average":true})",
                                   R"({"Average":{}})",
                                   R"({"Average":[1]})",
                                   R"({"Average":1]})",
                                   R"({"Average":1}})"}) {
        EXPECT_EQ(direct(VALUES, json), "left") << json;
    }
    for (const char *const json :
         {R"({"ProfileIsSet":1})", R"({"ProfileIsSet":"true"})", R"({"ProfileIsSet":truex})", R"({"ProfileIsSet":tru})",
          R"({"ProfileIsSet":nul})", R"({"Name":nul})", R"({"Name":1})", R"({"Name":"\n"})", "{\"Name\":\"\t\"}",
          "{\"Name\":\"\xFF\"}", "{\"Name\":\"\xC3\"}", R"({"Name":'x'})", R"({"Name":"x"y"})"}) {
        EXPECT_EQ(direct(KEY, json), "left") << json;
    }
    EXPECT_EQ(direct(KEY, std::string("{\"Name\":\"a\0b\"}", 14)), "left");
    EXPECT_EQ(direct(HISTORY, R"({"HistoryInfo":{"HistoryType":1,"ProbeHistory":{}}})"), "left");
    EXPECT_EQ(direct(HISTORY, R"({"HistoryInfo":{}})"), "left");
    EXPECT_EQ(direct(HISTORY, R"({"HistoryInfo":null})"), "left");
    EXPECT_EQ(direct(SESSION, R"({"ProbeHistory":[{}}])"), "left");
    EXPECT_EQ(direct(SESSION, R"({"ProbeHistory":[{},]})"), "left");
}

}  // namespace
