// perf-store's commands: what they print, their exit statuses, and what is in the store afterwards.
#include "tests/perf-store/command_line/cli_fixture.h"

#include <algorithm>
#include <cstdio>
#include <grp.h>
#include <sstream>
#include <sys/stat.h>

#include "perf-store/datasets/record_writer.h"
#include "schema/pm_descriptors.h"
#include "tests/support/random_record.h"

namespace {

using namespace perf_store_test;

class Commands : public PerfStore {};
class Load : public PerfStore {};
class Dump : public PerfStore {};

constexpr char EMPTY[] = "{\"dataset\":{\"version\":1}}\n";

std::vector<std::string> lines_of(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// The words of a line, one blank between two.
std::string squeezed(const std::string &line) {
    std::istringstream in(line);
    std::string result;
    for (std::string word; in >> word;) {
        result += (result.empty() ? "" : " ") + word;
    }
    return result;
}

// An item whose record has `average` for its average, if it is not 0, and nothing else.
std::string item(const std::string &root, const std::string &node, const std::string &path, int average) {
    return R"({"item":{"root":")" + root + R"(","node":)" + node + R"(,"path":")" + path +
           R"(","type":"pm_values_parcel","record":{)" +
           (average != 0 ? R"("Average":)" + std::to_string(average) : "") + "}}}\n";
}

std::string publisher(const std::string &root, const std::string &node, const std::string &state) {
    return R"({"publisher":{"root":")" + root + R"(","node":)" + node + R"(,"state":")" + state + "\"}}\n";
}

std::string node(const std::string &id, const std::string &name) {
    return R"({"node":{"id":)" + id + R"(,"name":")" + name + R"(","sw_state":6,"location":[0,0,0],"processor":)" + id +
           "}}\n";
}

// Usage ------------------------------------------------------------------------------------------

TEST_F(Commands, HelpIsPrintedOnRequest) {
    const outcome asked = run({"--help"});
    EXPECT_EQ(asked.status, 0);
    EXPECT_EQ(asked.error, "");
    for (const char *word : {"load", "dump", "stat", "types", "schema", "--version", "OPSTORE_URL"}) {
        EXPECT_NE(asked.out.find(word), std::string::npos) << word;
    }
    for (const char *command : {"load", "dump", "stat", "types", "schema"}) {
        const outcome help = run({command, "--help"});
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_EQ(help.error, "") << command;
        EXPECT_NE(help.out.find(std::string("Example: perf-store ") + command), std::string::npos) << help.out;
    }
    EXPECT_FALSE(std::filesystem::exists(store()));
}

TEST_F(Commands, VersionIsPrintedOnRequest) {
    const outcome asked = run({"--version"});
    EXPECT_EQ(asked.status, 0);
    EXPECT_EQ(asked.error, "");
    EXPECT_TRUE(is_one_line(asked.out)) << asked.out;
    unsigned numbers[3] = {};
    EXPECT_EQ(std::sscanf(asked.out.c_str(), "perf-store %u.%u.%u", &numbers[0], &numbers[1], &numbers[2]), 3)
        << asked.out;
}

TEST_F(Commands, WrongUsageIsStatusTwo) {
    const std::vector<std::vector<std::string>> calls = {
        {},
        {"no-such-command"},
        {"--no-such-option"},
        {"load"},
        {"load", "--replace"},
        {"load", "--no-such-option", "set.ndjson"},
        {"dump", "set.ndjson"},
        {"dump", "--root"},
        {"dump", "--root", "tx"},
        {"dump", "--root", ""},
        {"dump", "--root", "Main"},
        {"dump", "--node"},
        {"dump", "--node", ""},
        {"dump", "--node", "rp0"},
        {"dump", "--node", "-1"},
        {"dump", "--node", "0x"},
        {"dump", "--node", "4294967296"},
        {"dump", "--path"},
        {"stat", "main"},
        {"types", "all"},
        {"schema"},
        {"schema", "pm_values_parcel", "pm_scb_parcel"},
    };
    write("set.ndjson", EMPTY);
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
}

