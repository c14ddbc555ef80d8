// SPDX-License-Identifier: Apache-2.0
// perf-store dump: data sets that give the same store again, and parts of a store.
#include "tests/perf-store/command_line/perf_store_fixture.h"

#include <algorithm>
#include <grp.h>
#include <sys/stat.h>

#include "perf-store/datasets/record_json.h"
#include "schema/pm_descriptors.h"
#include "tests/perf-store/command_line/objects.h"
#include "tests/support/random_record.h"

namespace {

using namespace perf_store_test;

class Dump : public PerfStore {};

TEST_F(Dump, OfADumpIsTheSameDumpForRecordsOfEveryType) {
    std::vector<std::string> items;
    for (const parcel_descriptor *type : pm_descriptors()) {
        for (std::uint64_t seed = 100; seed < 103; ++seed) {
            const random_record record(type, seed);
            std::string line = R"({"item":{"root":"main","node":256,"path":")" + std::string(type->name) + "/" +
                               std::to_string(seed) + R"(","type":")" + type->name + R"(","record":)";
            ASSERT_FALSE(perf_store::append_record(record.data(), type, perf_store::json_fields::set, &line));
            items.push_back(line + "}}\n");
        }
    }
    std::string shuffled;
    for (auto each = items.rbegin(); each != items.rend(); ++each) {
        shuffled += *each;
    }
    load_good(shuffled);
    const std::string first = dump();
    std::sort(items.begin(), items.end());  // the dump's order: that of the paths
    std::string wanted = EMPTY + publisher("main", "256", "running");
    for (const std::string &each : items) {
        wanted += each;
    }
    EXPECT_TRUE(first == wanted) << first.size() << " bytes, wanted " << wanted.size();
    use_store("other");
    load_good(first);
    EXPECT_TRUE(dump() == first);
}

// A generated set has the form of a dump; only the order of its items is the generator's own.
TEST_F(Dump, OfAGeneratedSetHasItsLines) {
    const std::string set = run({"gen", "--nodes", "3", "--interfaces", "2", "--policies", "3", "--seed", "3"}).out;
    load_good(set);
    const std::string first = dump();
    std::vector<std::string> wanted =
        lines_of(set + publisher("main", "16", "running") + publisher("main", "256", "running") +
                 publisher("main", "257", "running"));
    std::vector<std::string> dumped = lines_of(first);
    std::sort(wanted.begin(), wanted.end());
    std::sort(dumped.begin(), dumped.end());
    EXPECT_TRUE(dumped == wanted) << dumped.size() << " lines, wanted " << wanted.size();
    use_store("other");
    load_good(first);
    EXPECT_TRUE(dump() == first);
}

TEST_F(Dump, OfAStoreThatWasLoadedInPiecesIsThatOfItsDump) {
    load_good(R"({"platform":{"active_rp":0}} )" + node("9", "lc9") + node("3", "lc3"));
    load_good(item("rx", "3", "z", 1) + item("rx", "3", "a", 1) + publisher("chkpt", "9", "starting"));
    load_good(node("9", "lc8") + R"({"interface":{"handle":77,"name":"eth0\n\"\\"}} )" + item("main", "9", "a", 1));
    const std::string first = dump();
    use_store("other");
    load_good(first);
    EXPECT_EQ(dump(), first);
}

class DumpPart : public Dump {
protected:
    void SetUp() override {
        Dump::SetUp();
        load_good(node("256", "rp0") + R"({"interface":{"handle":1,"name":"eth0/1/0/4"}} )" +
                  item("main", "256", "intf/detail/eth0", 1) + item("main", "256", "intf/detail/eth1", 2) +
                  item("main", "256", "session/1f", 3) + item("main", "512", "intf/detail/eth0", 4) +
                  item("rx", "256", "intf/detail/eth0", 5) + publisher("rx", "512", "stopped"));
    }

    // The items of a part, by their average, and whether all of it is a data set.
    [[nodiscard]] std::string items(const std::vector<std::string> &options) const {
        std::vector<std::string> words{"dump"};
        words.insert(words.end(), options.begin(), options.end());
        const outcome part = run(words);
        EXPECT_EQ(part.status, 0) << part.error;
        EXPECT_EQ(part.error, "");
        EXPECT_TRUE(part.out.starts_with(EMPTY)) << part.out;
        std::string found;
        for (const std::string &line : lines_of(part.out)) {
            if (line.starts_with("{\"item\"")) {
                found += line.substr(line.find("Average\":") + 9, 1);
            }
        }
        return found;
    }
};

