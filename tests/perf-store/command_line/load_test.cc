// SPDX-License-Identifier: Apache-2.0
// perf-store load: what it says and what is in the store afterwards.
#include "tests/perf-store/command_line/perf_store_fixture.h"

#include <sys/stat.h>

#include "tests/perf-store/command_line/objects.h"

namespace {

using namespace perf_store_test;

class Load : public PerfStore {};

TEST_F(Load, SaysHowManyItemsThereWere) {
    const outcome loaded = load(EMPTY + node("0", "rp0") + item("main", "0", "a", 1) + item("rx", "0", "b", 2));
    EXPECT_EQ(loaded.status, 0);
    EXPECT_EQ(loaded.error, "");
    EXPECT_EQ(loaded.out, "loaded 2 items\n");
}

TEST_F(Load, WhatIsStoredStaysSoWhenNobodyCanBeTold) {
    write_to("/dev/full");
    const outcome loaded = load(item("main", "0", "a", 1) + item("rx", "0", "b", 2));
    EXPECT_EQ(loaded.status, 0);
    EXPECT_EQ(loaded.error, "perf-store: loaded 2 items, but standard output: No space left on device\n");
    before_start([] { ::close(STDOUT_FILENO); });
    const outcome closed = load(item("main", "0", "c", 3));
    EXPECT_EQ(closed.status, 0);
    EXPECT_EQ(closed.error, "perf-store: loaded 1 items, but standard output: Bad file descriptor\n");
    before_start(nullptr);
    write_to("");
    EXPECT_EQ(dump(), EMPTY + publisher("main", "0", "running") + publisher("rx", "0", "running") +
                          item("main", "0", "a", 1) + item("main", "0", "c", 3) + item("rx", "0", "b", 2));
}

TEST_F(Load, AStandardInputThatIsClosedIsNoEmptySet) {
    before_start([] { ::close(STDIN_FILENO); });
    const outcome loaded = run({"load", "-"});
    EXPECT_EQ(loaded.status, 1);
    EXPECT_EQ(loaded.error, "perf-store: <stdin>: Bad file descriptor\n");
}

TEST_F(Load, AnEmptySetMakesAnEmptyStore) {
    for (const char *set : {"", " \n", EMPTY}) {
        load_good(set);
        EXPECT_EQ(dump(), EMPTY);
    }
}

TEST_F(Load, ASetWithoutVersionIsVersionOne) {
    load_good(node("0", "rp0"));
    EXPECT_EQ(dump(), EMPTY + node("0", "rp0"));
}

TEST_F(Load, WhatIsLeftOutOfANodeHasItsDefault) {
    load_good(R"({"node":{"id":"0x11","name":"lc1"}})");
    EXPECT_EQ(dump(), std::string(EMPTY) + R"({"node":{"id":17,"name":"lc1","sw_state":6,"processor":17}})" + "\n");
}

TEST_F(Load, ANodeKeepsWhatItIsGiven) {
    const std::string given = R"({"node":{"id":4294967295,"name":"K)"
                              "\xC3\xB6"
                              R"(ln","sw_state":0,"location":[4294967295,0,7],"processor":0}})"
                              "\n";
    load_good(given);
    EXPECT_EQ(dump(), EMPTY + given);
}

TEST_F(Load, EveryMemberOfThePlatformIsOptional) {
    load_good(R"({"platform":{}})");
    EXPECT_EQ(dump(), EMPTY + std::string(R"({"platform":{"router_type":0,"rp_plus_datapath":false}})") + "\n");
    const std::string all = R"({"platform":{"my_node":0,"router_type":3,"rp_plus_datapath":true,"active_rp":256,)"
                            R"("process_group_partners":{"central-services":512}}})"
                            "\n";
    load_good(all);
    EXPECT_EQ(dump(), EMPTY + all);
}

TEST_F(Load, NodesStayInInventoryOrder) {
    load_good(node("300", "rp0") + node("100", "lc1") + node("200", "lc2"));
    EXPECT_EQ(dump(), EMPTY + node("300", "rp0") + node("100", "lc1") + node("200", "lc2"));
    load_good(node("50", "lc3"));
    EXPECT_EQ(dump(), EMPTY + node("300", "rp0") + node("100", "lc1") + node("200", "lc2") + node("50", "lc3"));
}

