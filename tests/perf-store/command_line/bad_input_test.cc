// SPDX-License-Identifier: Apache-2.0
// Data sets that perf-store refuses: what it says of them, and that the store stays as it was.
#include "tests/perf-store/command_line/perf_store_fixture.h"

namespace {

using namespace perf_store_test;
using namespace std::string_literals;

constexpr char BEFORE[] =
    R"({"dataset":{"version":1}}
{"platform":{"my_node":0,"router_type":0,"rp_plus_datapath":false}}
{"node":{"id":0,"name":"rp0","sw_state":6,"location":[0,0,0],"processor":0}}
{"interface":{"handle":16,"name":"eth0/1/0/4"}}
{"publisher":{"root":"main","node":0,"state":"running"}}
{"item":{"root":"main","node":0,"path":"values/a","type":"pm_values_parcel","record":{"Average":1,"Minimum":2,"Maximum":3,"Variance":4}}}
)";

// One that would change every part of the store above.
constexpr char CHANGES[] =
    R"({"platform":{"my_node":1}}
{"node":{"id":0,"name":"changed"}}
{"interface":{"handle":16,"name":"changed"}}
{"publisher":{"root":"main","node":0,"state":"stopped"}}
{"item":{"root":"main","node":0,"path":"values/a","type":"pm_values_parcel","record":{"Average":99}}}
{"item":{"root":"rx","node":7,"path":"new","type":"pm_values_parcel","record":{}}}
)";

class BadInput : public PerfStore {
protected:
    void SetUp() override {
        PerfStore::SetUp();
        start_anew();
    }

    void start_anew() const {
        write("before.ndjson", BEFORE);
        const outcome loaded = run({"load", "--replace", "before.ndjson"});
        ASSERT_EQ(loaded.error, "");
        ASSERT_EQ(dump(), BEFORE);
    }

    // The set is refused with this message, and nothing has changed.
    void expect_refused(const std::string &set, const std::string &message) const {
        SCOPED_TRACE(set.substr(0, 300));
        const outcome loaded = load(set);
        EXPECT_EQ(loaded.status, 1);
        EXPECT_EQ(loaded.out, "");
        EXPECT_EQ(loaded.error, message + "\n");
        EXPECT_EQ(dump(), BEFORE);
    }

    // As above for an object that is the whole set: the message follows file and line.
    void expect(const std::string &object, const std::string &message) const {
        expect_refused(object, "set.ndjson:1: " + message);
    }
};

std::string item_with(const std::string &record) {
    return R"({"item":{"root":"main","node":0,"path":"values/b","type":"pm_values_parcel","record":)" + record + "}}";
}

std::string item_at(const std::string &path) {
    return R"({"item":{"root":"main","node":0,"path":")" + path + R"(","type":"pm_values_parcel","record":{}}})";
}

TEST_F(BadInput, NamesFileLineAndTheMembersPath) {
    std::string set;
    for (int i = 0; i < 16; ++i) {
        set += item_at("values/" + std::to_string(i)) + "\n";
    }
    set += R"({"item":{"root":"main","node":0,"path":"srpolicy/detail/a","type":"pm_srpolicy_parcel",)"
           R"("record":{"CandidatePaths":[{},{},{"Preference":4294967296}]}}})";
    expect_refused(set, "set.ndjson:17: item.record.CandidatePaths[2].Preference: 4294967296 is out of range for D");
}

TEST_F(BadInput, AnErrorInTheLastLineChangesNothing) {
    expect_refused(CHANGES + item_with(R"({"Average":-1})"s),
                   "set.ndjson:7: item.record.Average: -1 is out of range for D");
}

TEST_F(BadInput, AnErrorInTheLastFileChangesNothing) {
    write("good.ndjson", CHANGES);
    write("bad.ndjson", "\n" + item_with(R"({"Average":-1})"));
    const outcome loaded = run({"load", "good.ndjson", "bad.ndjson"});
    EXPECT_EQ(loaded.status, 1);
    EXPECT_EQ(loaded.out, "");
    EXPECT_EQ(loaded.error, "bad.ndjson:2: item.record.Average: -1 is out of range for D\n");
    EXPECT_EQ(dump(), BEFORE);
}

