// SPDX-License-Identifier: Apache-2.0
// perf-store diff: the lines that tell what differs, and the exit statuses.
#include <filesystem>
#include <fstream>

#include "tests/perf-store/command_line/objects.h"
#include "tests/perf-store/command_line/perf_store_fixture.h"

namespace {

using namespace perf_store_test;

// An item of node 0x100 of the root main.
std::string object(const std::string &path, const std::string &type, const std::string &record) {
    return R"({"item":{"root":"main","node":256,"path":")" + path + R"(","type":")" + type + R"(","record":)" + record +
           "}}\n";
}

class Diff : public PerfStore {
protected:
    [[nodiscard]] outcome diff(const std::string &from, const std::string &to,
                               const std::vector<std::string> &options = {}) const {
        write("old.ndjson", from);
        write("new.ndjson", to);
        std::vector<std::string> words{"diff", "old.ndjson", "new.ndjson"};
        words.insert(words.end(), options.begin(), options.end());
        return run(words);
    }

    // Compares, and expects these lines.
    void expect(const std::string &from, const std::string &to, const std::string &wanted,
                const std::vector<std::string> &options = {}) const {
        const outcome told = diff(from, to, options);
        EXPECT_EQ(told.out, wanted);
        EXPECT_EQ(told.error, "");
        EXPECT_EQ(told.status, wanted.empty() ? 0 : 1);
    }

    // Compares two records of a type.
    void expect_of_records(const std::string &type, const std::string &from, const std::string &to,
                           const std::string &wanted, const std::vector<std::string> &options = {}) const {
        expect(object("i", type, from), object("i", type, to), wanted, options);
    }
};

TEST_F(Diff, OfTheSameIsNothingInWhateverOrder) {
    const std::string set = node("256", "rp0") + item("main", "256", "b", 1) + item("main", "256", "a", 2);
    const std::string other = item("main", "256", "a", 2) + item("main", "256", "b", 1) + node("256", "rp0");
    expect(set, set, "");
    expect(set, other, "");
}

TEST_F(Diff, OfMembersThatSayTheSameIsNothing) {
    expect(object("i", "pm_values_parcel", R"({"Average":16,"Minimum":0})"),
           object("i", "pm_values_parcel", R"({"Average":"0x10"})"), "");
}

TEST_F(Diff, TellsItemsThatCameAndWentInTheOrderOfRootNodeAndPath) {
    expect(item("main", "256", "gone", 1) + item("main", "256", "kept", 1) + item("chkpt", "256", "gone", 1),
           item("main", "16", "new", 1) + item("main", "256", "kept", 1) + item("main", "256", "a new", 1),
           "publisher main 0x10: added\n"
           "publisher chkpt 0x100: removed\n"
           "main 0x10 new: added\n"
           "main 0x100 a new: added\n"
           "main 0x100 gone: removed\n"
           "chkpt 0x100 gone: removed\n");
}

TEST_F(Diff, TellsMembersWithTheirPathsAndValues) {
    expect_of_records("pm_intf_parcel",
                      R"({"InterfaceName":"eth0","InterfaceState":true,"SourceAddress":"10.0.0.1","PrimaryVlanTag":7})",
                      R"({"InterfaceName":"eth\"1","SourceAddress":"10.0.0.2","PrimaryVlanTag":8,)"
                      R"("SourceV6Address":"2001:db8::1","SourceMacAddress":"00:11:22:33:44:55"})",
                      "main 0x100 i InterfaceName: \"eth0\" -> \"eth\\\"1\"\n"
                      "main 0x100 i InterfaceState: true -> false\n"
                      "main 0x100 i SourceAddress: \"10.0.0.1\" -> \"10.0.0.2\"\n"
                      "main 0x100 i SourceV6Address: \"::\" -> \"2001:db8::1\"\n"
                      "main 0x100 i SourceMacAddress: \"00:00:00:00:00:00\" -> \"00:11:22:33:44:55\"\n"
                      "main 0x100 i PrimaryVlanTag: 7 -> 8\n");
}