TEST_F(Load, ANodeOfALaterSetTakesThePlaceOfTheOneOfItsId) {
    write("one.ndjson", node("1", "rp0") + node("2", "lc1") + node("3", "lc2"));
    write("two.ndjson", node("1", "rp1"));
    const outcome loaded = run({"load", "one.ndjson", "two.ndjson"});
    EXPECT_EQ(loaded.status, 0) << loaded.error;
    EXPECT_EQ(dump(), EMPTY + node("1", "rp1") + node("2", "lc1") + node("3", "lc2"));
    load_good(node("2", "lc9"));
    EXPECT_EQ(dump(), EMPTY + node("1", "rp1") + node("2", "lc9") + node("3", "lc2"));
}

TEST_F(Load, ANodeThatComesTwiceInASetIsRefusedWithBothLines) {
    const std::string before = EMPTY + node("7", "lc7");
    load_good(before);
    const outcome twice = load(node("1", "rp0") + node("2", "lc1") + node("3", "lc2") + node("1", "rp1"));
    EXPECT_EQ(twice.status, 1);
    EXPECT_EQ(twice.out, "");
    EXPECT_EQ(twice.error, "set.ndjson:4: node.id: node 1 was already given in line 1\n");
    // Over several lines each, and the id in another notation.
    EXPECT_EQ(
        load("\n{\"node\": {\n\"name\": \"rp0\",\n\"id\": 16\n}}\n\n{\"node\":\n{\"id\": \"0x10\", \"name\": \"rp1\"}}")
            .error,
        "set.ndjson:8: node.id: node 0x10 was already given in line 4\n");
    EXPECT_EQ(dump(), before);
}

TEST_F(Load, AnItemReplacesTheOneOfItsPathOnly) {
    load_good(item("main", "0", "a", 1) + item("main", "0", "a/b", 2) + item("main", "1", "a", 3) +
              item("rx", "0", "a", 4));
    load_good(item("main", "0", "a", 9));
    EXPECT_EQ(dump(), EMPTY + publisher("main", "0", "running") + publisher("main", "1", "running") +
                          publisher("rx", "0", "running") + item("main", "0", "a", 9) + item("main", "0", "a/b", 2) +
                          item("main", "1", "a", 3) + item("rx", "0", "a", 4));
}

TEST_F(Load, AnItemMayBeReplacedByOneOfAnotherType) {
    load_good(item("main", "0", "a", 1));
    const std::string other =
        R"({"item":{"root":"main","node":0,"path":"a","type":"pm_chkpt_scb_parcel","record":{"buf":"00ff"}}})"
        "\n";
    load_good(other);
    EXPECT_EQ(dump(), EMPTY + publisher("main", "0", "running") + other);
}

TEST_F(Load, ARootWithItemsAndNoPublisherIsRunning) {
    load_good(item("resp", "0", "a", 1));
    EXPECT_EQ(dump(), EMPTY + publisher("resp", "0", "running") + item("resp", "0", "a", 1));
}

TEST_F(Load, APublishersStateStandsWhereverItIsGiven) {
    for (const char *state : {"running", "stopped", "unreachable", "starting"}) {
        const std::string wanted = EMPTY + publisher("main", "0", state) + item("main", "0", "a", 1);
        for (const std::string &set : {publisher("main", "0", state) + item("main", "0", "a", 1),
                                       item("main", "0", "a", 1) + publisher("main", "0", state)}) {
            write("set.ndjson", set);
            ASSERT_EQ(run({"load", "--replace", "set.ndjson"}).status, 0);
            EXPECT_EQ(dump(), wanted) << set;
        }
        // Later items leave it alone.
        load_good(item("main", "0", "a", 1));
        EXPECT_EQ(dump(), wanted);
    }
}

TEST_F(Load, APublisherNeedsNoItems) {
    load_good(publisher("chkpt", "4294967295", "unreachable"));
    EXPECT_EQ(dump(), EMPTY + publisher("chkpt", "4294967295", "unreachable"));
}

