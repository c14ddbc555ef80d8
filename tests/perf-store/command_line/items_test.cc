// SPDX-License-Identifier: Apache-2.0
// perf-store's ls, get and rm: single items of a store.
#include "tests/perf-store/command_line/perf_store_fixture.h"

namespace {

using namespace perf_store_test;

constexpr char EMPTY[] = "{\"dataset\":{\"version\":1}}\n";

// An item whose record has `average` for its average and nothing else.
std::string item(const std::string &root, const std::string &node, const std::string &path, int average) {
    return R"({"item":{"root":")" + root + R"(","node":)" + node + R"(,"path":")" + path +
           R"(","type":"pm_values_parcel","record":{"Average":)" + std::to_string(average) +
           R"(,"Minimum":0,"Maximum":0,"Variance":0}}})" + "\n";
}

std::string publisher(const std::string &root, const std::string &node, const std::string &state) {
    return R"({"publisher":{"root":")" + root + R"(","node":)" + node + R"(,"state":")" + state + "\"}}\n";
}

class Items : public PerfStore {
protected:
    void SetUp() override {
        PerfStore::SetUp();
        load_good(
            item("main", "256", "intf", 1) + item("main", "256", "intf/detail/eth0", 2) +
            item("main", "256", "intf/detail/eth0.5", 3) + item("main", "256", "intf/detail/eth0/1", 4) +
            item("main", "256", "intf/detail/eth0/1/x", 5) + item("main", "256", "intf/detail/eth00", 6) +
            item("main", "512", "intf/detail/eth0", 7) + item("chkpt", "256", "intf/detail/eth0", 8) +
            R"({"item":{"root":"rx","node":256,"path":"scb","type":"pm_chkpt_scb_parcel","record":{"buf":"00ff"}}})");
    }

    static std::vector<std::string> words(const std::string &command, const std::vector<std::string> &branch,
                                          const std::vector<std::string> &rest) {
        std::vector<std::string> result{command};
        result.insert(result.end(), branch.begin(), branch.end());
        result.insert(result.end(), rest.begin(), rest.end());
        return result;
    }
    [[nodiscard]] outcome ls(const std::vector<std::string> &rest) const { return run(words("ls", {}, rest)); }
    [[nodiscard]] outcome get(const std::vector<std::string> &rest) const { return run(words("get", MAIN, rest)); }
    [[nodiscard]] outcome rm(const std::vector<std::string> &rest) const { return run(words("rm", MAIN, rest)); }

    // What ls must print.
    void expect_listed(const std::vector<std::string> &options, const std::string &wanted) const {
        const outcome listed = ls(options);
        EXPECT_EQ(listed.status, 0) << listed.error;
        EXPECT_EQ(listed.error, "");
        EXPECT_EQ(listed.out, wanted);
    }

    // Whether a command that must be refused said this in one line and left the store as it was.
    void expect_refused(const outcome &refused, const std::string &error, const std::string &before) const {
        EXPECT_EQ(refused.status, 1);
        EXPECT_EQ(refused.out, "");
        EXPECT_EQ(refused.error, error);
        EXPECT_EQ(dump(), before);
    }

    const std::vector<std::string> MAIN{"--root", "main", "--node", "256"};
};

// ls ---------------------------------------------------------------------------------------------

constexpr char MAIN_256[] =
    "main 0x100 pm_values_parcel intf\n"
    "main 0x100 pm_values_parcel intf/detail/eth0\n"
    "main 0x100 pm_values_parcel intf/detail/eth0.5\n"
    "main 0x100 pm_values_parcel intf/detail/eth0/1\n"
    "main 0x100 pm_values_parcel intf/detail/eth0/1/x\n"
    "main 0x100 pm_values_parcel intf/detail/eth00\n";
constexpr char MAIN_512[] = "main 0x200 pm_values_parcel intf/detail/eth0\n";
constexpr char RX_256[] = "rx 0x100 pm_chkpt_scb_parcel scb\n";
constexpr char CHKPT_256[] = "chkpt 0x100 pm_values_parcel intf/detail/eth0\n";

TEST_F(Items, LsListsEveryItemByRootNodeAndPath) {
    expect_listed({}, std::string(MAIN_256) + MAIN_512 + RX_256 + CHKPT_256);
}

TEST_F(Items, LsListsARootANodeOrBoth) {
    expect_listed({"--root", "main"}, std::string(MAIN_256) + MAIN_512);
    expect_listed({"--root", "rx"}, RX_256);
    expect_listed({"--root", "resp"}, "");
    expect_listed({"--node", "512"}, MAIN_512);
    expect_listed({"--node", "0x100"}, std::string(MAIN_256) + RX_256 + CHKPT_256);
    expect_listed({"--root", "chkpt", "--node", "256"}, CHKPT_256);
    expect_listed({"--root", "chkpt", "--node", "512"}, "");
}