TEST_F(Diff, TellsAnAbsentTextFromAnEmptyOne) {
    expect_of_records("pm_intf_parcel", R"({"InterfaceName":null})", R"({"InterfaceName":""})",
                      "main 0x100 i InterfaceName: null -> \"\"\n");
}

TEST_F(Diff, TellsNumbersEnumerationsAndTimesAsADataSetHasThem) {
    expect_of_records("pm_scb_last_advert_parcel", R"({"TimeOfAdvertisement":1700000000000,"AdvertisementReason":1})",
                      R"({"TimeOfAdvertisement":"18446744073709551615","AdvertisementReason":2})",
                      "main 0x100 i TimeOfAdvertisement: 1700000000000 -> \"18446744073709551615\"\n"
                      "main 0x100 i AdvertisementReason: 1 -> 2\n");
}

TEST_F(Diff, TellsOptionalsAddressesAndWhatTheyHold) {
    expect_of_records("pm_segment_parcel", R"({"IPAddress":"10.0.0.1","MPLSLabel":0})",
                      R"({"IPAddress":null,"USIDInfo":{"USIDLength":32}})",
                      "main 0x100 i IPAddress: \"10.0.0.1\" -> null\n"
                      "main 0x100 i MPLSLabel: 0 -> null\n"
                      "main 0x100 i USIDInfo: null -> {\"USIDLength\":32}\n");
    expect_of_records("pm_segment_parcel", R"({"IPAddress":"10.0.0.1","USIDInfo":{"SIDBehavior":1}})",
                      R"({"IPAddress":"2001:db8::1","USIDInfo":{"SIDBehavior":2}})",
                      "main 0x100 i IPAddress: \"10.0.0.1\" -> \"2001:db8::1\"\n"
                      "main 0x100 i USIDInfo.SIDBehavior: 1 -> 2\n");
    // An absent address is not one of no kind.
    expect_of_records("pm_scb_parcel", R"({"ResponderAddress":null})", R"({"ResponderAddress":{"IPAddressType":2}})",
                      "main 0x100 i ResponderAddress: null -> {\"IPAddressType\":2}\n");
}

TEST_F(Diff, TellsElementsByTheirIndex) {
    expect_of_records("pm_aggr_history_parcel",
                      R"({"AggregatedHistoryList":[{"AggregationTimestamp":1},{"AggregationTimestamp":2}]})",
                      R"({"AggregatedHistoryList":[{"AggregationTimestamp":3}]})",
                      "main 0x100 i AggregatedHistoryList[0].AggregationTimestamp: 1 -> 3\n"
                      "main 0x100 i AggregatedHistoryList[1]: removed {\"AggregationTimestamp\":2}\n");
    expect_of_records("pm_dr_lc_parcel", R"({"LineCardList":[5]})", R"({"LineCardList":[5,6,0]})",
                      "main 0x100 i LineCardList[1]: added 6\n"
                      "main 0x100 i LineCardList[2]: added 0\n");
    expect_of_records("pm_stats_batch_elem_t", R"({"Count":[1,2,3]})", R"({"Count":[1,7]})",
                      "main 0x100 i Count[1]: 2 -> 7\n"
                      "main 0x100 i Count[2]: 3 -> 0\n");
    expect_of_records("pm_chkpt_scb_parcel", R"({"buf":"0aff"})", R"({"buf":"0a"})",
                      "main 0x100 i buf: \"0aff\" -> \"0a\"\n");
}