TEST_F(Load, NumbersMayBeText) {
    load_good(R"({"dataset":{"version":"0x1"}} )"
              R"({"platform":{"my_node":"0x1f","router_type":"010"}} )"
              R"({"interface":{"handle":"0xffffffff","name":""}} )"
              R"({"publisher":{"root":"main","node":"017","state":"stopped"}})");
    EXPECT_EQ(dump(), EMPTY + std::string(R"({"platform":{"my_node":31,"router_type":8,"rp_plus_datapath":false}})") +
                          "\n" + R"({"interface":{"handle":4294967295,"name":""}})" + "\n" +
                          publisher("main", "15", "stopped"));
}

TEST_F(Load, MembersMayComeInAnyOrder) {
    load_good(
        R"({"item":{"record":{"Variance":0,"Average":5},"type":"pm_values_parcel","path":"a","node":0,"root":"main"}})");
    EXPECT_EQ(dump(), EMPTY + publisher("main", "0", "running") + item("main", "0", "a", 5));
}

// Objects of several megabytes, in the usual form and in others, some of which lie across the parts in which the file
// is read; an error after them names its line.
TEST_F(Load, ObjectsAreTheSameWhereverTheyLie) {
    constexpr int COUNT = 30000;
    std::string set;
    std::string wanted = EMPTY + publisher("main", "0", "running");
    std::size_t lines = 0;
    for (int i = 0; i < COUNT; ++i) {
        const std::string path = "p" + std::to_string(100000 + i) + std::string(static_cast<std::size_t>(i % 97), '_');
        const std::string usual = item("main", "0", path, i + 1);
        wanted += usual;
        if (i % 3 == 1) {  // in another order
            set += R"({"item":{"node":0,"root":"main","type":"pm_values_parcel","record":{"Average":)" +
                   std::to_string(i + 1) + R"(},"path":")" + path + "\"}}\n";
        } else if (i % 7 == 2) {  // on several lines
            set += "{\"item\":\n" + usual.substr(8);
            ++lines;
        } else {
            set += usual;
        }
        ++lines;
    }
    ASSERT_GT(set.size(), 3U << 20);
    load_good(set);
    EXPECT_TRUE(dump() == wanted);
    const outcome refused = load(set + item("mian", "0", "a", 1));
    EXPECT_EQ(refused.error, "set.ndjson:" + std::to_string(lines + 1) + ": item.root: unknown root mian\n");
}

TEST_F(Load, APathMayHaveFourHundredBytesOfAnySign) {
    const std::string longest(400, 'x');
    load_good(item("main", "0", longest, 1) + item("main", "0", "a%2fb \xC3\xB6_________,:", 2));
    EXPECT_EQ(dump(), EMPTY + publisher("main", "0", "running") + item("main", "0", "a%2fb \xC3\xB6_________,:", 2) +
                          item("main", "0", longest, 1));
}

TEST_F(Load, SeveralFilesAreOneSet) {
    write("one.ndjson", node("0", "rp0") + item("main", "0", "a", 1));
    write("two.ndjson", item("main", "0", "a", 2) + item("main", "0", "b", 2));
    const outcome loaded = run({"load", "one.ndjson", "-", "two.ndjson"}, node("1", "lc1") + item("main", "0", "c", 3));
    EXPECT_EQ(loaded.status, 0) << loaded.error;
    EXPECT_EQ(loaded.out, "loaded 4 items\n");
    EXPECT_EQ(dump(), EMPTY + node("0", "rp0") + node("1", "lc1") + publisher("main", "0", "running") +
                          item("main", "0", "a", 2) + item("main", "0", "b", 2) + item("main", "0", "c", 3));
}

TEST_F(Load, ReplaceEmptiesTheStoreFirst) {
    load_good(R"({"platform":{"my_node":1}} )" + node("0", "rp0") +
              R"({"interface":{"handle":1,"name":"eth0/1/0/4"}} )" + publisher("rx", "0", "stopped") +
              item("main", "0", "a", 1));
    write("set.ndjson", node("7", "lc7") + item("resp", "7", "b", 2));
    const outcome loaded = run({"load", "--replace", "set.ndjson"});
    EXPECT_EQ(loaded.status, 0) << loaded.error;
    EXPECT_EQ(dump(), EMPTY + node("7", "lc7") + publisher("resp", "7", "running") + item("resp", "7", "b", 2));
}

