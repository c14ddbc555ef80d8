// SPDX-License-Identifier: Apache-2.0
// Shows as JSON, read back by jq and by Python.
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>

#include "perf-measure/json/json_text.h"
#include "perf-measure/phrases/phrase_table.h"
#include "tests/perf-measure/support/programs.h"

namespace {

using namespace perf_measure;

class Json : public testing::Test {
protected:
    void load(const std::string &lines) {
        write_file(folder_.path() + "/set.ndjson", lines);
        const command_result loaded = run_command("perf-store load " + folder_.path() + "/set.ndjson", folder_.path());
        ASSERT_EQ(loaded.status, 0) << loaded.err;
    }
    void load_example() { ASSERT_EQ(run_command("perf-store load \"$EXAMPLE\"", folder_.path()).status, 0); }

    temporary_folder folder_;
};

constexpr char NODE[] = R"({"node":{"id":16,"name":"lc \"0\""}}
)";

// Each line of each phrase is read by jq and by Python, and is the item of a dump, record and all.
TEST_F(Json, EveryPhraseReadsBack) {
    load_example();
    std::string script = "export PERF_SHOW_NOW=1709647390000; cd " + folder_.path() + "; perf-store dump >dump; ";
    for (const phrase &each : phrases()) {
        if (!each.takes_name && !each.is_metrics) {
            script += "echo '" + std::string(each.words) + "'; perf-measure " + each.words +
                      " --json >lines 2>/dev/null; grep -v '\"error\":' lines >items; jq -c . lines | wc -l | diff - "
                      "<(wc -l <lines); "
                      "python3 '" PM_READ_BACK "' items dump | tee -a counts; ";
        }
    }
    const command_result read = run_command(script + "true", folder_.path());
    EXPECT_EQ(read.err, "");
    // Under each phrase stands its number of items alone, and each phrase has some.
    std::string lines;
    for (const phrase &each : phrases()) {
        lines += each.takes_name || each.is_metrics ? "" : std::string(each.words) + "\n#\n";
    }
    std::string shown = read.out;
    for (std::size_t at = 0; at < shown.size(); at = shown.find('\n', at) + 1) {
        if (shown[at] >= '1' && shown[at] <= '9') {
            shown.replace(at, shown.find('\n', at) - at, "#");
        }
    }
    EXPECT_EQ(shown, lines);
}

TEST_F(Json, AnItemIsOneLine) {
    load(NODE +
         std::string(
             R"({"item":{"root":"main","node":16,"path":"capability","type":"pm_capability_parcel","record":{}}})"));
    EXPECT_EQ(
        measure("show capabilities --json", folder_.path()).out,
        R"({"node":16,"node_name":"lc \"0\"","root":"main","path":"capability","type":"pm_capability_parcel","record":{}})"
        "\n");
    EXPECT_EQ(measure("show capabilities --json --pretty", folder_.path()).out,
              "{\n  \"node\": 16,\n  \"node_name\": \"lc \\\"0\\\"\",\n  \"root\": \"main\",\n  \"path\": "
              "\"capability\",\n  \"type\": \"pm_capability_parcel\",\n  \"record\": {}\n}\n");
}

TEST_F(Json, ANodeThatCannotBeReadIsALineOfItsOwn) {
    load(NODE + std::string(R"({"publisher":{"root":"main","node":16,"state":"stopped"}})"));
    const command_result shown = measure("show interfaces --json", folder_.path());
    EXPECT_EQ(shown.status, 1);
    EXPECT_EQ(shown.out, R"({"node":16,"node_name":"lc \"0\"","error":"Publisher stopped","code":"0x40819000"})"
                         "\n");
    EXPECT_EQ(shown.err, "perf-measure: lc \"0\": Publisher stopped\n");
}

// The blob: 1 interface name, 2 kind, 3 last advertisement with 1 time, 4 last error with 1 code.
TEST_F(Json, ACheckpointHasItsMessageBesideTheBytes) {
    load(
        NODE +
        std::string(
            R"({"item":{"root":"chkpt","node":16,"path":"scb/a","type":"pm_chkpt_scb_parcel","record":{"buf":"0a016110011a02080522020803"}}})"));
    EXPECT_EQ(measure("show checkpoint sessions --json", folder_.path()).out,
              R"({"node":16,"node_name":"lc \"0\"","root":"chkpt","path":"scb/a","type":"pm_chkpt_scb_parcel",)"
              R"("record":{"buf":"0a016110011a02080522020803"},"message":{"interface_name":"a","advertisement_kind":1,)"
              R"("last_advertisement":{"time_msec":5},"last_error":{"code":3}}})"
              "\n");
}

TEST_F(Json, ADamagedMessageGoesAsFarAsItCan) {
    load(
        NODE +
        std::string(
            R"({"item":{"root":"chkpt","node":16,"path":"scb/a","type":"pm_chkpt_scb_parcel","record":{"buf":"0a01611001ff"}}})"));
    EXPECT_NE(measure("show checkpoint sessions --json", folder_.path())
                  .out.find(R"("message":{"interface_name":"a","advertisement_kind":1},"damaged":true})"),
              std::string::npos);
}

