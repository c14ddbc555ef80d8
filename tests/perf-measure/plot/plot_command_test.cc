// SPDX-License-Identifier: Apache-2.0
// The plot command on whole stores.
#include <gtest/gtest.h>
#include <string>

#include "tests/perf-measure/support/programs.h"

namespace {

class Plot : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(run_command("perf-store load \"$EXAMPLE\"", folder_.path()).status, 0); }

    // What follows the options of a plot: the drawing's lines that name something.
    std::string titles(const std::string &words) {
        return run_command(std::string(CAPTURED) + "COLUMNS=80 perf-measure plot " + words +
                               " --ascii | grep -a 'history$\\|sample'",
                           folder_.path())
            .out;
    }

    temporary_folder folder_;
};

TEST_F(Plot, DrawsEveryKindOfItem) {
    EXPECT_EQ(titles("delay interface eth0/0/0/0"),
              "interface eth0/0/0/0 on lc0: delay, probe history\n"
              "  * average, - minimum, - maximum, in us; 3 samples; 0 of 30 packets lost\n");
    EXPECT_EQ(titles("delay sr-policy policy-c40"),
              "SR policy policy-c40, candidate path 200 BGP 1 on rp0: delay, probe history\n"
              "  * average, - minimum, - maximum, in us; 3 samples; 0 of 120 packets lost\n");
    EXPECT_EQ(
        titles("delay sr-policy policy-c40 segment-list sl-policy-c40-1"),
        "SR policy policy-c40, candidate path 200 BGP 1, segment list sl-policy-c40-1 on rp0: delay, probe history\n"
        "  * average, - minimum, - maximum, in us; 3 samples; 0 of 60 packets lost\n");
    EXPECT_EQ(titles("delay rsvp-te tunnel-te10"),
              "tunnel tunnel-te10, LSP 2 on rp0: delay, probe history\n"
              "  no samples\n");
    EXPECT_EQ(titles("delay endpoint ep-100.64.0.1 limit 1"),
              "endpoint ep-100.64.0.1, segment list None on rp0: delay, probe history\n"
              "  * average, - minimum, - maximum, in us; 1 sample; 0 of 10 packets lost\n");
}

TEST_F(Plot, DrawsTheOtherHistories) {
    EXPECT_TRUE(titles("delay interface eth0/0/0/0 aggregated").find(": delay, aggregated history\n") !=
                std::string::npos);
    EXPECT_TRUE(titles("delay interface eth0/0/0/0 advertised").find(": delay, advertised history\n") !=
                std::string::npos);
}

TEST_F(Plot, WritesThePictureBesideTheDrawingOrAlone) {
    const std::string file = folder_.path() + "/delay.svg";
    const command_result both = measure("plot delay endpoint ep-100.64.0.1 --svg " + file, folder_.path());
    EXPECT_EQ(both.status, 0);
    EXPECT_TRUE(both.out.starts_with("endpoint ep-100.64.0.1, segment list None on rp0")) << both.out;
    const command_result alone = measure("plot delay endpoint ep-100.64.0.1 --svg -", folder_.path());
    EXPECT_TRUE(alone.out.starts_with("<?xml"));
    EXPECT_EQ(alone.out, read_file(file));
    const command_result nowhere = measure("plot delay endpoint ep-100.64.0.1 --svg /nix/a", folder_.path());
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_EQ(nowhere.err, "perf-measure: cannot write /nix/a\n");
}

TEST_F(Plot, UsesUnicodeWhereTheTerminalHasIt) {
    const std::string draw = "perf-measure plot delay endpoint ep-100.64.0.1";
    EXPECT_NE(run_command("LC_ALL=C.UTF-8 " + draw, folder_.path()).out.find("●"), std::string::npos);
    EXPECT_EQ(run_command("LC_ALL=C " + draw, folder_.path()).out.find("●"), std::string::npos);
    EXPECT_EQ(run_command("LC_ALL=C.UTF-8 " + draw + " --ascii", folder_.path()).out.find("●"), std::string::npos);
}

TEST_F(Plot, SaysWhatIsNotThere) {
    const command_result missing = measure("plot delay endpoint nix", folder_.path());
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_EQ(missing.err,
              "perf-measure: rp0: Item not found\nperf-measure: lc0: Item not found\n"
              "perf-measure: lc1: Item not found\n");
}

}  // namespace