TEST_F(DumpPart, ARoot) {
    EXPECT_EQ(items({"--root", "main"}), "1234");
    EXPECT_EQ(items({"--root", "rx"}), "5");
    EXPECT_EQ(items({"--root", "resp"}), "");
    EXPECT_EQ(items({"--root", "chkpt"}), "");
}

TEST_F(DumpPart, ANode) {
    EXPECT_EQ(items({"--node", "256"}), "1235");
    EXPECT_EQ(items({"--node", "0x100"}), "1235");
    EXPECT_EQ(items({"--node", "0400"}), "1235");
    EXPECT_EQ(items({"--node", "512"}), "4");
    EXPECT_EQ(items({"--node", "1"}), "");
}

TEST_F(DumpPart, APathsPrefix) {
    EXPECT_EQ(items({"--path", "intf/"}), "1245");
    EXPECT_EQ(items({"--path", "intf/detail/eth1"}), "2");
    EXPECT_EQ(items({"--path", "s"}), "3");
    EXPECT_EQ(items({"--path", "session/1f/"}), "");
    EXPECT_EQ(items({"--path", "f"}), "");
    EXPECT_EQ(items({"--path", ""}), "12345");
}

TEST_F(DumpPart, AllOfThem) {
    EXPECT_EQ(items({"--root", "main", "--node", "256", "--path", "intf/"}), "12");
    EXPECT_EQ(items({"--root=main", "--path=session/"}), "3");
    EXPECT_EQ(items({"--node", "256", "--path", "intf/detail/eth0"}), "15");
    EXPECT_EQ(items({"--root", "rx", "--node", "512"}), "");
}

TEST_F(DumpPart, HasThePublishersOfItsBranches) {
    EXPECT_EQ(run({"dump", "--root", "rx"}).out, EMPTY + publisher("rx", "256", "running") +
                                                     publisher("rx", "512", "stopped") +
                                                     item("rx", "256", "intf/detail/eth0", 5));
    EXPECT_EQ(run({"dump", "--root", "main", "--node", "512"}).out,
              EMPTY + publisher("main", "512", "running") + item("main", "512", "intf/detail/eth0", 4));
}

TEST_F(DumpPart, CanBeLoadedAgain) {
    const std::string part = run({"dump", "--root", "rx"}).out;
    use_store("other");
    load_good(part);
    EXPECT_EQ(dump(), part);
}

TEST_F(Dump, LargeItemsAndManyItemsComeWhole) {
    std::string wanted = EMPTY + publisher("chkpt", "0", "running");
    std::string set;
    for (int i = 0; i < 400; ++i) {
        const std::string digits(static_cast<std::size_t>(i % 7 == 0 ? 60000 : 600), static_cast<char>('0' + i % 10));
        set += R"({"item":{"root":"chkpt","node":0,"path":"scb/)" + std::to_string(1000 + i) +
               R"(","type":"pm_chkpt_scb_parcel","record":{"buf":")" + digits + "\"}}}\n";
    }
    load_good(set);
    EXPECT_TRUE(dump() == wanted + set);
}

TEST_F(Dump, AReaderThatGoesAwayEndsItQuietly) {
    load_good(item("main", "0", "a", 1));
    before_start([] {
        int ends[2];
        if (::pipe(ends) == 0) {
            ::close(ends[0]);
            ::dup2(ends[1], STDOUT_FILENO);
        }
    });
    const outcome dumped = run({"dump"});
    EXPECT_EQ(dumped.signal, 0);
    EXPECT_EQ(dumped.status, 0);
    EXPECT_EQ(dumped.error, "");
}

TEST_F(Dump, AUserOutsideTheGroupIsToldWhichGroup) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    load_good(item("main", "0", "a", 1));
    std::filesystem::permissions(folder(), std::filesystem::perms(0755));
    struct stat made {};
    ASSERT_EQ(::stat(store().c_str(), &made), 0);
    const group *owner = ::getgrgid(made.st_gid);
    ASSERT_NE(owner, nullptr);
    before_start([] {
        constexpr unsigned NOBODY = 65534;
        if (::setgroups(0, nullptr) != 0 || ::setgid(NOBODY) != 0 || ::setuid(NOBODY) != 0) {
            std::_Exit(126);
        }
    });
    const outcome refused = run({"dump"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(is_one_line(refused.error)) << refused.error;
    EXPECT_NE(refused.error.find(std::string("group ") + owner->gr_name), std::string::npos) << refused.error;
}

}  // namespace