TEST_F(Items, LsListsPathsThatBeginWithAPrefix) {
    expect_listed({"--root", "main", "--node", "256", "intf/detail/eth0/1"},
                  "main 0x100 pm_values_parcel intf/detail/eth0/1\nmain 0x100 pm_values_parcel intf/detail/eth0/1/x\n");
    expect_listed({"intf/detail/eth00"}, "main 0x100 pm_values_parcel intf/detail/eth00\n");
    expect_listed({"s"}, RX_256);
    expect_listed({"detail"}, "");
    expect_listed({"", "--node", "512"}, MAIN_512);
}

TEST_F(Items, LsOfAnEmptyStoreIsEmpty) {
    use_store("other");
    load_good(publisher("main", "1", "stopped"));
    expect_listed({}, "");
}

TEST_F(Items, LsListsMoreThanABatch) {
    use_store("other");
    std::string set;
    std::string wanted;
    for (int i = 1000; i < 6000; ++i) {
        const std::string path = "session/" + std::to_string(i);
        set += item("main", "256", path, 0);
        wanted += "main 0x100 pm_values_parcel " + path + "\n";
    }
    load_good(set);
    const outcome listed = ls({});
    EXPECT_EQ(listed.status, 0) << listed.error;
    EXPECT_TRUE(listed.out == wanted) << listed.out.size();
}

// get --------------------------------------------------------------------------------------------

TEST_F(Items, GetPrintsOneItemAsInADataSet) {
    const outcome got = get({"intf/detail/eth0/1"});
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.error, "");
    EXPECT_EQ(got.out, item("main", "256", "intf/detail/eth0/1", 4));
    EXPECT_EQ(get({"intf"}).out, item("main", "256", "intf", 1));
    EXPECT_EQ(run({"get", "--node", "0x200", "intf/detail/eth0", "--root", "main"}).out,
              item("main", "512", "intf/detail/eth0", 7));
    EXPECT_EQ(run({"get", "--root", "rx", "--node", "0400", "scb"}).out,
              R"({"item":{"root":"rx","node":256,"path":"scb","type":"pm_chkpt_scb_parcel","record":{"buf":"00ff"}}})"
              "\n");
}

TEST_F(Items, WhatGetPrintsLoadsBackToTheSameBytes) {
    const std::string big = "18446744073709551615";
    load_good(
        R"({"item":{"root":"main","node":4294967295,"path":"a \"b\"\n\u00e9","type":"pm_srpolicy_parcel","record":{)"
        R"("Color":4294967295,"EndPointAddress":"2001:db8::1","PolicyName":null,"CandidatePaths":[{"Preference":7,)"
        R"("LastNotificationToFIBTimestamp":")" +
        big + R"(","ProfileName":"","SegmentLists":[{"SegmentListName":"sl"}]}]}}})");
    const std::vector<std::string> call{"get", "--root", "main", "--node", "4294967295", "a \"b\"\n\xC3\xA9"};
    const outcome got = run(call);
    ASSERT_EQ(got.status, 0) << got.error;
    ASSERT_TRUE(is_one_line(got.out)) << got.out;
    const std::string dumped = run({"dump", "--node", "4294967295"}).out;
    use_store("other");
    load_good(got.out);
    EXPECT_EQ(run(call).out, got.out);
    EXPECT_EQ(dump(), dumped);
}

TEST_F(Items, GetOfAMissingItemSaysWhichOne) {
    const std::string before = dump();
    for (const char *path : {"intf/detail/eth", "intf/detail", "intf/", "intf/detail/eth0/", "scb", "zzz", ""}) {
        expect_refused(get({path}), "perf-store: main 0x100 " + std::string(path) + ": Item not found\n", before);
    }
    expect_refused(run({"get", "--root", "main", "--node", "512", "intf"}),
                   "perf-store: main 0x200 intf: Item not found\n", before);
    expect_refused(run({"get", "--root", "resp", "--node", "256", "intf"}),
                   "perf-store: resp 0x100 intf: Item not found\n", before);
}

