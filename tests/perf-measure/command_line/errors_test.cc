// SPDX-License-Identifier: Apache-2.0
// Exit statuses and messages: what scripts rely on.
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

#include "tests/perf-measure/support/programs.h"

namespace {

class Errors : public testing::Test {
protected:
    void load(const std::string &lines) {
        write_file(folder_.path() + "/set.ndjson", lines);
        ASSERT_EQ(run_command("perf-store load " + folder_.path() + "/set.ndjson", folder_.path()).status, 0);
    }
    void load_example() { ASSERT_EQ(run_command("perf-store load \"$EXAMPLE\"", folder_.path()).status, 0); }

    temporary_folder folder_;
};

TEST_F(Errors, AMissingStoreIsOneLineThatSaysWhatToDo) {
    for (const char *const words :
         {"show summary", "show summary --json", "show summary node lc0", "plot delay endpoint a"}) {
        const command_result result = measure(words, "/nonexistent/store");
        EXPECT_EQ(result.status, 1) << words;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err,
                  "perf-measure: there is no store at lmdb:/nonexistent/store; OPSTORE_URL names another, or "
                  "make this one with: perf-store load FILE\n")
            << words;
    }
}

TEST_F(Errors, AStoreThatMayNotBeReadIsOneLine) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can take a permission from another user";
    }
    load_example();
    std::filesystem::permissions(folder_.path(), std::filesystem::perms::owner_all | std::filesystem::perms::group_all);
    const command_result result =
        run_command("setpriv --reuid 65534 --regid 65534 --clear-groups perf-measure show summary", folder_.path());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_NE(result.err.find(folder_.path()), std::string::npos) << result.err;
    EXPECT_NE(result.err.find("group"), std::string::npos) << result.err;
}

TEST_F(Errors, ADamagedStoreIsSaidAndEndsWithOne) {
    load_example();
    const std::string file = folder_.path() + "/data.mdb";
    std::string bytes = read_file(file);
    bytes.replace(4096, bytes.size() - 4096, bytes.size() - 4096, '\x5a');
    write_file(file, bytes);
    for (const char *const words : {"show interfaces", "show interfaces --json"}) {
        const command_result result = measure(words, folder_.path());
        EXPECT_EQ(result.status, 1) << words;
        EXPECT_NE(result.err.find("damaged"), std::string::npos) << result.err;
    }
}

TEST_F(Errors, AClosedPipeEndsQuietly) {
    load_example();
    for (const char *const options : {"", " --json", " --json --pretty"}) {
        const command_result result = run_command("perf-measure show sr-policies verbose" + std::string(options) +
                                                      " | head -n 1 >/dev/null; echo ${PIPESTATUS[0]}",
                                                  folder_.path());
        EXPECT_EQ(result.err, "") << options;
        EXPECT_EQ(result.out, "0\n") << options;
    }
}

TEST_F(Errors, AFullDiskIsSaid) {
    load_example();
    for (const char *const options : {"", " --json"}) {
        const command_result result =
            run_command("perf-measure show summary" + std::string(options) + " >/dev/full", folder_.path());
        EXPECT_EQ(result.status, 1) << options;
        EXPECT_TRUE(result.err.starts_with("perf-measure: ")) << result.err;
        EXPECT_NE(result.err.find("No space left on device"), std::string::npos) << result.err;
    }
}

TEST_F(Errors, WrongUsageEndsWithTwo) {
    for (const char *const words :
         {"show", "show nonsense", "nonsense", "show sr-policies color red", "--nonsense", "show summary --pretty",
          "show summary --svg a", "plot delay endpoint a --json", "help nonsense", "show nonsense ?", ""}) {
        const command_result result = measure(words, folder_.path());
        EXPECT_EQ(result.status, 2) << words;
        EXPECT_EQ(result.out, "") << words;
        EXPECT_TRUE(result.err.starts_with("perf-measure: ")) << words << ": " << result.err;
    }
}

TEST_F(Errors, NumbersOfPerfShowAreAnsweredInWords) {
    EXPECT_EQ(measure("-c 17 -b -f 64", folder_.path()).err,
              "perf-measure: unknown option '-c'; in words these are: perf-measure show sr-policies brief color 64\n");
}