// Types and schemas ------------------------------------------------------------------------------

TEST_F(Commands, TypesListsEveryTypeWithVersionAndSize) {
    const outcome types = run({"types"});
    EXPECT_EQ(types.status, 0);
    EXPECT_EQ(types.error, "");
    std::vector<std::string> lines;
    for (const std::string &line : lines_of(types.out)) {
        lines.push_back(squeezed(line));
    }
    EXPECT_EQ(lines.size(), 200U);
    for (const char *wanted :
         {"pm_values_parcel 19.8 16", "pm_srpolicy_parcel 19.8 96", "pm_session_parcel 19.8 584",
          "pm_resp_summary_parcel 1.1 112", "pm_rx_udp_npu_ports_parcel 1.1 14", "pm_chkpt_scb_parcel 2.0 16",
          "pm_stats_batch_t 19.8 280", "pm_queue_stats_parcel 1.1 24"}) {
        EXPECT_EQ(std::count(lines.begin(), lines.end(), wanted), 1) << wanted;
    }
}

TEST_F(Commands, SchemaPrintsSchemaSizeAndOffsets) {
    const outcome schema = run({"schema", "pm_segment_parcel"});
    EXPECT_EQ(schema.status, 0);
    EXPECT_EQ(schema.error, "");
    std::vector<std::string> lines;
    for (const std::string &line : lines_of(schema.out)) {
        lines.push_back(squeezed(line));
    }
    // An address: its kind, four bytes of padding, and the sixteen bytes of the larger arm.
    for (const char *wanted :
         {"type pm_segment_parcel", "version 19.8", "library lib_pm_show_parcel_desc.dll", "size 40",
          "0 24 $55 IPAddress", "24 8 p(D) MPLSLabel", "32 8 p($109) USIDInfo",
          "schema $110={IPAddress}$55{MPLSLabel}p(D){USIDInfo}p($109);$54=16x%s;"
          "$55=?(<IPAddressType,pm_addr_type_e>,0:{IPv4}N,1:{IPv6}$54,2:v);"
          "$109={SIDValue}16x%s{USIDLength}C{SIDFormat}[MgmtSRv6_SIDFmtType]e{SIDBehavior}p(I);"}) {
        EXPECT_EQ(std::count(lines.begin(), lines.end(), wanted), 1) << wanted << " in\n" << schema.out;
    }
}

TEST_F(Commands, ASchemaOfAnUnknownTypeIsRefused) {
    const outcome schema = run({"schema", "pm_no_parcel"});
    EXPECT_EQ(schema.status, 1);
    EXPECT_EQ(schema.out, "");
    EXPECT_EQ(schema.error, "perf-store: unknown record type pm_no_parcel\n");
}

TEST_F(Commands, TypesAndSchemasNeedNoStore) {
    use_url("nonsense");
    EXPECT_EQ(run({"types"}).status, 0);
    EXPECT_EQ(run({"schema", "pm_values_parcel"}).status, 0);
}

// A parcel of pm_values_parcel: 20 bytes of header, three of versions and length, 16 of the type's
// name, 16 of fields.
constexpr int VALUES_BYTES = 55;

TEST_F(Commands, StatCountsItemsAndBytesOfEachRootAndNode) {
    load_good(item("main", "256", "a", 1) + item("main", "256", "b", 2) + item("main", "512", "a", 3) +
              item("chkpt", "256", "scb/eth0/1/0/4", 4));
    const outcome stat = run({"stat"});
    EXPECT_EQ(stat.status, 0);
    EXPECT_EQ(stat.error, "");
    std::vector<std::string> lines;
    for (const std::string &line : lines_of(stat.out)) {
        lines.push_back(squeezed(line));
    }
    EXPECT_EQ(lines, (std::vector<std::string>{
                         "root node items bytes",
                         "main 0x100 2 " + std::to_string(2 * VALUES_BYTES),
                         "main 0x200 1 " + std::to_string(VALUES_BYTES),
                         "chkpt 0x100 1 " + std::to_string(VALUES_BYTES),
                         "all 4 " + std::to_string(4 * VALUES_BYTES),
                     }));
}