TEST_F(Diff, TellsAUnionThatChangedItsArm) {
    expect_of_records("pm_intf_history_parcel",
                      R"({"HistoryInfo":{"HistoryType":0,"ProbeHistory":{"ProbeHistoryList":[{"PacketsSent":3}]}}})",
                      R"({"HistoryInfo":{"HistoryType":3,"AdvertisementHistory":{}}})",
                      "main 0x100 i HistoryInfo.HistoryType: 0 -> 3\n"
                      "main 0x100 i HistoryInfo.ProbeHistory: removed {\"ProbeHistoryList\":[{\"PacketsSent\":3}]}\n"
                      "main 0x100 i HistoryInfo.AdvertisementHistory: added {}\n");
    expect_of_records("pm_intf_history_parcel",
                      R"({"HistoryInfo":{"HistoryType":0,"ProbeHistory":{"ProbeHistoryList":[{"PacketsSent":3}]}}})",
                      R"({"HistoryInfo":{"HistoryType":0,"ProbeHistory":{"ProbeHistoryList":[{"PacketsSent":4}]}}})",
                      "main 0x100 i HistoryInfo.ProbeHistory.ProbeHistoryList[0].PacketsSent: 3 -> 4\n");
    expect_of_records("pm_intf_history_parcel", R"({"HistoryInfo":{"HistoryType":77}})",
                      R"({"HistoryInfo":{"HistoryType":1}})", "main 0x100 i HistoryInfo.HistoryType: 77 -> 1\n");
}

TEST_F(Diff, TellsAnotherTypeAndNothingOfItsMembers) {
    expect(object("i", "pm_values_parcel", R"({"Average":1})"), object("i", "pm_dr_lc_parcel", "{}"),
           "main 0x100 i type: pm_values_parcel -> pm_dr_lc_parcel\n");
}

TEST_F(Diff, TellsThePlatformTheInventoryTheNamesAndThePublishers) {
    const std::string from =
        R"({"platform":{"my_node":256,"router_type":3,"process_group_partners":{"central-services":257}}} )" +
        node("256", "rp0") + node("257", "rp1") + node("16", "lc0") +
        R"({"interface":{"handle":77,"name":"eth0"}} {"interface":{"handle":78,"name":"eth1"}} )" +
        publisher("main", "256", "running");
    const std::string to =
        R"({"platform":{"router_type":4,"rp_plus_datapath":true,"active_rp":256}} )" +
        std::string(R"({"node":{"id":257,"name":"rp 1","sw_state":3,"location":[0,1,0],"processor":9}} )") +
        node("256", "rp0") + node("17", "lc1") +
        R"({"interface":{"handle":77,"name":"eth2"}} {"interface":{"handle":79,"name":"eth1"}} )" +
        publisher("main", "256", "stopped") + publisher("rx", "256", "starting");
    expect(from, to,
           "platform my_node: 256 -> null\n"
           "platform router_type: 3 -> 4\n"
           "platform rp_plus_datapath: false -> true\n"
           "platform process_group_partners: {\"central-services\":257} -> null\n"
           "platform active_rp: null -> 256\n"
           "node 0x10: removed\n"
           "node 0x11: added\n"
           "node 0x101 name: \"rp1\" -> \"rp 1\"\n"
           "node 0x101 sw_state: 6 -> 3\n"
           "node 0x101 location[1]: 0 -> 1\n"
           "node 0x101 processor: 257 -> 9\n"
           "nodes order: 0x100 0x101 -> 0x101 0x100\n"
           "interface 0x4d name: \"eth0\" -> \"eth2\"\n"
           "interface 0x4e: removed\n"
           "interface 0x4f: added\n"
           "publisher main 0x100 state: \"running\" -> \"stopped\"\n"
           "publisher rx 0x100: added\n");
}

TEST_F(Diff, TakesTheLastOfAnItemThatComesTwiceAsALoadDoes) {
    expect(item("main", "256", "i", 1) + item("main", "256", "i", 2), item("main", "256", "i", 3),
           "main 0x100 i Average: 2 -> 3\n");
}

