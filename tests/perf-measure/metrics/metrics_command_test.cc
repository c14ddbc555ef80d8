// SPDX-License-Identifier: Apache-2.0
// perf-measure metrics as a whole program.
#include <gtest/gtest.h>
#include <string>

#include "tests/perf-measure/support/metrics_service.h"
#include "tests/perf-measure/support/programs.h"

namespace {

class Metrics : public testing::Test {
protected:
    void load(const std::string &file) const {
        ASSERT_EQ(run_command("perf-store load '" + file + "'", store_.path()).status, 0);
    }
    void load_small() const { load(PM_METRICS "/small.ndjson"); }
    [[nodiscard]] command_result metrics(const std::string &words) const {
        return run_command("perf-measure " + words + " </dev/null", store_.path());
    }
    // The samples that the words give, without those of nodes and publishers.
    [[nodiscard]] std::string series(const std::string &words) const {
        const command_result shown = run_command(
            "perf-measure metrics " + words + " | grep -v '^#\\|^perf_node_up\\|^perf_publisher_state'", store_.path());
        return shown.err + shown.out;
    }
    [[nodiscard]] std::string count(const std::string &words, const std::string &pattern) const {
        return run_command("perf-measure metrics " + words + " | grep -c '" + pattern + "'", store_.path()).out;
    }

