// SPDX-License-Identifier: Apache-2.0
// From packets to printed text: loss on an interface, of a path that loses every tenth packet.
#include <gtest/gtest.h>

#include "tests/perf-probed/support/namespaces.h"
#include "tests/perf-probed/support/shows.h"

namespace {

using shown::body_of;
using shown::line_matches;
using shown::lines_of;

constexpr char REFLECTOR[] = "node: {name: r, id: 2}\nreflector: {listen: [{port: 8620}]}\n";

// A hundred packets in the first of three seconds, of which the relay loses those whose number ends with a nine.
std::string losing(const joined_namespaces &path) {
    return "node: {name: h, id: 1}\nprofiles:\n  - {name: x, kind: loss, computation-interval: 3 s, tx-interval: 10 "
           "ms, "
           "burst-count: 100, response-timeout: 200 ms, advertisement: {periodic: {interval: 5 s, threshold: 11, "
           "minimum-change: 2}, accelerated: {threshold: 21, minimum-change: 3}}}\n"
           "interfaces:\n  - {name: a, next-hop: " +
           path.ipv4("b") + ", port: 9000, loss: x}\n";
}

class loss_shows_test : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (geteuid() != 0) {
            return;
        }
        path_ = new joined_namespaces(41);
        far_ = new live_service(REFLECTOR, path_->in("b"));
        relay_ = new running_process(
            path_->in("b") + PROBED_RELAY " " + path_->ipv4("b") + " 9000 127.0.0.1 8620 1000 10 0 0 0",
            far_->store() + "-relay");
        within(5, [] { return relay_->output().find("ready") != std::string::npos; });
        near_ = new live_service(losing(*path_), path_->in("a"));
        within(12, [] { return near_->shows("-c 5 -t 3 -L 1", "200/180"); });
    }
    static void TearDownTestSuite() {
        delete near_;
        delete relay_;
        delete far_;
        delete path_;
    }
    void SetUp() override {
        if (geteuid() != 0) {
            GTEST_SKIP() << "only root can make network namespaces";
        }
        ASSERT_TRUE(path_->made());
    }

    // The heading of the interface, then `head`, then one row or more.
    static void expect_rows(const std::string &arguments, const std::string &head, const std::string &row) {
        const std::vector<std::string> lines = body_of(near_->show(arguments).out);
        ASSERT_GE(lines.size(), 4U) << near_->show(arguments).out;
        EXPECT_TRUE(lines[0].starts_with("Interface Name: a (ifh: 0x")) << lines[0];
        EXPECT_EQ(lines[1], "Loss-Measurement history:");
        EXPECT_EQ(lines[2], head);
        for (std::size_t index = 3; index < lines.size(); ++index) {
            EXPECT_TRUE(line_matches(lines[index], row)) << lines[index];
        }
    }

    static inline joined_namespaces *path_ = nullptr;
    static inline live_service *far_ = nullptr;
    static inline running_process *relay_ = nullptr;
    static inline live_service *near_ = nullptr;
};

TEST_F(loss_shows_test, sessions_of_interfaces) {
    constexpr char SESSION[] = R"(  Loss Measurement session:
    Session ID                      : 1
    Last advertisement:
      Advertised at: <t> (<w> seconds ago)
      Advertised reason: First advertisement
      Advertised loss: 10%
    Probe window
      Pkts sent                     : 100
      Pkts received                 : 90
      Loss                          : 10
    Periodic window
      Pkts sent                     : <n>
      Pkts received                 : <n>
      Loss                          : <n>
    Rolling average                 : 10
    Next probe scheduled at: <t> (in <w> seconds)
)";
    std::string wrong;
    std::string out;
    within(8, [&] {  // between the last answer of a computation and its end
        out = near_->show("-c 1 -L 1").out;
        const std::size_t at = out.find("  Loss Measurement session:");
        wrong = "no session";
        if (at != std::string::npos) {
            wrong.clear();
            const std::vector<std::string> lines = lines_of(out.substr(at));
            const std::vector<std::string> expected = lines_of(SESSION);
            for (std::size_t index = 0; index < expected.size(); ++index) {
                if (index >= lines.size() || !line_matches(lines[index], expected[index])) {
                    wrong = expected[index];
                    break;
                }
            }
        }
        return wrong.empty();
    });
    EXPECT_EQ(wrong, "") << out;
    EXPECT_NE(out.find("  Delay-Measurement                 : Disabled\n"
                       "  Loss-Measurement                  : Enabled\n"),
              std::string::npos)
        << out;
}

TEST_F(loss_shows_test, probes) {
    expect_rows("-c 4 -t 3 -L 1", "  Probe Start Timestamp                           Pkt(Sent/Received)   Loss(%)",
                "  <t>                                    100/90        10");
}

TEST_F(loss_shows_test, aggregations) {
    expect_rows("-c 5 -t 3 -L 1", "  Aggregation Start Timesta                       Pkt(Sent/Received)   Loss(%)",
                "  <t>                                   200/180        10");
}

TEST_F(loss_shows_test, advertisements) {
    const std::string out = near_->show("-c 20 -t 3 -L 1").out;
    const std::size_t at = out.find("Loss-Measurement history:\n");
    ASSERT_NE(at, std::string::npos) << out;
    const std::vector<std::string> lines = lines_of(out.substr(at));
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[1], "  Advertisement Start Times      Loss        Reason");
    EXPECT_TRUE(line_matches(lines[2], "  <t>         10         FIRST")) << lines[2];
}

TEST_F(loss_shows_test, packets) {
    expect_rows("-c 22 -t 3", "  Packet Receive Timestamp                                Pkt(TX/RX)",
                "  <t> <_><n>/<n>");
}

TEST_F(loss_shows_test, profiles) {
    EXPECT_EQ(shown::difference(near_->show("-c 23 -P -L 1").out, R"(Generic Loss Measurement Profile Name: x
  Profile configuration:
    Probe interval                              : 3 seconds
    Encap mode                                  : UDP
    Periodic advertisement                      : Enabled
      Interval                                  : 5 (effective: 6) sec
      Threshold                                 : 11%
      Minimum-Change                            : 2
    Accelerated advertisement                   : Enabled
      Threshold                                 : 21%
      Minimum-Change                            : 3
)"),
              "")
        << near_->show("-c 23 -P -L 1").out;
}

}  // namespace