TEST_F(Diff, PassesOverWhatIsIgnored) {
    const std::string from = R"({"ProbeValues":{"Average":1,"Maximum":1},"NumberOfPacketsSent":1})";
    const std::string to = R"({"ProbeValues":{"Average":2,"Maximum":2},"NumberOfPacketsSent":2})";
    const char *const type = "pm_scb_probe_results_parcel";
    const std::string average = "main 0x100 i ProbeValues.Average: 1 -> 2\n";
    const std::string maximum = "main 0x100 i ProbeValues.Maximum: 1 -> 2\n";
    const std::string sent = "main 0x100 i NumberOfPacketsSent: 1 -> 2\n";
    expect_of_records(type, from, to, average + maximum + sent);
    expect_of_records(type, from, to, maximum + sent, {"--ignore", "Average"});
    expect_of_records(type, from, to, maximum + sent, {"--ignore", "ProbeValues.Average"});
    expect_of_records(type, from, to, average + maximum + sent, {"--ignore", "AdvertisedValues.Average"});
    expect_of_records(type, from, to, sent, {"--ignore", "ProbeValues"});
    expect_of_records(type, from, to, "",
                      {"--ignore", "Average", "--ignore", "Maximum", "--ignore", "NumberOfPacketsSent"});
}

TEST_F(Diff, TakesOneMemberForEachIgnore) {
    write("old.ndjson", item("main", "256", "i", 1));
    write("new.ndjson", item("main", "256", "i", 2));
    EXPECT_EQ(run({"diff", "--ignore", "Average", "old.ndjson", "new.ndjson"}).status, 0);
    EXPECT_EQ(run({"diff", "--ignore=Minimum", "old.ndjson", "--ignore", "Maximum", "new.ndjson"}).status, 1);
}

TEST_F(Diff, PassesOverElementsByTheirIndex) {
    const std::string from = R"({"ProbeHistoryList":[{"PacketsSent":1},{"PacketsSent":1}]})";
    const std::string to = R"({"ProbeHistoryList":[{"PacketsSent":2},{"PacketsSent":2},{"PacketsSent":2}]})";
    const char *const type = "pm_probe_history_parcel";
    const std::string added = "main 0x100 i ProbeHistoryList[2]: added {\"PacketsSent\":2}\n";
    expect_of_records(type, from, to, "main 0x100 i ProbeHistoryList[1].PacketsSent: 1 -> 2\n" + added,
                      {"--ignore", "ProbeHistoryList[0].PacketsSent"});
    expect_of_records(type, from, to, "main 0x100 i ProbeHistoryList[0].PacketsSent: 1 -> 2\n" + added,
                      {"--ignore", "ProbeHistoryList[1]"});
    expect_of_records(type, from, to, added, {"--ignore", "ProbeHistoryList.PacketsSent"});
    expect_of_records(type, from, to, "", {"--ignore", "ProbeHistoryList"});
}

TEST_F(Diff, PassesOverMembersOfTheInventoryToo) {
    const std::string from = node("1", "rp0") + node("2", "rp1");
    const std::string to = node("2", "rp1") + node("1", "other");
    expect(from, to, "node 0x1 name: \"rp0\" -> \"other\"\n", {"--ignore", "order"});
    expect(from, to, "nodes order: 0x1 0x2 -> 0x2 0x1\n", {"--ignore", "name"});
}

TEST_F(Diff, KnowsNoMemberThatNothingHas) {
    const outcome told = diff("", "", {"--ignore", "ProbeValues.Averag"});
    EXPECT_EQ(told.error, "perf-store: --ignore: nothing has a member Averag; did you mean Average?\n");
    EXPECT_EQ(told.status, 2);
    EXPECT_EQ(diff("", "", {"--ignore", "LineCardList[x]"}).error,
              "perf-store: --ignore: LineCardList[x]: x is no index\n");
}

class DiffCounters : public Diff {
protected:
    // A summary whose counters are `sent`, and a session of the same node with a time stamp.
    static std::string at(const std::string &sent, const std::string &msec) {
        return object("summary", "pm_summary_parcel",
                      R"({"TotalEndpoints":)" + sent + R"(,"GlobalCounters":{"QueryPacketsSent":)" + sent + "}}") +
               object("values", "pm_adv_sample_parcel", R"({"AdvertisementTimestamp":)" + msec + "}");
    }
};