TEST_F(Commands, StatOfAnEmptyStoreIsZero) {
    load_good("");
    const outcome stat = run({"stat"});
    EXPECT_EQ(stat.status, 0);
    ASSERT_EQ(lines_of(stat.out).size(), 2U);
    EXPECT_EQ(squeezed(lines_of(stat.out)[1]), "all 0 0");
}

TEST_F(Commands, AStoreThatIsNotThereIsRefused) {
    for (const char *command : {"dump", "stat"}) {
        const outcome missing = run({command});
        EXPECT_EQ(missing.status, 1) << command;
        EXPECT_EQ(missing.error, "perf-store: lmdb:" + store() + ": Store client not available\n") << command;
        EXPECT_FALSE(std::filesystem::exists(store())) << command;
    }
}

TEST_F(Commands, AStoreOfAnotherSchemeIsRefused) {
    for (const char *url : {"file:/tmp/x", "/tmp/x", "lmdb:", "LMDB:/tmp/x"}) {
        use_url(url);
        const outcome loaded = load(EMPTY);
        EXPECT_EQ(loaded.status, 1) << url;
        EXPECT_EQ(loaded.error, "perf-store: " + std::string(url) + ": a store is named lmdb:FOLDER\n");
        EXPECT_EQ(run({"dump"}).status, 1) << url;
    }
}

TEST_F(Commands, OutputThatCannotBeWrittenIsAnError) {
    load_good(item("main", "0", "a", 1));
    write_to("/dev/full");
    for (const char *command : {"dump", "stat", "types", "--help"}) {
        const outcome full = run({command});
        EXPECT_EQ(full.status, 1) << command;
        EXPECT_TRUE(is_one_line(full.error)) << command << ": " << full.error;
    }
}

TEST_F(Commands, ALongArgumentIsNotRepeatedWhole) {
    const std::string text(50'000, 'x');
    EXPECT_EQ(run({"schema", text}).error, "perf-store: unknown record type " + std::string(100, 'x') + "...\n");
    const outcome node = run({"ls", "--node", text});
    EXPECT_EQ(node.status, 2);
    EXPECT_LT(node.error.size(), 400U) << node.error;
}

// Loading ----------------------------------------------------------------------------------------

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

TEST_F(Load, ASecondNodeOfTheSameIdTakesTheFirstOnesPlace) {
    load_good(node("1", "rp0") + node("2", "lc1") + node("3", "lc2") + node("1", "rp1"));
    EXPECT_EQ(dump(), EMPTY + node("1", "rp1") + node("2", "lc1") + node("3", "lc2"));
    load_good(node("2", "lc9"));
    EXPECT_EQ(dump(), EMPTY + node("1", "rp1") + node("2", "lc9") + node("3", "lc2"));
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
    write("set.ndjson", "");
    EXPECT_EQ(run({"load", "set.ndjson", "--replace"}).status, 0);
    EXPECT_EQ(dump(), EMPTY);
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

// Dumping ----------------------------------------------------------------------------------------

TEST_F(Dump, OfADumpIsTheSameDumpForRecordsOfEveryType) {
    std::vector<std::string> items;
    for (const parcel_descriptor *type : pm_descriptors()) {
        for (std::uint64_t seed = 100; seed < 103; ++seed) {
            const random_record record(type, seed);
            std::string line = R"({"item":{"root":"main","node":256,"path":")" + std::string(type->name) + "/" +
                               std::to_string(seed) + R"(","type":")" + type->name + R"(","record":)";
            perf_store::append_record(record.data(), perf_store::shape_of(type).record(), perf_store::json_fields::set,
                                      &line);
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