TEST_F(Items, ALongPathIsNotRepeatedWhole) {
    const std::string path(50'000, 'p');
    const std::string error = "perf-store: main 0x100 " + std::string(400, 'p') + "...: Item not found\n";
    EXPECT_EQ(get({path}).error, error);
    EXPECT_EQ(rm({path}).error, error);
}

// rm ---------------------------------------------------------------------------------------------

TEST_F(Items, RmRemovesOneItemAndNothingElse) {
    const outcome removed = rm({"intf/detail/eth0"});
    EXPECT_EQ(removed.status, 0);
    EXPECT_EQ(removed.error, "");
    EXPECT_EQ(removed.out, "removed 1 items\n");
    expect_listed({}, std::string("main 0x100 pm_values_parcel intf\n"
                                  "main 0x100 pm_values_parcel intf/detail/eth0.5\n"
                                  "main 0x100 pm_values_parcel intf/detail/eth0/1\n"
                                  "main 0x100 pm_values_parcel intf/detail/eth0/1/x\n"
                                  "main 0x100 pm_values_parcel intf/detail/eth00\n") +
                          MAIN_512 + RX_256 + CHKPT_256);
    EXPECT_EQ(get({"intf/detail/eth0"}).status, 1);
}

TEST_F(Items, RmRemovesSeveralItems) {
    const outcome removed = rm({"intf/detail/eth0", "intf", "intf/detail/eth0/1/x"});
    EXPECT_EQ(removed.status, 0) << removed.error;
    EXPECT_EQ(removed.out, "removed 3 items\n");
    expect_listed({"--root", "main", "--node", "256"},
                  "main 0x100 pm_values_parcel intf/detail/eth0.5\n"
                  "main 0x100 pm_values_parcel intf/detail/eth0/1\n"
                  "main 0x100 pm_values_parcel intf/detail/eth00\n");
}

TEST_F(Items, RmOfAMissingItemRemovesNothing) {
    const std::string before = dump();
    expect_refused(rm({"zzz"}), "perf-store: main 0x100 zzz: Item not found\n", before);
    expect_refused(rm({"intf", "zzz"}), "perf-store: main 0x100 zzz: Item not found\n", before);
    expect_refused(rm({"zzz", "intf"}), "perf-store: main 0x100 zzz: Item not found\n", before);
    expect_refused(rm({"intf", "intf/detail/eth0/1", "intf/detail/eth"}),
                   "perf-store: main 0x100 intf/detail/eth: Item not found\n", before);
    expect_refused(rm({"intf/detail"}), "perf-store: main 0x100 intf/detail: Item not found\n", before);
    expect_refused(rm({"-r", "intf/det"}), "perf-store: main 0x100 intf/det: Item not found\n", before);
    expect_refused(rm({"--recursive", "intf", "scb"}), "perf-store: main 0x100 scb: Item not found\n", before);
}

TEST_F(Items, RmOfWhatAnEarlierPathRemovedIsNoError) {
    const std::string before = dump();
    const std::vector<std::pair<std::vector<std::string>, std::string>> calls = {
        {{"intf", "intf"}, "1"},
        {{"-r", "intf/detail/eth0", "intf/detail/eth0/1"}, "3"},
        {{"-r", "intf/detail/eth0/1", "intf/detail/eth0"}, "3"},
        {{"-r", "intf/detail/eth0", "intf/detail", "intf/detail/eth0/1/x"}, "5"},
    };
    for (const auto &[paths, count] : calls) {
        const outcome removed = rm(paths);
        EXPECT_EQ(removed.status, 0) << removed.error;
        EXPECT_EQ(removed.error, "");
        EXPECT_EQ(removed.out, "removed " + count + " items\n");
        load_good(before);
    }
    expect_refused(rm({"-r", "intf", "intf/no"}), "perf-store: main 0x100 intf/no: Item not found\n", before);
}

TEST_F(Items, RmRecursivelyRemovesAnItemAndWhatIsBelowIt) {
    const outcome removed = rm({"--recursive", "intf/detail/eth0"});
    EXPECT_EQ(removed.status, 0) << removed.error;
    EXPECT_EQ(removed.error, "");
    EXPECT_EQ(removed.out, "removed 3 items\n");
    expect_listed({}, std::string("main 0x100 pm_values_parcel intf\n"
                                  "main 0x100 pm_values_parcel intf/detail/eth0.5\n"
                                  "main 0x100 pm_values_parcel intf/detail/eth00\n") +
                          MAIN_512 + RX_256 + CHKPT_256);
}

TEST_F(Items, RmRecursivelyNeedsNoItemAtThePathItself) {
    const outcome removed = rm({"intf/detail", "-r"});
    EXPECT_EQ(removed.status, 0) << removed.error;
    EXPECT_EQ(removed.out, "removed 5 items\n");
    expect_listed({}, std::string("main 0x100 pm_values_parcel intf\n") + MAIN_512 + RX_256 + CHKPT_256);
}

TEST_F(Items, RmRecursivelyRemovesThousandsBetweenTheirNeighbours) {
    use_store("other");
    std::string set = item("main", "256", "s", 1) + item("main", "256", "s.", 2) + item("main", "256", "s0", 3);
    for (int i = 10000; i < 13000; ++i) {
        set += item("main", "256", "s/" + std::to_string(i) + std::string(static_cast<std::size_t>(i % 300), 'x'), i);
    }
    load_good(set);
    const outcome removed = rm({"-r", "s"});
    EXPECT_EQ(removed.status, 0) << removed.error;
    EXPECT_EQ(removed.out, "removed 3001 items\n");
    expect_listed({}, "main 0x100 pm_values_parcel s.\nmain 0x100 pm_values_parcel s0\n");
}

TEST_F(Items, PublishersStayWhenTheirLastItemIsRemoved) {
    use_store("other");
    load_good(item("main", "256", "summary", 1) + item("rx", "512", "summary", 2) + publisher("rx", "512", "starting"));
    EXPECT_EQ(rm({"summary"}).status, 0);
    EXPECT_EQ(run({"rm", "--root", "rx", "--node", "512", "summary"}).status, 0);
    EXPECT_EQ(dump(), EMPTY + publisher("main", "256", "running") + publisher("rx", "512", "starting"));
}

TEST_F(Items, WhatWasRemovedCanBeLoadedAgain) {
    const std::string before = dump();
    const std::string kept = get({"intf"}).out;
    ASSERT_EQ(rm({"intf"}).status, 0);
    load_good(kept);
    EXPECT_EQ(dump(), before);
}

// Usage and stores -------------------------------------------------------------------------------

TEST_F(Items, WrongUsageIsStatusTwo) {
    const std::vector<std::vector<std::string>> calls = {
        {"ls", "--root", "tx"},
        {"ls", "--root"},
        {"ls", "--node", "rp0"},
        {"ls", "--node", "4294967296"},
        {"ls", "intf", "scb"},
        {"ls", "--recursive"},
        {"get"},
        {"get", "intf"},
        {"get", "--root", "main", "intf"},
        {"get", "--node", "256", "intf"},
        {"get", "--root", "main", "--node", "256"},
        {"get", "--root", "main", "--node", "256", "intf", "scb"},
        {"get", "--root", "all", "--node", "256", "intf"},
        {"get", "--root", "main", "--node", "-1", "intf"},
        {"rm"},
        {"rm", "intf"},
        {"rm", "--root", "main", "intf"},
        {"rm", "--node", "256", "intf"},
        {"rm", "--root", "main", "--node", "256"},
        {"rm", "--root", "main", "--node", "256", "--recursive"},
        {"rm", "--root", "main", "--node", "256", "--force", "intf"},
        {"rm", "--root", "main", "--node", "0x", "intf"},
    };
    const std::string before = dump();
    for (const std::vector<std::string> &call : calls) {
        std::string shown;
        for (const std::string &word : call) {
            shown += " '" + word + "'";
        }
        const outcome wrong = run(call);
        EXPECT_EQ(wrong.status, 2) << shown;
        EXPECT_EQ(wrong.out, "") << shown;
        EXPECT_NE(wrong.error, "") << shown;
    }
    EXPECT_EQ(dump(), before);
}

TEST_F(Items, AStoreThatIsNotThereIsRefusedAndNotMade) {
    use_store("missing");
    const std::string error = "perf-store: lmdb:" + folder() + "/missing: Store client not available\n";
    EXPECT_EQ(ls({}).error, error);
    EXPECT_EQ(get({"intf"}).error, error);
    EXPECT_EQ(ls({}).status, 1);
    EXPECT_EQ(get({"intf"}).status, 1);
    const outcome removed = rm({"intf"});
    EXPECT_EQ(removed.status, 1);
    EXPECT_TRUE(is_one_line(removed.error)) << removed.error;
    EXPECT_FALSE(std::filesystem::exists(folder() + "/missing"));
}

TEST_F(Items, OutputThatCannotBeWrittenIsAnError) {
    write_to("/dev/full");
    const outcome listed = ls({});
    EXPECT_EQ(listed.status, 1);
    EXPECT_TRUE(is_one_line(listed.error)) << listed.error;
    const outcome got = get({"intf"});
    EXPECT_EQ(got.status, 1);
    EXPECT_TRUE(is_one_line(got.error)) << got.error;
}

TEST_F(Items, WhatIsRemovedStaysSoWhenNobodyCanBeTold) {
    write_to("/dev/full");
    const outcome removed = rm({"intf", "intf/detail/eth0"});
    EXPECT_EQ(removed.status, 0);
    EXPECT_EQ(removed.error, "perf-store: removed 2 items, but standard output: No space left on device\n");
    write_to("");
    EXPECT_EQ(get({"intf"}).status, 1);
}

}  // namespace