constexpr char GREW[] = "main 0x100 summary GlobalCounters.QueryPacketsSent: 120 -> 140";
constexpr char GAUGE[] = "main 0x100 summary TotalEndpoints: 120 -> 140\n";

TEST_F(DiffCounters, AreNumbersLikeOthersUnlessAskedFor) {
    expect(at("120", "1000"), at("140", "1000"), std::string(GAUGE) + GREW + "\n");
}

TEST_F(DiffCounters, GrowByTheNewestTimeStampsOfTheirNode) {
    expect(at("120", "1700000000000"), at("140", "1700000010000"),
           std::string(GAUGE) + GREW + ", +20, 2.000/s\n" +
               "main 0x100 values AdvertisementTimestamp: 1700000000000 -> 1700000010000\n",
           {"--counters"});
}

TEST_F(DiffCounters, HaveNoRateWhereNoTimeHasPassedOrNoneIsKnown) {
    expect(at("120", "1700000000000"), at("140", "1700000000000"), std::string(GAUGE) + GREW + ", +20\n",
           {"--counters"});
    expect(at("120", "0"), at("140", "0"), std::string(GAUGE) + GREW + ", +20\n", {"--counters"});
    // The time of another node says nothing.
    const std::string other = R"({"item":{"root":"main","node":1,"path":"v","type":"pm_adv_sample_parcel","record":)";
    expect(at("120", "0") + other + R"({"AdvertisementTimestamp":1000}}})",
           at("140", "0") + other + R"({"AdvertisementTimestamp":2000}}})",
           "main 0x1 v AdvertisementTimestamp: 1000 -> 2000\n" + std::string(GAUGE) + GREW + ", +20\n", {"--counters"});
}

TEST_F(DiffCounters, GrowByTheIntervalThatIsGiven) {
    expect(at("120", "1700000000000"), at("140", "1700000000000"), std::string(GAUGE) + GREW + ", +20, 40.000/s\n",
           {"--counters", "--interval", "0.5"});
}

TEST_F(DiffCounters, OfASampleGrowByItsOwnTimeStamp) {
    expect_of_records("pm_lm_pkt_sample_parcel", R"({"Timestamp":1700000000000,"TXCounter":100,"RXCounter":90})",
                      R"({"Timestamp":1700000004000,"TXCounter":110,"RXCounter":80})",
                      "main 0x100 i Timestamp: 1700000000000 -> 1700000004000\n"
                      "main 0x100 i TXCounter: 100 -> 110, +10, 2.500/s\n"
                      "main 0x100 i RXCounter: 90 -> 80, reset\n",
                      {"--counters"});
}

TEST_F(DiffCounters, OfTwoWidthsWrapAndAreReset) {
    expect_of_records("pm_npu_session_packet_counters_parcel",
                      R"({"TotalPacketsSent":4294967290,"TotalPacketsReceived":5})",
                      R"({"TotalPacketsSent":4,"TotalPacketsReceived":3})",
                      "main 0x100 i TotalPacketsSent: 4294967290 -> 4, +10 (wrapped)\n"
                      "main 0x100 i TotalPacketsReceived: 5 -> 3, reset\n",
                      {"--counters"});
    expect_of_records("pm_npu_packet_counters_parcel", R"({"TotalPacketsSent":4294967290})",
                      R"({"TotalPacketsSent":4})", "main 0x100 i TotalPacketsSent: 4294967290 -> 4, reset\n",
                      {"--counters"});
}

class DiffStores : public Diff {};

TEST_F(DiffStores, ComparesWithTheStoreWhereNothingElseIsNamed) {
    load_good(node("256", "rp0") + item("main", "256", "i", 2));
    write("old.ndjson", node("256", "rp0") + item("main", "256", "i", 1));
    const outcome told = run({"diff", "old.ndjson"});
    EXPECT_EQ(told.out, "main 0x100 i Average: 1 -> 2\n");
    EXPECT_EQ(told.status, 1);
    EXPECT_EQ(run({"diff", "set.ndjson"}).status, 0);
}