TEST_F(BadInput, AnErrorChangesNothingEvenWhenEverythingIsToBeReplaced) {
    write("bad.ndjson", CHANGES + "{}"s);
    const outcome loaded = run({"load", "--replace", "bad.ndjson"});
    EXPECT_EQ(loaded.status, 1);
    EXPECT_EQ(loaded.error, "bad.ndjson:7: an object of a data set has exactly one key\n");
    EXPECT_EQ(dump(), BEFORE);
}

TEST_F(BadInput, AFileThatCannotBeReadChangesNothing) {
    write("good.ndjson", CHANGES);
    const outcome loaded = run({"load", "good.ndjson", "none.ndjson"});
    EXPECT_EQ(loaded.status, 1);
    EXPECT_EQ(loaded.out, "");
    EXPECT_EQ(loaded.error, "perf-store: none.ndjson: No such file or directory\n");
    EXPECT_EQ(dump(), BEFORE);
}

// Nothing was there before the command, and nothing is afterwards.
TEST_F(BadInput, AFirstSetThatIsRefusedLeavesNoStore) {
    use_store("none/of/these");
    EXPECT_EQ(load(CHANGES + "{}"s).error, "set.ndjson:7: an object of a data set has exactly one key\n");
    EXPECT_FALSE(std::filesystem::exists(folder() + "/none"));
    EXPECT_EQ(run({"load", "none.ndjson"}).status, 1);
    EXPECT_FALSE(std::filesystem::exists(folder() + "/none"));
    std::filesystem::create_directory(folder() + "/empty");
    use_store("empty");
    EXPECT_EQ(load(CHANGES + "{}"s).status, 1);
    EXPECT_TRUE(std::filesystem::is_empty(folder() + "/empty"));
    EXPECT_EQ(run({"dump"}).error, "perf-store: lmdb:" + folder() + "/empty: Store client not available\n");
    load_good(BEFORE);
    EXPECT_EQ(dump(), BEFORE);
}

TEST_F(BadInput, ARefusedSetLeavesTheStoresSize) {
    const auto before = std::filesystem::file_size(data_file());
    std::string set;
    for (int i = 0; i < 3000; ++i) {
        set += item_at("values/" + std::to_string(i)) + "\n";
    }
    EXPECT_EQ(load(set + "{}").status, 1);
    EXPECT_EQ(std::filesystem::file_size(data_file()), before);
}

TEST_F(BadInput, StandardInputHasAName) {
    const outcome loaded = run({"load", "-"}, CHANGES + "{}"s);
    EXPECT_EQ(loaded.status, 1);
    EXPECT_EQ(loaded.error, "<stdin>:7: an object of a data set has exactly one key\n");
    EXPECT_EQ(dump(), BEFORE);
}

TEST_F(BadInput, NotJson) {
    for (const std::string wrong :
         {"x", "}", "]", ",", "{", "{\"node\"", "{\"node\":{\"id\":1,}}", "{'node':{}}", "{\"node\":{\"id\":0x1}}",
          "# comment", "\"\xC3(\"", "{\"node\":{\"id\":1,\"name\":\"\\ude00\"}}"}) {
        SCOPED_TRACE(wrong);
        start_anew();
        const outcome loaded = load(CHANGES + wrong + "\n");
        EXPECT_EQ(loaded.status, 1);
        EXPECT_EQ(loaded.out, "");
        EXPECT_TRUE(loaded.error.starts_with("set.ndjson:7: ") || loaded.error.starts_with("set.ndjson:8: "))
            << loaded.error;
        EXPECT_TRUE(is_one_line(loaded.error)) << loaded.error;
        EXPECT_EQ(dump(), BEFORE);
    }
}

TEST_F(BadInput, NotAnObjectWithOneKey) {
    expect("[]", "expected an object, found an array");
    expect("1", "expected an object, found a number");
    expect("\"node\"", "expected an object, found text");
    expect("null", "expected an object, found null");
    expect("{}", "an object of a data set has exactly one key");
    expect(R"({"dataset":{"version":1},"platform":{}})", "an object of a data set has exactly one key");
}

TEST_F(BadInput, ObjectsWithoutWhiteSpaceBetween) {
    const std::string interface = R"({"interface":{"handle":1,"name":"eth0"}})";
    expect(interface + interface, "no white space behind an object");
    expect_refused(interface + "\n" + interface + "," + interface, "set.ndjson:2: no white space behind an object");
}

TEST_F(BadInput, UnknownKey) {
    expect(R"({"nodes":{}})", "nodes: unknown object; did you mean node?");
    expect(R"({"Item":{}})", "Item: unknown object; did you mean item?");
}