TEST_F(Errors, AMissingItemIsSaidByNode) {
    load_example();
    const command_result result = measure("show interfaces name nix node lc0", folder_.path());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "perf-measure: lc0: Item not found\n");
    // One node that has it is enough.
    EXPECT_EQ(measure("show sr-policies name policy-c40", folder_.path()).status, 0);
}

TEST_F(Errors, AnEmptyListingIsNoError) {
    load_example();
    const command_result result = measure("show sr-policies color 4711", folder_.path());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
}

TEST_F(Errors, APublisherThatDoesNotRunIsSaidByNode) {
    load(R"({"node":{"id":16,"name":"lc0"}}
{"node":{"id":32,"name":"lc1"}}
{"item":{"root":"main","node":16,"path":"capability","type":"pm_capability_parcel","record":{}}}
{"publisher":{"root":"main","node":32,"state":"unreachable"}})");
    const command_result result = measure("show capabilities", folder_.path());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "perf-measure: lc1: Publisher unreachable\n");
    EXPECT_EQ(measure("show capabilities node lc0", folder_.path()).status, 0);
}

TEST_F(Errors, AnItemOfAnotherTypeIsSaidByNode) {
    load(R"({"node":{"id":16,"name":"lc0"}}
{"item":{"root":"main","node":16,"path":"capability","type":"pm_summary_parcel","record":{}}}
{"item":{"root":"main","node":16,"path":"intf/detail/a","type":"pm_summary_parcel","record":{}}})");
    for (const char *const words : {"show capabilities", "show capabilities --json", "show interfaces",
                                    "show interfaces --json", "show interfaces name a"}) {
        const command_result result = measure(words, folder_.path());
        EXPECT_EQ(result.status, 1) << words;
        EXPECT_TRUE(result.err.ends_with("perf-measure: lc0: Parcel holds another record type\n")) << result.err;
    }
}

TEST_F(Errors, ANodeWithoutAPublisherCountsOnlyWhenItIsAskedFor) {
    load(R"({"node":{"id":16,"name":"lc0"}}
{"node":{"id":32,"name":"lc1"}}
{"item":{"root":"main","node":16,"path":"capability","type":"pm_capability_parcel","record":{}}})");
    EXPECT_EQ(measure("show capabilities", folder_.path()).status, 0);
    const command_result asked = measure("show capabilities node lc1", folder_.path());
    EXPECT_EQ(asked.status, 1);
    EXPECT_EQ(asked.err, "perf-measure: lc1: Not published on this node\n");
}

TEST_F(Errors, AnUnknownNodeIsAnsweredWithTheNodes) {
    load_example();
    const command_result result = measure("show summary node lc", folder_.path());
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "perf-measure: there is no node 'lc'\n  nodes: rp0, rp1, lc0, lc1\n");
    EXPECT_NE(measure("show summary node lcc0", folder_.path()).err.find("did you mean lc0?"), std::string::npos);
}

TEST_F(Errors, NamesMayHoldAnything) {
    load(R"({"platform":{"my_node":16}}
{"node":{"id":16,"name":"lc0"}}
{"item":{"root":"main","node":16,"path":"srpolicy/detail/a 'b' \"c\" 50%s","type":"pm_srpolicy_parcel","record":{"PolicyName":"a 'b' \"c\" 50%s"}}})");
    const std::string name = R"("a 'b' \"c\" 50%s")";
    const command_result result = measure("show sr-policies name " + name, folder_.path());
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_NE(result.out.find("SR Policy name: a 'b' \"c\" 50%s\n"), std::string::npos) << result.out;
    EXPECT_EQ(measure("show sr-policies --json name " + name, folder_.path()).status, 0);
    EXPECT_EQ(measure("show sr-policies name -- -x", folder_.path()).err, "perf-measure: lc0: Item not found\n");
}

TEST_F(Errors, HelpAndVersionAreShown) {
    EXPECT_EQ(measure("--version", folder_.path()).out.substr(0, 13), "perf-measure ");
    const command_result help = measure("--help", folder_.path());
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("  show sr-policies counters "), std::string::npos);
    EXPECT_TRUE(measure("help sh sr-p", folder_.path())
                    .out.starts_with("show sr-policies: SR policies and their candidate paths\n"
                                     "  the same with numbers: perf-show -c 17\n"));
    EXPECT_EQ(measure("show history l'?'", folder_.path()).out,
              "  liveness                changes of the liveness state\n"
              "  loss-packets            the packets of loss measurement\n");
}

}  // namespace