TEST_F(DiffStores, ComparesStoresByTheirUrlsInBothPlaces) {
    load_good(item("main", "256", "i", 2));
    use_store("other");
    load_good(item("main", "256", "i", 3));
    const std::string store_of = "lmdb:" + folder() + "/";
    EXPECT_EQ(run({"diff", store_of + "store", store_of + "other"}).out, "main 0x100 i Average: 2 -> 3\n");
    EXPECT_EQ(run({"diff", store_of + "store", "set.ndjson"}).out, "main 0x100 i Average: 2 -> 3\n");
    EXPECT_EQ(run({"diff", store_of + "other", "set.ndjson"}).status, 0);
}

TEST_F(DiffStores, OfAGeneratedSetAndTheStoreItIsLoadedIntoIsNothing) {
    const std::string set = run({"gen", "--policies", "3", "--interfaces", "3", "--seed", "5"}).out;
    load_good(set);
    EXPECT_EQ(run({"diff", "-", "lmdb:" + store()}, set).out, "");
    const outcome told = run({"diff", "--counters", "-"}, dump());
    EXPECT_EQ(told.out, "");
    EXPECT_EQ(told.status, 0) << told.error;
}

TEST_F(DiffStores, ThatAreMissingAreNamed) {
    write("set.ndjson", "");
    const outcome told = run({"diff", "set.ndjson", "lmdb:" + folder() + "/nowhere"});
    EXPECT_EQ(told.status, 2);
    EXPECT_EQ(told.error, "perf-store: lmdb:" + folder() + "/nowhere: Store client not available\n");
}

class DiffTrouble : public Diff {};

TEST_F(DiffTrouble, WithADataSetNamesFileLineAndMember) {
    const std::string good = item("main", "256", "i", 1);
    const outcome old = diff(good + "\n" + R"({"node":{"id":1,"nam":"x"}})", good);
    EXPECT_EQ(old.error, "old.ndjson:3: node.nam: unknown member; did you mean name?\n");
    EXPECT_EQ(old.out, "");
    EXPECT_EQ(old.status, 2);
    const outcome other = diff(good, object("i", "pm_values_parcel", R"({"Average":4294967296})"));
    EXPECT_EQ(other.error, "new.ndjson:1: item.record.Average: 4294967296 is out of range for D\n");
    EXPECT_EQ(other.status, 2);
}

TEST_F(DiffTrouble, IsAFileThatIsNotThere) {
    write("old.ndjson", "");
    const outcome told = run({"diff", "old.ndjson", "missing.ndjson"});
    EXPECT_EQ(told.error, "perf-store: missing.ndjson: No such file or directory\n");
    EXPECT_EQ(told.status, 2);
}

TEST_F(DiffTrouble, IsWrongUsage) {
    EXPECT_EQ(run({"diff"}).status, 2);
    EXPECT_EQ(run({"diff", "a", "b", "c"}).status, 2);
    EXPECT_EQ(diff("", "", {"--interval", "5"}).status, 2);  // has no use without --counters
    EXPECT_EQ(diff("", "", {"--counters", "--interval", "0"}).status, 2);
    const outcome twice = run({"diff", "-", "-"});
    EXPECT_EQ(twice.error, "perf-store: diff: standard input can be one of the two only\n");
    EXPECT_EQ(twice.status, 2);
}

TEST_F(DiffTrouble, IsOutputThatCannotBeWritten) {
    write_to("/dev/full");
    const outcome told = diff(item("main", "256", "i", 1), item("main", "256", "i", 2));
    EXPECT_EQ(told.error, "perf-store: standard output: No space left on device\n");
    EXPECT_EQ(told.status, 2);
}

}  // namespace