TEST_F(BadInput, AMessageIsOneLineWhateverTheInputHolds) {
    for (const std::string set : {R"({"a\nb":{}})", R"({"a\u0000b":{}})", R"({"a\u001b[2Jb":{}})"}) {
        const outcome loaded = load(set);
        EXPECT_EQ(loaded.status, 1) << set;
        EXPECT_TRUE(is_one_line(loaded.error)) << set;
        EXPECT_TRUE(loaded.error.ends_with(": unknown object\n")) << loaded.error;
        EXPECT_EQ(loaded.error.find('\x1b'), std::string::npos) << set;
    }
}

TEST_F(BadInput, Dataset) {
    expect(R"({"dataset":{"version":2}})", "dataset.version: version 2 is not known; this is version 1");
    expect(R"({"dataset":{"version":0}})", "dataset.version: version 0 is not known; this is version 1");
    expect(R"({"dataset":{"version":"one"}})", "dataset.version: one is not an integer");
    expect(R"({"dataset":{}})", "dataset.version: is missing");
    expect(R"({"dataset":{"version":1,"name":"x"}})", "dataset.name: unknown member");
    expect(R"({"dataset":1})", "dataset: expected an object, found a number");
}

TEST_F(BadInput, Platform) {
    expect(R"({"platform":[]})", "platform: expected an object, found an array");
    expect(R"({"platform":{"node":1}})", "platform.node: unknown member");
    expect(R"({"platform":{"my_node":4294967296}})", "platform.my_node: 4294967296 is out of range for N");
    expect(R"({"platform":{"active_rp":-1}})", "platform.active_rp: -1 is out of range for N");
    expect(R"({"platform":{"router_type":4294967296}})", "platform.router_type: 4294967296 is out of range for U");
    expect(R"({"platform":{"router_type":true}})", "platform.router_type: expected a number, found a boolean");
    expect(R"({"platform":{"rp_plus_datapath":1}})", "platform.rp_plus_datapath: expected a boolean, found a number");
    expect(R"({"platform":{"my_node":1,"my_node":1}})", "platform.my_node: given twice");
    expect(R"({"platform":{"process_group_partners":1}})",
           "platform.process_group_partners: expected an object, found a number");
    expect(R"({"platform":{"process_group_partners":{"other-services":1}}})",
           "platform.process_group_partners.other-services: unknown member");
    expect(R"({"platform":{"process_group_partners":{"central-services":null}}})",
           "platform.process_group_partners.central-services: expected a number, found null");
}

TEST_F(BadInput, Node) {
    expect(R"({"node":{"name":"lc1"}})", "node.id: is missing");
    expect(R"({"node":{"id":1}})", "node.name: is missing");
    expect(R"({"node":{"id":1,"name":"lc1","slot":1}})", "node.slot: unknown member");
    expect(R"({"node":{"id":1,"name":"lc1","id":1}})", "node.id: given twice");
    expect(R"({"node":{"id":"0x100000000","name":"lc1"}})", "node.id: 0x100000000 is out of range for N");
    expect(R"({"node":{"id":"lc1","name":"lc1"}})", "node.id: lc1 is not an integer");
    expect(R"({"node":{"id":1.5,"name":"lc1"}})", "node.id: 1.5 is not an integer");
    expect(R"({"node":{"id":1,"name":null}})", "node.name: expected text, found null");
    expect(R"({"node":{"id":1,"name":1}})", "node.name: expected text, found a number");
    expect(R"({"node":{"id":1,"name":"a\u0000b"}})", "node.name: text holds a zero byte");
    expect(R"({"node":{"id":1,"name":"lc1","sw_state":-1}})", "node.sw_state: -1 is out of range for U");
    expect(R"({"node":{"id":1,"name":"lc1","processor":4294967296}})",
           "node.processor: 4294967296 is out of range for N");
    expect(R"({"node":{"id":1,"name":"lc1","location":[0,1]}})", "node.location: a location has three numbers");
    expect(R"({"node":{"id":1,"name":"lc1","location":[0,1,2,3]}})", "node.location: a location has three numbers");
    expect(R"({"node":{"id":1,"name":"lc1","location":1}})", "node.location: expected an array, found a number");
    expect(R"({"node":{"id":1,"name":"lc1","location":[0,-1,2]}})", "node.location[1]: -1 is out of range for U");
}

TEST_F(BadInput, Interface) {
    expect(R"({"interface":{"name":"eth0/1/0/4"}})", "interface.handle: is missing");
    expect(R"({"interface":{"handle":1}})", "interface.name: is missing");
    expect(R"({"interface":{"handle":1,"name":"eth0","mtu":1500}})", "interface.mtu: unknown member");
    expect(R"({"interface":{"handle":4294967296,"name":"eth0"}})",
           "interface.handle: 4294967296 is out of range for U");
    expect(R"({"interface":{"handle":1,"name":[]}})", "interface.name: expected text, found an array");
}

TEST_F(BadInput, Publisher) {
    expect(R"({"publisher":{"node":0,"state":"running"}})", "publisher.root: is missing");
    expect(R"({"publisher":{"root":"main","state":"running"}})", "publisher.node: is missing");
    expect(R"({"publisher":{"root":"main","node":0}})", "publisher.state: is missing");
    expect(R"({"publisher":{"root":"tx","node":0,"state":"running"}})", "publisher.root: unknown root tx");
    expect(R"({"publisher":{"root":"main","node":0,"state":"up"}})", "publisher.state: unknown state up");
    expect(R"({"publisher":{"root":"main","node":0,"state":0}})", "publisher.state: expected text, found a number");
    expect(R"({"publisher":{"root":"main","node":-1,"state":"running"}})", "publisher.node: -1 is out of range for N");
    expect(R"({"publisher":{"root":"main","node":0,"state":"running","pid":1}})", "publisher.pid: unknown member");
}

TEST_F(BadInput, ItemMembers) {
    expect(R"({"item":{"node":0,"path":"a","type":"pm_values_parcel","record":{}}})", "item.root: is missing");
    expect(R"({"item":{"root":"main","path":"a","type":"pm_values_parcel","record":{}}})", "item.node: is missing");
    expect(R"({"item":{"root":"main","node":0,"type":"pm_values_parcel","record":{}}})", "item.path: is missing");
    expect(R"({"item":{"root":"main","node":0,"path":"a","record":{}}})", "item.type: is missing");
    expect(R"({"item":{"root":"main","node":0,"path":"a","type":"pm_values_parcel"}})", "item.record: is missing");
    expect(R"({"item":{"root":"main","node":0,"path":"a","type":"pm_values_parcel","record":{},"ttl":1}})",
           "item.ttl: unknown member");
    expect(R"({"item":{"root":"Main","node":0,"path":"a","type":"pm_values_parcel","record":{}}})",
           "item.root: unknown root Main");
    expect(R"({"item":{"root":1,"node":0,"path":"a","type":"pm_values_parcel","record":{}}})",
           "item.root: expected text, found a number");
    expect(R"({"item":{"root":"main","node":4294967296,"path":"a","type":"pm_values_parcel","record":{}}})",
           "item.node: 4294967296 is out of range for N");
    expect(R"({"item":{"root":"main","node":0,"path":"a","type":"pm_no_parcel","record":{}}})",
           "item.type: unknown record type pm_no_parcel");
    expect(R"({"item":{"root":"main","node":0,"path":"a","type":null,"record":{}}})",
           "item.type: expected text, found null");
    expect(item_with("[]"), "item.record: expected an object, found an array");
    expect(item_with("null"), "item.record: expected an object, found null");
}

TEST_F(BadInput, TheStoresOwnRecordsAreNoItems) {
    expect(R"({"item":{"root":"main","node":0,"path":"a","type":"local_node","record":{}}})",
           "item.type: unknown record type local_node");
}

TEST_F(BadInput, WordsThatAreNearlyRightAreNamed) {
    expect(item_with(R"({"Avrage":1})"), "item.record.Avrage: unknown field; did you mean Average?");
    expect(R"({"node":{"id":1,"name":"lc1","sw_stat":6}})", "node.sw_stat: unknown member; did you mean sw_state?");
    expect(R"({"item":{"root":"main","node":0,"path":"a","type":"pm_sumary_parcel","record":{}}})",
           "item.type: unknown record type pm_sumary_parcel; did you mean pm_summary_parcel?");
}

TEST_F(BadInput, TextThatIsNoJsonNamesItsColumn) {
    expect_refused(R"({"node":{"id":1,"name":"lc1"}})"
                   "\n"
                   R"({"node":{"id":2 "name":"lc2"}})",
                   "set.ndjson:2: column 17: Missing a comma or '}' after an object member.");
    expect_refused(R"({"node":{"id":1,"name":"lc1"}} {"node":x})", "set.ndjson:1: column 40: Invalid value.");
}

TEST_F(BadInput, WhatIsNoDataSetAtAllIsNamed) {
    expect("\xEF\xBB\xBF{}", "this is a byte order mark; a data set begins without one");
    const std::string utf16 = "this is UTF-16; a data set is UTF-8 (iconv -f UTF-16 -t UTF-8 makes it so)";
    expect("\xFF\xFE{\0"s, utf16);
    expect("\xFE\xFF\0{"s, utf16);
    expect("{\0}\0"s, utf16);
    expect("\0{\0}"s, utf16);
    expect("\x1F\x8B\x08\0"s, "this is compressed by gzip; gzip -dc FILE | perf-store load - reads it");
    expect("// captured\n{}", "column 1: this is a comment, which JSON does not have");
    expect("  # captured\n{}", "column 3: this is a comment, which JSON does not have");
    expect("{/* */}", "column 2: this is a comment, which JSON does not have");
}

TEST_F(BadInput, Record) {
    expect(item_with(R"({"Mean":1})"), "item.record.Mean: unknown field");
    expect(item_with(R"({"Average":4294967296})"), "item.record.Average: 4294967296 is out of range for D");
    expect(item_with(R"({"Average":true})"), "item.record.Average: expected a number, found a boolean");
    expect(item_with(R"({"Average":1,"Average":1})"), "item.record.Average: given twice");
}

std::string item_of(const std::string &type, const std::string &record) {
    return R"({"item":{"root":"main","node":0,"path":"values/b","type":")" + type + R"(","record":)" + record + "}}";
}

// A value of each schema type that is wrong for it.
TEST_F(BadInput, RecordValues) {
    const auto expect_value = [&](const char *type, const char *record, const char *message) {
        expect(item_of(type, record), std::string("item.record.") + message);
    };
    expect_value("pm_intf_parcel", R"({"SourceAddress":"10.0.0"})", "SourceAddress: 10.0.0 is not an IPv4 address");
    expect_value("pm_intf_parcel", R"({"SourceV6Address":"10.0.0.1"})",
                 "SourceV6Address: 10.0.0.1 is not an IPv6 address");
    expect_value("pm_intf_parcel", R"({"SourceMacAddress":"00:11"})", "SourceMacAddress: 00:11 is not a MAC address");
    expect_value("pm_intf_parcel", R"({"InterfaceName":1})", "InterfaceName: expected text, found a number");
    expect_value("pm_intf_parcel", R"({"InterfaceName":"a\u0000b"})", "InterfaceName: text holds a zero byte");
    expect_value("pm_intf_parcel", R"({"DelayMeasurementSessions":{}})",
                 "DelayMeasurementSessions: expected an array, found an object");
    expect_value("pm_chkpt_scb_parcel", R"({"buf":"123"})", "buf: expected an even number of hexadecimal digits");
    expect_value("pm_segment_parcel", R"({"IPAddress":"10.0.0.256"})", "IPAddress: 10.0.0.256 is not an address");
    expect_value("pm_segment_parcel", R"({"IPAddress":{"IPAddressType":2,"IPv4":"10.0.0.1"}})",
                 "IPAddress.IPv4: is not the arm that IPAddressType 2 selects");
    expect_value("pm_segment_parcel", R"({"MPLSLabel":"4294967296"})", "MPLSLabel: 4294967296 is out of range for D");
}

TEST_F(BadInput, Path) {
    expect(item_at(""), "item.path: an empty path");
    expect(item_at("/values"), "item.path: a path begins below its branch, without '/'");
    expect(item_at(std::string(401, 'x')), "item.path: 401 bytes are too long for a path; the longest has 400");
    expect(item_at("a\\u0000b"), "item.path: text holds a zero byte");
    // 134 signs of three bytes each: bytes count.
    std::string signs;
    for (int i = 0; i < 134; ++i) {
        signs += "\xE6\x97\xA5";
    }
    expect(item_at(signs), "item.path: 402 bytes are too long for a path; the longest has 400");
}

TEST_F(BadInput, APrettyPrintedSetsErrorNamesTheMembersOwnLine) {
    expect_refused(R"({
  "dataset": {
    "version": 1
  }
}
{
  "item": {
    "root": "main",
    "node": 0,
    "path": "values/b",
    "type": "pm_values_parcel",
    "record": {
      "Average": 1,
      "Minimum": 2,
      "Maximum": -3,
      "Variance": 4
    }
  }
}
)",
                   "set.ndjson:15: item.record.Maximum: -3 is out of range for D");
    expect_refused("{\n\"node\": {\n\"id\": 1,\n\"name\":\n\nnull\n}\n}\n",
                   "set.ndjson:6: node.name: expected text, found null");
    expect_refused("{\n\"node\": {\n\"id\": 1,\n\"name\": \"lc1\",\n\"slot\": 1\n}\n}\n",
                   "set.ndjson:5: node.slot: unknown member");
    expect_refused("\n\n{\n\"node\":\n{\n\"id\": 1\n}\n}\n", "set.ndjson:5: node.name: is missing");
}

