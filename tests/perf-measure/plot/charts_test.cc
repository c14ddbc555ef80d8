// SPDX-License-Identifier: Apache-2.0
// Plots of small series, whose drawings were made by hand.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "perf-measure/plot/scale.h"
#include "perf-measure/plot/series.h"
#include "perf-measure/plot/svg_chart.h"
#include "perf-measure/plot/text_chart.h"
#include "tests/perf-measure/support/programs.h"

namespace {

using namespace perf_measure;

constexpr std::uint64_t NOON_MSEC = 1709640000000;  // 2024-03-05 12:00:00 UTC

// Two probes: 100, 105 and 115 microseconds, and one that lost 4 of 10 packets.
series two_probes() {
    sample first;
    first.time_msec = NOON_MSEC;
    first.minimum = 100;
    first.average = 105;
    first.maximum = 115;
    first.sent = first.received = 10;
    sample second = first;
    second.time_msec = NOON_MSEC + 60000;
    second.minimum = second.average = 100;
    second.maximum = 100;
    second.received = 6;
    return {"endpoint a", {first, second}};
}

class Charts : public testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
    }
};

// From 100 to 115 by ones of 3: ticks 100, 105, 110 and 115; a row is one microsecond. The line between the
// averages falls by 5 rows in 27 columns.
TEST_F(Charts, TextHasARowForEachValue) {
    std::string text;
    append_text_chart(two_probes(), "probe history", {.columns = 40, .ascii = true, .colours = false}, &text);
    EXPECT_EQ(text,
              "endpoint a: delay, probe history\n"
              "       115 +-\n"
              "           ||\n"
              "           ||\n"
              "           ||\n"
              "           ||\n"
              "       110 +|\n"
              "           ||\n"
              "           ||\n"
              "           ||\n"
              "           ||\n"
              "       105 +*..\n"
              "           ||  ......\n"
              "           ||        .....\n"
              "           ||             .....\n"
              "           ||                  ......\n"
              "       100 +-                        ..*\n"
              "           +----------------------------\n"
              "            2024-03-05 12:00:00\n"
              "      lost                             x\n"
              "  * average, - minimum, - maximum, in us; 2 samples; 4 of 20 packets lost\n");
}

TEST_F(Charts, TextWithoutSamplesSaysSo) {
    std::string text;
    append_text_chart({"tunnel te1, LSP 2", {}}, "probe history", {}, &text);
    EXPECT_EQ(text, "tunnel te1, LSP 2: delay, probe history\n  no samples\n");
}

TEST_F(Charts, TextIsAsWideAsTheTerminal) {
    for (const std::size_t columns : {40U, 80U, 200U}) {
        std::string text;
        append_text_chart(two_probes(), "probe history", {.columns = columns, .ascii = true, .colours = false}, &text);
        std::size_t widest = 0;
        for (std::size_t at = text.find('\n') + 1; at < text.rfind("  * average"); at = text.find('\n', at) + 1) {
            widest = std::max(widest, text.find('\n', at) - at);
        }
        EXPECT_EQ(widest, columns);
    }
}

TEST_F(Charts, LostPacketsAreRedWithColours) {
    std::string text;
    append_text_chart(two_probes(), "probe history", {.columns = 40, .ascii = true, .colours = true}, &text);
    EXPECT_NE(text.find("x\033[0m\n"), std::string::npos);
}

TEST(Scale, TicksAreRoundAndEnclose) {
    EXPECT_EQ(ticks_between(100, 115, 7), (std::vector<std::uint64_t>{100, 105, 110, 115}));
    EXPECT_EQ(ticks_between(5478, 5830, 7), (std::vector<std::uint64_t>{5400, 5500, 5600, 5700, 5800, 5900}));
    EXPECT_EQ(ticks_between(0, 0, 7), (std::vector<std::uint64_t>{0, 1}));
    EXPECT_EQ(ticks_between(7, 7, 7), (std::vector<std::uint64_t>{7, 8}));
    const std::vector<std::uint64_t> widest = ticks_between(0, 0xFFFFFFFF, 7);
    EXPECT_EQ(widest.front(), 0U);
    EXPECT_GE(widest.back(), 0xFFFFFFFFU);
}

TEST(Printable, KeepsCharactersAndReplacesTheRest) {
    EXPECT_EQ(printable("a \xC3\xA9\n\x7F\xFFz"), "a \xC3\xA9???z");
    EXPECT_EQ(printable("\xE2\x82"), "??");       // cut short
    EXPECT_EQ(printable("\xED\xA0\x80"), "???");  // a surrogate
    EXPECT_EQ(printable("\xF0\x9F\x98\x80"), "\xF0\x9F\x98\x80");
}

// The picture, read back by an XML parser of another's making: each sample's values and each loss are in it.
TEST_F(Charts, ThePictureIsWellFormedAndHoldsTheValues) {
    series odd = two_probes();
    odd.title = "endpoint <a> & \"b\" 50%";
    const temporary_folder work;
    write_file(work.path() + "/a.svg", svg_document({odd, {"nothing", {}}}, "probe history"));
    const command_result read = run_command(
        "python3 -c '\nimport sys, xml.etree.ElementTree as tree\n"
        "root = tree.parse(sys.argv[1]).getroot()\n"
        "name = lambda each: each.tag.split(\"}\")[1]\n"
        "print(name(root), root.get(\"viewBox\"))\n"
        "for each in root.iter():\n"
        "    if name(each) in (\"title\", \"text\") and each.text: print(each.text)\n"
        "    if name(each) == \"tspan\": print(each.text)\n' " +
            work.path() + "/a.svg",
        work.path());
    EXPECT_EQ(read.err, "");
    EXPECT_EQ(read.out,
              "svg 0 0 960 640\n"
              "endpoint <a> & \"b\" 50%\n"
              "delay in µs, probe history\n"
              "100\n105\n110\n115\n"
              "2024-03-05 12:00:00\n2024-03-05 12:01:00\n"
              "2024-03-05 12:00:00: average 105, minimum 100, maximum 115, 10 of 10 packets\n"
              "2024-03-05 12:01:00: average 100, minimum 100, maximum 100, 6 of 10 packets\n"
              "2024-03-05 12:01:00: 4 of 10 packets lost\n"
              "average\nminimum to maximum\n2 samples, \n4 of 20 packets lost\n"
              "nothing\ndelay in µs, probe history\nno samples\n");
}

}  // namespace
