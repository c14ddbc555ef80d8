// SPDX-License-Identifier: Apache-2.0
// Usage, and the commands that print types and counts.
#include "tests/perf-store/command_line/perf_store_fixture.h"

#include <algorithm>
#include <cstdio>

#include "schema/pm_descriptors.h"
#include "tests/perf-store/command_line/objects.h"

namespace {

using namespace perf_store_test;

class Commands : public PerfStore {};

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

// The lines of a help text, one blank between two words; a description that has a line of its own is joined
// to its option.
std::vector<std::string> help_lines(const std::string &text) {
    std::vector<std::string> lines;
    for (const std::string &line : lines_of(text)) {
        const bool continues = line.starts_with("          ") && !lines.empty();
        continues ? static_cast<void>(lines.back() += " " + squeezed(line)) : lines.push_back(squeezed(line));
    }
    return lines;
}

TEST_F(Commands, HelpSaysWhatEachCommandAndOptionDoes) {
    const std::string root = "--root TEXT:{main,resp,rx,chkpt} ";
    const std::string roots = "Data root: main, resp, rx or chkpt";
    const std::string objects = ":UINT in [0 - 10000000] ";
    const std::vector<std::pair<std::string, std::vector<std::string>>> helps = {
        {"load",
         {"Put data sets into the store, all or nothing", "FILE TEXT ... REQUIRED Data sets; - is standard input",
          "--replace Empty the store first",
          "--empty Needs: --replace Let it be replaced by sets without any item or node",
          "Example: perf-store load --replace chassis.ndjson"}},
        {"dump",
         {"Write the store, or a part of it, as a data set", root + "Excludes: --damaged " + roots,
          "--node TEXT Excludes: --damaged Node, by its id",
          "--path TEXT Excludes: --damaged Items whose path begins so only",
          "--damaged Excludes: --root --node --path What is sound of a damaged store, and what is lost",
          "Example: perf-store dump --root main --node 0x100 --path srpolicy/ > policies.ndjson"}},
        {"ls",
         {"List items: root, node, record type, path", "PREFIX TEXT Items whose path begins so only", root + roots,
          "--node TEXT Node, by its id", "Example: perf-store ls --root main intf/"}},
        {"get",
         {"Print one item as JSON", "PATH TEXT REQUIRED Its path below the branch", root + "REQUIRED " + roots,
          "--node TEXT REQUIRED Node, by its id", "Example: perf-store get --root main --node 0x100 summary"}},
        {"rm",
         {"Remove items, all or none", "PATH TEXT ... REQUIRED Their paths below the branch",
          root + "REQUIRED " + roots, "--node TEXT REQUIRED Node, by its id",
          "-r,--recursive Remove what is below the paths too",
          "Example: perf-store rm --root main --node 0x100 srpolicy/detail/policy-c10"}},
        {"gen",
         {"Write a synthetic data set, the same for the same options",
          "--nodes UINT:UINT in [1 - 1024] Route processors and line cards",
          "--interfaces UINT" + objects + "Interfaces", "--policies UINT" + objects + "SR policies",
          "--paths UINT:UINT in [0 - 64] Atomic paths of each segment list",
          "--endpoints UINT" + objects + "IP endpoints", "--tunnels UINT" + objects + "RSVP-TE tunnels",
          "--seed UINT Another seed gives another set",
          "Example: perf-store gen --policies 10000 | perf-store load --replace -"}},
        {"diff",
         {"Compare two data sets, or a data set and the store",
          "OLD TEXT REQUIRED A data set (- is standard input) or a store's URL",
          "NEW TEXT Another; the store of OPSTORE_URL unless given",
          "--ignore MEMBER ... Pass over a member, by its name or the end of its path; repeatable",
          "--counters Say how much counters grew, and how fast",
          "--interval FLOAT:POSITIVE Needs: --counters Seconds between the two, for the rates",
          "Example: perf-store diff --ignore Timestamp before.ndjson after.ndjson"}},
        {"verify", {"Read everything and say what is wrong", "Example: perf-store verify"}},
        {"stat", {"Items and bytes of each root and node", "Example: perf-store stat"}},
        {"types", {"List the record types: name, version, size", "Example: perf-store types"}},
        {"schema",
         {"Print a record type's schema, size and field offsets",
          "TYPE TEXT REQUIRED A record type, as perf-store types lists them",
          "Example: perf-store schema pm_summary_parcel"}},
    };
    const std::vector<std::string> summary = help_lines(run({"--help"}).out);
    for (const char *line :
         {"Puts data sets into the store of perf-show's local platform and gets them out.",
          "The environment variable OPSTORE_URL names the store: lmdb:FOLDER, or on a server redis://HOST,",
          "rediss://HOST or redis+unix:///SOCKET."}) {
        EXPECT_EQ(std::count(summary.begin(), summary.end(), line), 1) << line;
    }
    for (const auto &[command, wanted] : helps) {
        const std::vector<std::string> lines = help_lines(run({command, "--help"}).out);
        for (const std::string &line : wanted) {
            EXPECT_EQ(std::count(lines.begin(), lines.end(), line), 1) << command << ": " << line;
        }
        EXPECT_EQ(std::count(summary.begin(), summary.end(), command + " " + wanted.front()), 1) << command;
    }
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

TEST_F(Commands, AWordThatIsNoCommandIsNamedWithTheNearestOne) {
    const outcome wrong = run({"laod", "set.ndjson"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_EQ(wrong.out, "");
    EXPECT_EQ(wrong.error, "perf-store: unknown command laod; did you mean load? (perf-store --help tells more)\n");
    EXPECT_EQ(run({"frobnicate"}).error, "perf-store: unknown command frobnicate (perf-store --help tells more)\n");
}

TEST_F(Commands, WhatTheParserRefusesIsToldInTheProgramsName) {
    for (const std::vector<std::string> &call :
         std::vector<std::vector<std::string>>{{}, {"--no-such"}, {"load"}, {"ls", "--root", "tx"}}) {
        const outcome wrong = run(call);
        EXPECT_EQ(wrong.status, 2);
        EXPECT_TRUE(wrong.error.starts_with("perf-store: ")) << wrong.error;
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
    EXPECT_EQ(lines.size(), pm_descriptors().size());
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
    for (const char *command : {"dump", "ls", "stat"}) {
        const outcome missing = run({command});
        EXPECT_EQ(missing.status, 1) << command;
        EXPECT_EQ(missing.out, "") << command;
        EXPECT_EQ(missing.error, "perf-store: lmdb:" + store() + ": Store client not available\n") << command;
        EXPECT_FALSE(std::filesystem::exists(store())) << command;
    }
}

TEST_F(Commands, AStoreOfAnotherSchemeIsRefused) {
    for (const char *url : {"file:/tmp/x", "/tmp/x", "lmdb:", "LMDB:/tmp/x"}) {
        use_url(url);
        const outcome loaded = load(EMPTY);
        EXPECT_EQ(loaded.status, 1) << url;
        EXPECT_EQ(loaded.error, "perf-store: " + std::string(url) +
                                    ": a store is named lmdb:FOLDER, redis://HOST or redis+unix:///SOCKET\n");
        const std::vector<std::vector<std::string>> readers = {
            {"dump"}, {"ls"}, {"stat"}, {"dump", "--root", "main"}, {"get", "--root", "main", "--node", "0", "a"}};
        for (const std::vector<std::string> &reader : readers) {
            const outcome refused = run(reader);
            EXPECT_EQ(refused.status, 1) << reader.front() << " " << url;
            EXPECT_EQ(refused.out, "") << reader.front() << " " << url;
            EXPECT_EQ(refused.error, "perf-store: " + std::string(url) + ": Store client not available\n")
                << reader.front();
        }
        const outcome removed = run({"rm", "--root", "main", "--node", "0", "a"});
        EXPECT_EQ(removed.error, "perf-store: " + std::string(url) +
                                     ": a store is named lmdb:FOLDER, redis://HOST or redis+unix:///SOCKET\n");
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

}  // namespace