TEST_F(Load, ReplaceBySetsWithoutAnyItemOrNodeIsRefused) {
    load_good(node("0", "rp0") + item("main", "0", "a", 1));
    const std::string before = dump();
    write("nothing.ndjson", "");
    write("version.ndjson", EMPTY);
    write("rest.ndjson", R"({"platform":{"my_node":1}} {"interface":{"handle":1,"name":"eth0/1/0/4"}} )" +
                             publisher("main", "0", "stopped"));
    for (const char *set : {"nothing.ndjson", "version.ndjson", "rest.ndjson"}) {
        const outcome refused = run({"load", "--replace", set});
        EXPECT_EQ(refused.status, 1) << set;
        EXPECT_EQ(refused.out, "") << set;
        EXPECT_EQ(refused.error,
                  "perf-store: no item and no node to replace the store by; with --empty it is emptied\n");
        EXPECT_EQ(dump(), before) << set;
    }
    EXPECT_EQ(run({"load", "--replace", "nothing.ndjson", "version.ndjson", "-"}).status, 1);
    EXPECT_EQ(dump(), before);
    use_store("other");  // one that is not there is not made
    EXPECT_EQ(run({"load", "--replace", "rest.ndjson"}).status, 1);
    EXPECT_FALSE(std::filesystem::exists(folder() + "/other"));
}

TEST_F(Load, ReplaceTakesNodesAloneAndItemsAlone) {
    load_good(item("main", "0", "a", 1));
    write("nothing.ndjson", "");
    EXPECT_EQ(run({"load", "--replace", "nothing.ndjson", "-"}, node("0", "rp0")).status, 0);
    EXPECT_EQ(dump(), EMPTY + node("0", "rp0"));
    EXPECT_EQ(run({"load", "--replace", "-", "nothing.ndjson"}, item("rx", "0", "b", 1)).status, 0);
    EXPECT_EQ(dump(), EMPTY + publisher("rx", "0", "running") + item("rx", "0", "b", 1));
}

TEST_F(Load, WithEmptyTheStoreMayBeEmptied) {
    load_good(node("0", "rp0") + item("main", "0", "a", 1));
    const outcome emptied = run({"load", "--replace", "--empty", "-"});
    EXPECT_EQ(emptied.status, 0) << emptied.error;
    EXPECT_EQ(emptied.out, "loaded 0 items\n");
    EXPECT_EQ(dump(), EMPTY);
    // It does no harm to other sets, and says nothing without --replace.
    EXPECT_EQ(run({"load", "--replace", "--empty", "-"}, node("0", "rp0")).status, 0);
    EXPECT_EQ(dump(), EMPTY + node("0", "rp0"));
    EXPECT_EQ(run({"load", "--empty", "-"}).status, 2);
    EXPECT_EQ(dump(), EMPTY + node("0", "rp0"));
}

TEST_F(Load, MakesTheFoldersThatAreMissing) {
    use_store("a/b/c");
    load_good(node("0", "rp0"));
    EXPECT_EQ(dump(), EMPTY + node("0", "rp0"));
}

TEST_F(Load, AFolderThatCannotBeMadeIsRefused) {
    write("file", "");
    use_store("file/store");
    const outcome loaded = load(EMPTY);
    EXPECT_EQ(loaded.status, 1);
    EXPECT_EQ(loaded.out, "");
    EXPECT_EQ(loaded.error, "perf-store: " + folder() + "/file/store: Not a directory\n");
}

TEST_F(Load, MembersOfTheFoldersGroupMayReadBesideAWriter) {
    before_start([] { ::umask(077); });
    load_good(EMPTY);
    struct stat data {};
    struct stat lock {};
    struct stat made {};
    ASSERT_EQ(::stat(data_file().c_str(), &data), 0);
    ASSERT_EQ(::stat((store() + "/lock.mdb").c_str(), &lock), 0);
    ASSERT_EQ(::stat(store().c_str(), &made), 0);
    EXPECT_EQ(made.st_mode & 0077, 0050U);
    EXPECT_EQ(data.st_mode & 0077, 0040U);
    EXPECT_EQ(lock.st_mode & 0077, 0060U);
    EXPECT_EQ(data.st_gid, made.st_gid);
    EXPECT_EQ(lock.st_gid, made.st_gid);
}

}  // namespace
