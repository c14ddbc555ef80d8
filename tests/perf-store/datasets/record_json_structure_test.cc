// SPDX-License-Identifier: Apache-2.0
// Records to JSON and back: addresses, optionals, arrays and unions.
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/perf-store/datasets/json_of_record.h"

namespace {

using namespace perf_store;

const parcel_descriptor *const SEGMENT = pm_segment_parcel_descriptor();
const parcel_descriptor *const BUFFER = pm_chkpt_scb_parcel_descriptor();
const parcel_descriptor *const BATCH = pm_stats_batch_elem_t_descriptor();
const parcel_descriptor *const HISTORY = pm_intf_history_parcel_descriptor();

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

}  // namespace