// The first hundred bytes are enough to find the rest.
TEST_F(BadInput, WhatAMessageRepeatsIsCut) {
    const std::string text(1'000'000, '7');
    const std::string cut = std::string(100, '7') + "...";
    expect(R"({")" + text + R"(":{}})", cut + ": unknown object");
    expect(R"({"node":{")" + text + R"(":1}})", "node." + cut + ": unknown member");
    expect(R"({"node":{"id":")" + text + R"("}})", "node.id: " + cut + " is out of range for N");
    expect(R"({"node":{"id":"a)" + text + R"("}})", "node.id: a" + cut.substr(1) + " is not an integer");
    expect(R"({"publisher":{"root":")" + text + R"("}})", "publisher.root: unknown root " + cut);
    expect(R"({"publisher":{"root":"main","node":1,"state":")" + text + R"("}})",
           "publisher.state: unknown state " + cut);
    expect(R"({"item":{"root":"main","node":1,"path":"a","type":")" + text + R"("}})",
           "item.type: unknown record type " + cut);
    expect(item_with(R"({")" + text + R"(":1})"), "item.record." + cut + ": unknown field");
    expect(item_with(R"({"Average":"-)" + text + R"("})"),
           "item.record.Average: -" + cut.substr(1) + " is out of range for D");
    const std::string shortest(100, '7');
    expect(R"({")" + shortest + R"(":{}})", shortest + ": unknown object");
    // Not within a character: the 34th of three bytes each would end after the hundredth.
    std::string signs;
    std::string whole_signs;
    for (int i = 0; i < 50; ++i) {
        signs += "\xE6\x97\xA5";
        whole_signs = i == 32 ? signs : whole_signs;
    }
    expect(R"({")" + signs + R"(":{}})", whole_signs + "...: unknown object");
}