    temporary_folder store_;
};

TEST_F(Metrics, OfASmallSetAreThese) {
    load_small();
    const command_result shown = metrics("metrics");
    EXPECT_EQ(shown.out, read_file(PM_METRICS "/small.openmetrics"));
    EXPECT_EQ(shown.err, "");
    EXPECT_EQ(shown.status, 0);
}

// A name that is escaped, a counter, a state: the lines that differ from OpenMetrics, and those that do not.
TEST_F(Metrics, OfTheOlderFormHaveItsNamesAndTypes) {
    load_small();
    const std::string text = metrics("metrics --format prometheus").out;
    EXPECT_NE(text.find("# TYPE perf_packets_sent_total counter\n# HELP perf_packets_sent_total Test packets sent.\n"
                        "perf_packets_sent_total{node=\"rp0\",family=\"interface\",name=\"eth0/1/0/4\",session=\"7\","
                        "kind=\"delay\"} 100\n"),
              std::string::npos);
    EXPECT_NE(text.find("# TYPE perf_publisher_state gauge\n"), std::string::npos);
    EXPECT_NE(
        text.find("perf_loss_ratio{node=\"rp0\",family=\"sr-policy\",name=\"p\\\"1\\\\\",path=\"100/configured/5\","
                  "kind=\"liveness\"} 1\n"),
        std::string::npos);
    EXPECT_EQ(text.find("# UNIT"), std::string::npos);
    EXPECT_EQ(text.find("# EOF"), std::string::npos);
}

TEST_F(Metrics, PassAStrictParser) {
    load_small();
    const command_result strict =
        run_command("perf-measure metrics | /usr/bin/python3 " PM_METRICS_QUOTED "/read_openmetrics.py", store_.path());
    const std::string by_hand = run_command("grep -cv '^#' " PM_METRICS_QUOTED "/small.openmetrics", store_.path()).out;
    EXPECT_EQ(strict.out, by_hand) << strict.err;
}

TEST_F(Metrics, OfTheExamplePassEveryCheck) {
    load(PM_EXAMPLE);
    const command_result read =
        run_command("set -o pipefail; perf-measure metrics | /usr/bin/python3 " PM_METRICS_QUOTED
                    "/read_openmetrics.py && perf-measure metrics --format prometheus | promtool check metrics",
                    store_.path());
    EXPECT_EQ(read.status, 0) << read.err;
    EXPECT_GT(std::atoi(read.out.c_str()), 500);
}

TEST_F(Metrics, OfASyntheticRouterPassEveryCheck) {
    const command_result read = run_command(
        "set -o pipefail; perf-store gen --policies 300 --endpoints 300 --interfaces 300 --tunnels 300 | perf-store "
        "load "
        "- && perf-measure metrics | /usr/bin/python3 " PM_METRICS_QUOTED
        "/read_openmetrics.py && perf-measure metrics --format prometheus | promtool check metrics",
        store_.path());
    EXPECT_EQ(read.status, 0) << read.err;
}

// The example has three sessions of interfaces on lc0, a loss session among them, and two on lc1.
TEST_F(Metrics, AreLimitedByTheWordsOfShows) {
    load(PM_EXAMPLE);
    EXPECT_EQ(count("interfaces", "^perf_session_running"), "5\n");
    EXPECT_EQ(count("interfaces node lc1", "^perf_session_running"), "2\n");
    EXPECT_EQ(count("interfaces name eth0/1/0/4", "^perf_session_running"), "1\n");
    EXPECT_EQ(count("int na eth0/1/0/4 node 0x20", "^perf_delay_average"), "1\n");
    EXPECT_EQ(count("sr-policies", "^perf_delay_average"), "8\n");  // one of each policy but the last, which has five
    EXPECT_EQ(count("sr-policies color 10", "^perf_delay_average"), "1\n");
    EXPECT_EQ(count("sr-policies color 40", "^perf_packets_sent"), "1\n");
    EXPECT_EQ(count("sr-policies color 10", "^perf_packets_sent"), "0\n");  // no counters of it are in the store
    EXPECT_EQ(count("sr-policies kind liveness name policy-c40", "^perf_session_running"), "0\n");
    EXPECT_EQ(count("endpoints kind liveness", "^perf_liveness_up"), "2\n");
    EXPECT_EQ(count("endpoints segment-list sl-east", "^perf_liveness_up"), "1\n");
    EXPECT_EQ(count("rsvp-te lsp 2", "^perf_packets_sent"), "1\n");
    EXPECT_EQ(count("rsvp-te lsp 3", "^perf_packets_sent"), "0\n");  // the counters, too, go by the filter
    EXPECT_EQ(count("rsvp-te lsp 3", "^perf_session_running"), "0\n");
    EXPECT_EQ(count("summary", "^perf_sessions{"), "72\n");  // three nodes, eight kinds, three states
    EXPECT_EQ(count("summary", "^perf_session_running"), "0\n");
}

TEST_F(Metrics, OfANameThatNoNodeHasAreAFailure) {
    load_small();
    const command_result shown = metrics("metrics interfaces name eth9");
    EXPECT_EQ(shown.out, "");
    EXPECT_EQ(shown.err, "perf-measure: eth9: Item not found\n");
    EXPECT_EQ(shown.status, 1);
}

TEST_F(Metrics, OfOneNodeSayNothingOfOthers) {
    load_small();
    EXPECT_EQ(count("node lc1", "^perf_"), "16\n");  // it does not run: its state is all that there is
    EXPECT_EQ(count("node lc1", "rp0"), "0\n");
    EXPECT_EQ(count("node lc1", "^perf_node_up{node=\"lc1\"} 0$"), "1\n");
}

TEST_F(Metrics, OfOneThingTwiceAreWrittenOnce) {
    write_file(store_.path() + "/set",
               R"({"node":{"id":1,"name":"rp0"}}
{"item":{"root":"main","node":1,"path":"intf/detail/e0","type":"pm_intf_parcel","record":{"DelayMeasurementSessions":[)"
               R"({"SessionId":1,"CurrentProbe":{"NumberOfPacketsSent":2}},{"SessionId":1},{"SessionId":2}]}}})");
    ASSERT_EQ(run_command("perf-store load " + store_.path() + "/set", store_.path()).status, 0);
    EXPECT_EQ(series("interfaces | grep -v 'packets_\\|advert'"),
              "perf_stale{node=\"rp0\",family=\"interface\",name=\"e0\"} 0\n"
              "perf_loss_ratio{node=\"rp0\",family=\"interface\",name=\"e0\",session=\"1\",kind=\"delay\"} 1\n"
              "perf_session_running{node=\"rp0\",family=\"interface\",name=\"e0\",session=\"1\",kind=\"delay\"} 1\n"
              "perf_session_running{node=\"rp0\",family=\"interface\",name=\"e0\",session=\"2\",kind=\"delay\"} 1\n");
}

TEST_F(Metrics, OfADamagedStoreAreAFailureAndNotWritten) {
    load_small();
    ASSERT_EQ(run_command("grep -abo 'eth0/1/0/5' " + store_.path() +
                              "/data.mdb | head -1 | cut -d: -f1 | { read at; "
                              "printf X | dd of=" +
                              store_.path() + "/data.mdb bs=1 seek=$at conv=notrunc; }",
                          store_.path())
                  .status,
              0);
    const command_result shown = metrics("metrics");
    EXPECT_EQ(shown.out, "");
    EXPECT_NE(shown.err.find("perf-measure: rp0: "), std::string::npos) << shown.err;
    EXPECT_EQ(shown.status, 1);
}

TEST_F(Metrics, WithoutAStoreAreAFailure) {
    const command_result shown = run_command("perf-measure metrics", store_.path() + "/none");
    EXPECT_EQ(shown.out, "");
    EXPECT_NE(shown.err.find("there is no store at "), std::string::npos) << shown.err;
    EXPECT_EQ(shown.status, 1);
}

TEST_F(Metrics, GoIntoAFile) {
    load_small();
    const std::string file = store_.path() + "/a b.prom";
    EXPECT_EQ(metrics("metrics --textfile '" + file + "'").status, 0);
    EXPECT_EQ(read_file(file), read_file(PM_METRICS "/small.openmetrics"));
    // A failure leaves it as it is.
    EXPECT_EQ(metrics("metrics interfaces name eth9 --textfile '" + file + "'").status, 1);
    EXPECT_EQ(read_file(file), read_file(PM_METRICS "/small.openmetrics"));
}

TEST_F(Metrics, GoIntoAFileAgainAndAgain) {
    load_small();
    const command_result run =
        run_command("cd " + store_.path() +
                        "; perf-measure metrics --textfile f --interval 0.1 & "
                        "for i in {1..100}; do [ -e f ] && break; sleep 0.1; done; rm f; "
                        "for i in {1..100}; do [ -e f ] && break; sleep 0.1; done; cmp f " PM_METRICS_QUOTED
                        "/small.openmetrics && kill $! && wait $!; echo $?; ls f*",
                    store_.path());
    EXPECT_EQ(run.out, "0\nf\n") << run.err;
}

TEST_F(Metrics, RefuseOptionsThatDoNotFit) {
    const auto refused = [&](const std::string &words) {
        const command_result run = metrics(words);
        EXPECT_EQ(run.status, 2) << words;
        return run.err;
    };
    EXPECT_EQ(refused("show summary --listen 127.0.0.1:0"),
              "perf-measure: --listen, --textfile, --interval and --format go with metrics only\n");
    EXPECT_EQ(refused("metrics --interval 3"), "perf-measure: --interval goes with --textfile only\n");
    EXPECT_EQ(refused("metrics --listen 127.0.0.1:0 --textfile f"),
              "perf-measure: --listen serves both formats, and no file\n");
    EXPECT_EQ(refused("metrics --json"), "perf-measure: --json goes with show only\n");
    EXPECT_EQ(refused("metrics --watch"), "perf-measure: --watch does not go with metrics\n");
    for (const char *const place :
         {"localhost:1", "127.0.0.1", "127.0.0.1:65536", "127.0.0.1:", "::1:80", "[127.0.0.1]:1", "[::1]", ":80"}) {
        EXPECT_EQ(refused(std::string("metrics --listen ") + place),
                  "perf-measure: --listen wants a numeric address and a port: 127.0.0.1:9464 or [::1]:9464\n");
    }
}

}  // namespace
