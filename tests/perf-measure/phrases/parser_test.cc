// SPDX-License-Identifier: Apache-2.0
// Words to the options of perf-show: every phrase, every option, abbreviations, and what is refused with which words.
#include "perf-measure/phrases/parser.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "perf-measure/interactive/line_words.h"
#include "perf-measure/phrases/help.h"

namespace {

using namespace perf_measure;

std::vector<std::string> words(std::string_view line) {
    line_words split = split_line(line);
    if (split.in_word) {
        split.words.push_back(split.last);
    }
    return split.words;
}

// perf-show's options for a line, separated by blanks; what is wrong after "! ".
std::string letters(std::string_view line) {
    word_parser parser;
    for (const std::string &word : words(line)) {
        if (!parser.take(word)) {
            return "! " + parser.problem();
        }
    }
    if (!parser.finish()) {
        return "! " + parser.problem();
    }
    std::string text;
    for (const std::string &each : parser.command().letters) {
        text += (text.empty() ? "" : " ") + each;
    }
    return text;
}

// The first line of what is wrong.
std::string problem(std::string_view line) {
    const std::string text = letters(line);
    return text.substr(0, text.find('\n'));
}

struct said {
    const char *line;
    const char *letters;
};

TEST(Parser, KnowsEveryPhrase) {
    constexpr said PHRASES[] = {
        {"show interfaces", "-c 1"},
        {"show interfaces counters", "-c 2"},
        {"show history probe interfaces", "-c 4 -t 3"},
        {"show history probe sr-policies", "-c 4 -t 19"},
        {"show history probe rsvp-te", "-c 4 -t 21"},
        {"show history probe endpoints", "-c 4 -t 29"},
        {"show history aggregated interfaces", "-c 5 -t 3"},
        {"show history aggregated sr-policies", "-c 5 -t 19"},
        {"show history aggregated rsvp-te", "-c 5 -t 21"},
        {"show history aggregated endpoints", "-c 5 -t 29"},
        {"show sessions", "-c 6"},
        {"show responder interfaces", "-c 7"},
        {"show responder counters", "-c 8"},
        {"show summary", "-c 9"},
        {"show responder summary", "-c 10"},
        {"show receiver summary", "-c 11"},
        {"show checkpoint sessions", "-c 12"},
        {"show process", "-c 13"},
        {"show batches", "-c 14"},
        {"show rsvp-te", "-c 15"},
        {"show rsvp-te counters", "-c 16"},
        {"show sr-policies", "-c 17"},
        {"show sr-policies counters", "-c 18"},
        {"show history advertised interfaces", "-c 20 -t 3"},
        {"show history advertised sr-policies", "-c 20 -t 19"},
        {"show history advertised rsvp-te", "-c 20 -t 21"},
        {"show history advertised endpoints", "-c 20 -t 29"},
        {"show history loss-packets interfaces", "-c 22 -t 3"},
        {"show profiles", "-c 23"},
        {"show profiles named", "-c 23 -P"},
        {"show profiles defaults", "-c 23 -S"},
        {"show distribution", "-c 24"},
        {"show checkpoint distribution", "-c 25"},
        {"show endpoints", "-c 26"},
        {"show history liveness sr-policies", "-c 27 -t 19"},
        {"show history liveness endpoints", "-c 27 -t 29"},
        {"show endpoints counters", "-c 28"},
        {"show packet-rates", "-c 30"},
        {"show capabilities", "-c 31"},
        {"show line-cards", "-c 32"},
        {"show checkpoint distributed-sessions", "-c 33"},
        {"show distribution retries", "-c 34"},
        {"show probe-sessions", "-c 35"},
        {"show allowed-queriers", "-c 36"},
        {"show allowed-responders", "-c 37"},
        {"plot delay interface eth0/1/0/4", "-c 4 -t 3 -i eth0/1/0/4"},
        {"plot delay sr-policy gold", "-c 4 -t 19 -i gold"},
        {"plot delay rsvp-te te1", "-c 4 -t 21 -i te1"},
        {"plot delay endpoint site-a", "-c 4 -t 29 -i site-a"},
        {"metrics", ""},
        {"metrics interfaces", "-c 1"},
        {"metrics sr-policies", "-c 17"},
        {"metrics rsvp-te", "-c 15"},
        {"metrics endpoints", "-c 26"},
        {"metrics summary", "-c 9"},
    };
    for (const said &each : PHRASES) {
        EXPECT_EQ(letters(each.line), each.letters) << each.line;
    }
    EXPECT_EQ(std::size(PHRASES), phrases().size()) << "a phrase without a line above";
}

TEST(Parser, KnowsEveryOption) {
    constexpr said OPTIONS[] = {
        {"show interfaces name eth0/1/0/4", "-c 1 -i eth0/1/0/4"},
        {"show profiles named name gold", "-c 23 -P -Q gold"},
        {"show sessions id 31", "-c 6 -s 31"},
        {"show sessions id 0x1f", "-c 6 -s 31"},
        {"show interfaces brief", "-c 1 -b"},
        {"show interfaces detail", "-c 1 -d"},
        {"show sr-policies verbose", "-c 17 -d -v"},
        {"show sr-policies counters verbose", "-c 18 -v"},
        {"show summary node 0x10 internal", "-c 9 -N 16 -p"},
        {"show interfaces loss", "-c 1 -L 1"},
        {"show endpoints bare", "-c 26 -L 1"},
        {"show history probe interfaces delay", "-c 4 -t 3"},
        {"show history probe interfaces loss", "-c 4 -t 3 -L 1"},
        {"show summary delay", "-c 9 -D 0"},
        {"show summary liveness", "-c 9 -W 2"},
        {"plot delay endpoint a probe", "-c 4 -t 29 -i a -c 4"},
        {"plot delay endpoint a aggregated", "-c 4 -t 29 -i a -c 5"},
        {"plot delay endpoint a advertised", "-c 4 -t 29 -i a -c 20"},
        {"show history probe endpoints name site-a limit 5", "-c 4 -t 29 -i site-a -l 5"},
        {"show sr-policies detail color 100 endpoint 192.0.2.11", "-c 17 -d -f 100 -e 192.0.2.11"},
        {"show endpoints endpoint 2001:db8::22", "-c 26 -e 2001:db8::22"},
        {"show rsvp-te destination 192.0.2.31", "-c 15 -e 192.0.2.31"},
        {"show sr-policies origin pce", "-c 17 -o 10"},
        {"show sr-policies origin BGP", "-c 17 -o 20"},
        {"show sr-policies origin configured", "-c 17 -o 30"},
        {"show sr-policies preference 100", "-c 17 -m 100"},
        {"show sr-policies discriminator 1", "-c 17 -g 1"},
        {"show sr-policies segment-list sl-1", "-c 17 -n sl-1"},
        {"show sr-policies kind delay", "-c 17 -h 0"},
        {"show sr-policies kind liveness", "-c 17 -h 2"},
        {"show sr-policies kind all", "-c 17 -h 4"},
        {"show endpoints kind probe", "-c 26 -h 3"},
        {"show sr-policies host npu", "-c 17 -j"},
        {"show sr-policies host cpu", "-c 17 -r"},
        {"show sr-policies npu 3", "-c 17 -u 3"},
        {"show sr-policies label 24001", "-c 17 -k 24001"},
        {"show sr-policies true-flag", "-c 17 -O"},
        {"show endpoints vrf blue", "-c 26 -V blue"},
        {"show rsvp-te lsp 2", "-c 15 -a 2"},
        {"show profiles defaults kind delay", "-c 23 -S -D 0"},
        {"show profiles named kind loss", "-c 23 -P -L 1"},
        {"show profiles defaults kind liveness", "-c 23 -S -W 2"},
        {"show profiles defaults kind probe", "-c 23 -S -M 3"},
        {"show profiles named transport interface", "-c 23 -P -T 0"},
        {"show profiles named transport rsvp-te", "-c 23 -P -T 1"},
        {"show profiles named transport sr-policy", "-c 23 -P -T 2"},
        {"show profiles named transport endpoint", "-c 23 -P -T 3"},
        {"show profiles named transport generic kind delay", "-c 23 -P -T 4 -D 0"},
        {"show summary node 256", "-c 9 -N 256"},
        {"show summary all-nodes", "-c 9 -A"},
    };
    for (const said &each : OPTIONS) {
        EXPECT_EQ(letters(each.line), each.letters) << each.line;
    }
}

TEST(Parser, LeavesANodesNameToTheInventory) {
    word_parser parser;
    for (const char *const word : {"show", "summary", "node", "lc0", "internal"}) {
        ASSERT_TRUE(parser.take(word)) << parser.problem();
    }
    ASSERT_TRUE(parser.finish());
    EXPECT_EQ(parser.command().node_name, "lc0");
    EXPECT_EQ(parser.command().letters, (std::vector<std::string>{"-c", "9", "-p"}));
}

TEST(Parser, KeepsNamesAsTheyAre) {
    EXPECT_EQ(letters("show sr-policies name 'a b'"), "-c 17 -i a b");
    EXPECT_EQ(letters(R"(show sr-policies name "50% \"off\"")"), "-c 17 -i 50% \"off\"");
    EXPECT_EQ(letters("show sr-policies name -x"), "-c 17 -i -x");
    EXPECT_EQ(letters("show endpoints name ep-2001:db8::22"), "-c 26 -i ep-2001:db8::22");
}

// Each word of each phrase cut to each length: it is taken as long as no other word there begins so.
TEST(Parser, TakesEveryUnambiguousAbbreviation) {
    for (const phrase &each : phrases()) {
        const std::vector<std::string> whole = words(each.words);
        for (std::size_t cut = 0; cut < whole.size(); ++cut) {
            word_parser before;
            for (std::size_t i = 0; i < cut; ++i) {
                ASSERT_TRUE(before.take(whole[i]));
            }
            for (std::size_t length = 1; length <= whole[cut].size(); ++length) {
                const std::string typed = whole[cut].substr(0, length);
                std::size_t beginning = 0;
                for (const fitting_word &fits : before.fitting()) {
                    beginning += fits.word.starts_with(typed) ? 1 : 0;
                }
                word_parser parser = before;
                const bool taken = parser.take(typed);
                EXPECT_EQ(taken, beginning == 1 || typed == whole[cut]) << each.words << ": " << typed;
                if (taken) {
                    EXPECT_TRUE(parser.taken().ends_with(whole[cut])) << each.words << ": " << typed;
                } else {
                    EXPECT_NE(parser.problem().find("is ambiguous"), std::string::npos) << parser.problem();
                }
            }
        }
    }
    EXPECT_EQ(letters("sh int br"), "-c 1 -b");
    EXPECT_EQ(letters("SH Sr COUNT Col 7"), "-c 18 -f 7");
    EXPECT_EQ(letters("sh pr"), "! show: 'pr' is ambiguous: probe-sessions, profiles or process");
}

TEST(Parser, AnswersAnUnknownWordWithWhatFits) {
    EXPECT_EQ(letters("show history nonsense"),
              "! show history: 'nonsense' does not fit here\n"
              "  what may follow: probe, aggregated, advertised, liveness, loss-packets");
    EXPECT_EQ(letters("shwo"),
              "! 'shwo' does not fit here; did you mean show?\n  what may follow: show, plot, metrics");
    EXPECT_EQ(letters("show batches node 1 x"), "! show batches node 1: 'x' does not fit here; nothing may follow");
}

TEST(Parser, SuggestsWhatWasMeant) {
    EXPECT_EQ(problem("show sr-polices"), "! show: 'sr-polices' does not fit here; did you mean sr-policies?");
    EXPECT_EQ(problem("show policies"), "! show: 'policies' does not fit here; did you mean sr-policies?");
    EXPECT_EQ(problem("show tunnels"), "! show: 'tunnels' does not fit here; did you mean rsvp-te?");
    EXPECT_EQ(problem("show interfcaes"), "! show: 'interfcaes' does not fit here; did you mean interfaces?");
    EXPECT_EQ(problem("show sr-policies colour 1"),
              "! show sr-policies: 'colour' does not fit here; did you mean color?");
    EXPECT_EQ(problem("show liveness"),
              "! show: 'liveness' does not fit here; did you mean show history liveness "
              "sr-policies or show history liveness endpoints?");
    EXPECT_EQ(problem("show interfaces eth0/1/0/4"),
              "! show interfaces: 'eth0/1/0/4' does not fit here; if it is a name, say: name eth0/1/0/4");
}

TEST(Parser, RefusesWrongValues) {
    constexpr said WRONG[] = {
        {"show sr-policies color red", "! show sr-policies color: 'red' is not a number from 0 to 4294967295"},
        {"show sr-policies color 4294967296",
         "! show sr-policies color: '4294967296' is not a number from 0 to 4294967295"},
        {"show sr-policies color -1", "! show sr-policies color: '-1' is not a number from 0 to 4294967295"},
        {"show sr-policies color 1x", "! show sr-policies color: '1x' is not a number from 0 to 4294967295"},
        {"show sr-policies color 0x", "! show sr-policies color: '0x' is not a number from 0 to 4294967295"},
        {"show sr-policies color ''", "! show sr-policies color: '' is not a number from 0 to 4294967295"},
        {"show sr-policies endpoint 1.2.3", "! show sr-policies endpoint: '1.2.3' is not an IPv4 or IPv6 address"},
        {"show endpoints endpoint c0000201", "! show endpoints endpoint: 'c0000201' is not an IPv4 or IPv6 address"},
        {"show rsvp-te destination 2001:db8::1::2",
         "! show rsvp-te destination: '2001:db8::1::2' is not an IPv4 or IPv6 address"},
        {"show sr-policies origin isis", "! show sr-policies origin: 'isis' does not fit here"},
        {"show sr-policies preference x", "! show sr-policies preference: 'x' is not a number from 0 to 4294967295"},
        {"show sr-policies discriminator x",
         "! show sr-policies discriminator: 'x' is not a number from 0 to 4294967295"},
        {"show sr-policies segment-list a,b",
         "! show sr-policies segment-list: 'a,b' holds a comma, which separates the parts of a filter"},
        {"show sr-policies segment-list ''", "! show sr-policies segment-list: the name is empty"},
        {"show sr-policies segment-list ________", "! show sr-policies segment-list: '________' means every name"},
        {"show sr-policies kind probe", "! show sr-policies kind: 'probe' does not fit here"},
        {"show endpoints kind x", "! show endpoints kind: 'x' does not fit here"},
        {"show sr-policies host x", "! show sr-policies host: 'x' does not fit here"},
        {"show sr-policies npu 65535", "! show sr-policies npu: '65535' is not a number from 0 to 65534"},
        {"show sr-policies label 1048576", "! show sr-policies label: '1048576' is not a number from 0 to 1048575"},
        {"show endpoints vrf a,b", "! show endpoints vrf: 'a,b' holds a comma, which separates the parts of a filter"},
        {"show rsvp-te lsp x", "! show rsvp-te lsp: 'x' is not a number from 0 to 4294967295"},
        {"show sessions id 0", "! show sessions id: '0' is not a number from 1 to 4294967295"},
        {"show history probe interfaces limit 0",
         "! show history probe interfaces limit: '0' is not a number from 1 to 4294967295"},
        {"show profiles named kind x", "! show profiles named kind: 'x' does not fit here"},
        {"show profiles named transport x", "! show profiles named transport: 'x' does not fit here"},
        {"show interfaces name ''", "! show interfaces name: the name is empty"},
    };
    for (const said &each : WRONG) {
        EXPECT_EQ(problem(each.line), each.letters) << each.line;
    }
    const std::string long_name(64, 'n');
    EXPECT_EQ(problem("show sr-policies segment-list " + long_name),
              "! show sr-policies segment-list: '" + std::string(60, 'n') +
                  "...' is longer than the 63 bytes that can be compared");
    EXPECT_EQ(
        problem("show interfaces name " + std::string(381, 'n')),
        "! show interfaces name: '" + std::string(60, 'n') + "...' is longer than the 380 bytes that a name may have");
}

TEST(Parser, SaysWhatIsMissing) {
    EXPECT_EQ(problem("show"), "! show: more words are needed");
    EXPECT_EQ(problem("show history probe"), "! show history probe: more words are needed");
    EXPECT_EQ(problem("show sr-policies color"), "! show sr-policies color: a number from 0 to 4294967295 is missing");
    EXPECT_EQ(problem("show sr-policies host"), "! show sr-policies host: npu or cpu is missing");
    EXPECT_EQ(problem("show summary node"), "! show summary node: a node's name or id is missing");
    EXPECT_EQ(problem("plot delay endpoint"), "! plot delay endpoint: a name is missing");
    EXPECT_EQ(problem("show profiles named transport generic"),
              "! show profiles named transport generic: 'generic' wants 'kind' beside it");
}

TEST(Parser, TakesAnOptionOnceAndNoOptionsThatContradict) {
    EXPECT_EQ(problem("show interfaces brief brief"), "! show interfaces brief: 'brief' was said already");
    EXPECT_EQ(problem("show history probe interfaces delay loss"),
              "! show history probe interfaces delay: 'loss' does not go with 'delay'");
    EXPECT_EQ(problem("show summary node 1 all-nodes"), "! show summary node 1: 'all-nodes' does not go with 'node'");
}

TEST(Help, ListsWhatMayFollowWithItsHelp) {
    word_parser parser;
    ASSERT_TRUE(parser.take("show") && parser.take("rsvp-te") && parser.take("counters"));
    EXPECT_EQ(help_here(parser),
              "  name NAME               one item only, by its name\n"
              "  detail                  more: probe samples, segments, each reason of an error\n"
              "  node NODE               this node only, by its name or id\n"
              "  <enter>                 go\n");
    EXPECT_EQ(help_here(parser, "na"), "  name NAME               one item only, by its name\n");
    ASSERT_TRUE(parser.take("node"));
    EXPECT_EQ(help_here(parser), "  NODE                    a node's name or id\n");
}

TEST(Help, EveryWordHasALine) {
    for (const phrase &each : phrases()) {
        EXPECT_GT(std::string_view(each.help).size(), 5U) << each.words;
        word_parser parser;
        for (const std::string &word : words(each.words)) {
            for (const fitting_word &fits : parser.fitting()) {
                EXPECT_FALSE(fits.help.empty()) << parser.taken() << ' ' << fits.word;
            }
            ASSERT_TRUE(parser.take(word));
        }
    }
}

}  // namespace