// Interface histories, each the only bundle member of the one before.
std::string nested_history(std::size_t depth) {
    std::string record;
    for (std::size_t i = 0; i < depth; ++i) {
        record += R"({"BundleMembers":[)";
    }
    record += "{}";
    for (std::size_t i = 0; i < depth; ++i) {
        record += "]}";
    }
    return R"({"item":{"root":"main","node":0,"path":"history","type":"pm_intf_history_parcel","record":)" + record +
           "}}";
}

TEST_F(BadInput, ARecordNestedTooDeeply) {
    for (const std::size_t depth : {100UL, 1000UL, 100000UL}) {
        const outcome loaded = load(nested_history(depth));
        EXPECT_EQ(loaded.signal, 0) << depth;
        EXPECT_EQ(loaded.status, 1) << depth;
        EXPECT_TRUE(is_one_line(loaded.error)) << depth << " " << loaded.error.substr(0, 200);
        EXPECT_LT(loaded.error.size(), 1000U) << depth;
        EXPECT_TRUE(loaded.error.starts_with("set.ndjson:1: item.record")) << loaded.error.substr(0, 200);
        EXPECT_EQ(dump(), BEFORE) << depth;
    }
}

TEST_F(BadInput, BracketsNestedTooDeeply) {
    constexpr std::size_t DEPTH = 100000;
    expect(std::string(DEPTH, '[') + std::string(DEPTH, ']'), "expected an object, found an array");
    expect(item_with(R"({"Average":)" + std::string(DEPTH, '[') + std::string(DEPTH, ']') + "}"),
           "item.record.Average: expected a number, found an array");
    const outcome loaded = load(std::string(DEPTH, '['));
    EXPECT_EQ(loaded.status, 1);
    EXPECT_TRUE(loaded.error.starts_with("set.ndjson:1: ")) << loaded.error.substr(0, 200);
}

}  // namespace
