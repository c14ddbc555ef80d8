// SPDX-License-Identifier: Apache-2.0
// What may be typed next.
#include "perf-measure/completion/candidates.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace perf_measure;

// The candidates in one line; names come as "NAMES of PREFIX".
std::string offered(const std::vector<std::string> &words, std::string_view beginning) {
    const name_lister names = [](const name_source *items, std::string_view typed) {
        const std::string from = items != nullptr ? items->prefix : "inventory";
        return std::vector<candidate>{{"NAMES of " + from + " from " + std::string(typed), ""}};
    };
    std::string line;
    for (const candidate &each : candidates(words, beginning, names)) {
        line += (line.empty() ? "" : "|") + each.word;
    }
    return line;
}

TEST(Candidates, AreTheWordsThatFit) {
    EXPECT_EQ(offered({}, ""), "show|plot|metrics|help");
    EXPECT_EQ(offered({"sh"}, "re"), "responder|receiver");
    EXPECT_EQ(offered({"show", "rsvp-te"}, ""), "counters|name|brief|detail|internal|destination|lsp|node");
    EXPECT_EQ(offered({"show", "rsvp-te", "brief"}, ""), "name|detail|internal|destination|lsp|node");
    EXPECT_EQ(offered({"show", "summary", "node", "1"}, "a"), "");
    EXPECT_EQ(offered({"show", "sr-policies", "origin"}, ""), "pce|bgp|configured");
    EXPECT_EQ(offered({"help", "show", "history"}, "a"), "aggregated|advertised");
    EXPECT_EQ(offered({"metrics"}, ""), "interfaces|sr-policies|rsvp-te|endpoints|summary|node|all-nodes");
}

TEST(Candidates, AreNamesWhereANameIsWanted) {
    EXPECT_EQ(offered({"show", "interfaces", "name"}, "e"), "NAMES of intf/detail/ from e");
    EXPECT_EQ(offered({"show", "responder", "counters", "name"}, ""), "NAMES of intf/ from ");
    EXPECT_EQ(offered({"plot", "delay", "endpoint"}, ""), "NAMES of endpoint/detail/ from ");
    EXPECT_EQ(offered({"show", "summary", "node"}, "l"), "NAMES of inventory from l");
}

TEST(Candidates, AreNoneWhereNothingIsKnown) {
    EXPECT_EQ(offered({"show", "nonsense"}, ""), "");
    EXPECT_EQ(offered({"show", "sr-policies", "color"}, ""), "");
}

TEST(Candidates, ArePlainOptionsAfterADash) {
    EXPECT_EQ(offered({"show", "summary"}, "--j"), "--json");
    EXPECT_EQ(offered({"--json", "show"}, "summ"), "summary");
    EXPECT_EQ(offered({"metrics"}, "--i"), "--interval");
    EXPECT_EQ(offered({"--listen", "127.0.0.1:9464", "metrics"}, "end"), "endpoints");
}

TEST(Candidates, HaveACommonBeginning) {
    EXPECT_EQ(common_beginning({}), "");
    EXPECT_EQ(common_beginning({{"eth0/1", ""}}), "eth0/1");
    EXPECT_EQ(common_beginning({{"eth0/1", ""}, {"eth0/2", ""}, {"eth0", ""}}), "eth0");
    EXPECT_EQ(common_beginning({{"a", ""}, {"b", ""}}), "");
}

}  // namespace