TEST_F(Json, FiltersNamesNodesAndLimitsApply) {
    load_example();
    const auto count = [this](const std::string &words, const std::string &filter) {
        return run_command(std::string(CAPTURED) + "perf-measure " + words + " --json | jq -c '" + filter + "'",
                           folder_.path())
            .out;
    };
    EXPECT_EQ(count("show sr-policies color 40", ".record.Color"), "40\n");
    EXPECT_EQ(count("show sr-policies endpoint 192.0.2.12", ".path"), "\"srpolicy/detail/policy-c20\"\n");
    EXPECT_EQ(count("show interfaces node lc1", ".path"), "\"intf/detail/eth0/1/0/4\"\n\"intf/detail/eth0/1/0/5\"\n");
    EXPECT_EQ(count("show interfaces name eth0/1/0/4", ".node_name"), "\"lc1\"\n");
    EXPECT_EQ(count("show profiles named transport sr-policy kind liveness name gold", ".path"),
              "\"name-profile/0x2/0x2/gold\"\n");
    EXPECT_EQ(count("show profiles named name access", ".path"), "\"name-profile/0x1/0x0/access\"\n");
    EXPECT_EQ(count("show checkpoint sessions name eth0/1/0/4", ".path"), "\"scb/eth0/1/0/4\"\n");
    EXPECT_EQ(count("show history probe interfaces node lc0 limit 2",
                    ".record.HistoryInfo.ProbeHistory.ProbeHistoryList | length"),
              "2\n");
    EXPECT_EQ(count("show history probe sr-policies name policy-c40 limit 1",
                    "[.. | .ProbeHistoryList? // empty | length] | unique"),
              "[1]\n");
    EXPECT_EQ(count("show endpoints kind delay name ep-192.0.2.21",
                    "[.record.EndpointLiveness, .record.EndpointProbe, (.record.EndpointDelay | length)]"),
              "[null,null,1]\n");
    EXPECT_EQ(count("show profiles defaults kind liveness transport endpoint node rp0",
                    "[.record | .. | objects | keys[] | select(endswith(\"Profile\"))] | unique"),
              "[\"EndpointLivenessProfile\",\"LivenessProfile\"]\n");
}

TEST_F(Json, ALimitLeavesTheStoreAndOtherItemsAsTheyWere) {
    load_example();
    const std::string all = "show history probe interfaces --json";
    const std::string before = measure(all, folder_.path()).out;
    EXPECT_NE(measure(all + " limit 1", folder_.path()).out, before);
    EXPECT_EQ(measure(all, folder_.path()).out, before);
}

// The largest memory of a listing ten times as long is hardly larger.
TEST_F(Json, MemoryDoesNotGrowWithTheListing) {
#ifdef PM_SANITIZE
    GTEST_SKIP() << "the sanitizer keeps what is freed";
#endif
    const auto largest = [this](int policies) {
        const std::string gen = "perf-store gen --interfaces 0 --endpoints 0 --tunnels 0 --policies ";
        const std::string make = gen + std::to_string(policies) + " | perf-store load --replace -";
        EXPECT_EQ(run_command(make, folder_.path()).status, 0);
        // The whole file is read through the store's map, which does not count as the program's memory.
        const std::string measured = run_command(
                                         "python3 -c 'import subprocess, sys\n"
                                         "shown = subprocess.Popen([\"" PERF_MEASURE
                                         "\", \"show\", "
                                         "\"sr-policies\", \"--json\"], stdout=subprocess.PIPE)\n"
                                         "peak = 0\n"
                                         "while shown.stdout.read(1 << 20):\n"
                                         "    for line in open(\"/proc/%d/status\" % shown.pid):\n"
                                         "        if line.startswith(\"RssAnon\"): peak = max(peak, "
                                         "int(line.split()[1]))\n"
                                         "print(peak)'",
                                         folder_.path())
                                         .out;
        return std::atoi(measured.c_str());
    };
    const int few = largest(300);
    const int many = largest(3000);
    EXPECT_GT(few, 0);
    EXPECT_LT(many, few + 1024) << "KiB";
}

TEST(JsonText, ReplacesWhatIsNotUtf8) {
    std::string text;
    append_json_any_text("a\xFF\"\xC3\xA9\n", &text);
    EXPECT_EQ(text, "\"a\xEF\xBF\xBD\\\"\xC3\xA9\\u000a\"");
}

TEST(JsonText, WritesLargeNumbersAsText) {
    std::string text;
    append_json_number(9007199254740992, &text);
    append_json_number(9007199254740993, &text);
    EXPECT_EQ(text, "9007199254740992\"9007199254740993\"");
}

TEST(JsonText, IndentsAnyText) {
    EXPECT_EQ(indented_json(R"({"a":[1,{"b":"{,\"]"}],"c":[],"d":{}})"),
              "{\n  \"a\": [\n    1,\n    {\n      \"b\": \"{,\\\"]\"\n    }\n  ],\n  \"c\": [],\n  \"d\": {}\n}\n");
}

}  // namespace
