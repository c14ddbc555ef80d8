// SPDX-License-Identifier: Apache-2.0
// The service of metrics: what it answers, whom it does not wait for, and how it ends.
#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "tests/perf-measure/support/metrics_service.h"
#include "tests/perf-measure/support/programs.h"

namespace {

class MetricsServer : public testing::Test {
protected:
    void load(const std::string &options) const {
        ASSERT_EQ(run_command("perf-store " + options, store_.path()).status, 0);
    }
    void load_small() const { load("load " PM_METRICS_QUOTED "/small.ndjson"); }
    [[nodiscard]] std::string url() const { return "lmdb:" + store_.path(); }

    temporary_folder store_;
};

constexpr char WANTS_OPENMETRICS[] = "Accept: application/openmetrics-text; version=1.0.0\r\n";

bool has(const std::string &text, const std::string &part) { return text.find(part) != std::string::npos; }

TEST_F(MetricsServer, AnswersInTheFormThatIsAskedFor) {
    load_small();
    const metrics_service service(url());
    ASSERT_NE(service.port(), 0) << service.said();
    const std::string openmetrics = ask(service.port(), request_text("GET /metrics", WANTS_OPENMETRICS));
    EXPECT_EQ(status_of(openmetrics), "HTTP/1.1 200 OK");
    EXPECT_TRUE(has(openmetrics, "Content-Type: application/openmetrics-text; version=1.0.0; charset=utf-8\r\n"));
    EXPECT_TRUE(has(openmetrics, "Transfer-Encoding: chunked\r\n"));
    EXPECT_TRUE(has(openmetrics, "Vary: Accept\r\n"));
    EXPECT_EQ(body_of(openmetrics), read_file(PM_METRICS "/small.openmetrics"));

    const std::string plain = ask(service.port(), request_text("GET /metrics"));
    EXPECT_TRUE(has(plain, "Content-Type: text/plain; version=0.0.4; charset=utf-8\r\n"));
    EXPECT_EQ(body_of(plain), run_command("perf-measure metrics --format prometheus", store_.path()).out);
}

TEST_F(MetricsServer, AnswersHeadWithoutAText) {
    load_small();
    const metrics_service service(url());
    const std::string head = ask(service.port(), request_text("HEAD /metrics"));
    EXPECT_EQ(status_of(head), "HTTP/1.1 200 OK");
    EXPECT_TRUE(has(head, "Content-Type: text/plain; version=0.0.4; charset=utf-8\r\n"));
    EXPECT_TRUE(head.ends_with("\r\n\r\n"));
    EXPECT_EQ(head.find("\r\n\r\n") + 4, head.size());
}

TEST_F(MetricsServer, SaysWhatThereIsToWhoAsksForAnythingElse) {
    const metrics_service service(url());
    for (const char *const path : {"/", "/metric", "/metrics/", "/../etc/passwd", "/%00"}) {
        const std::string response = ask(service.port(), request_text(std::string("GET ") + path));
        EXPECT_EQ(status_of(response), "HTTP/1.1 404 Not Found") << path;
        EXPECT_EQ(body_of(response), "there is nothing here but /metrics\n") << path;
    }
    const std::string post = ask(service.port(), request_text("POST /metrics", "Content-Length: 0\r\n"));
    EXPECT_EQ(status_of(post), "HTTP/1.1 405 Method Not Allowed");
    EXPECT_EQ(body_of(post), "only GET and HEAD are answered\n");
    EXPECT_TRUE(has(ask(service.port(), "no HTTP at all\r\n\r\n"), " 400 "));
}

TEST_F(MetricsServer, ServesTheWordsThatItWasGiven) {
    load_small();
    const metrics_service service(url(), "127.0.0.1", {"metrics", "endpoints", "name", "ep-1"});
    const std::string text = body_of(ask(service.port(), request_text("GET /metrics")));
    EXPECT_TRUE(has(text, "perf_session_not_running{node=\"rp0\",family=\"endpoint\",name=\"ep-1\""));
    EXPECT_FALSE(has(text, "family=\"interface\""));
}

TEST_F(MetricsServer, ServesOnIpv6) {
    load_small();
    const metrics_service service(url(), "::1");
    ASSERT_NE(service.port(), 0) << service.said();
    EXPECT_EQ(service.said(), "perf-measure: metrics at http://[::1]:" + std::to_string(service.port()) + "/metrics\n");
    EXPECT_EQ(body_of(ask(service.port(), request_text("GET /metrics", WANTS_OPENMETRICS), true)),
              read_file(PM_METRICS "/small.openmetrics"));
}

// No store, then one, then a damaged one, then a good one again.
TEST_F(MetricsServer, SaysWhyAStoreCannotBeReadAndGoesOn) {
    const metrics_service service("lmdb:" + store_.path() + "/later");
    const auto answer = [&] { return ask(service.port(), request_text("GET /metrics", WANTS_OPENMETRICS)); };
    const std::string missing = answer();
    EXPECT_EQ(status_of(missing), "HTTP/1.1 503 Service Unavailable");
    EXPECT_TRUE(body_of(missing).starts_with("perf-measure: there is no store at lmdb:" + store_.path() + "/later"))
        << missing;
    const std::string later = store_.path() + "/later";
    ASSERT_EQ(run_command("perf-store load " PM_METRICS_QUOTED "/small.ndjson", later).status, 0);
    EXPECT_EQ(status_of(answer()), "HTTP/1.1 200 OK");
    ASSERT_EQ(
        run_command("cp " + later + "/data.mdb " + later + "/good; truncate -s 5000 " + later + "/data.mdb", later)
            .status,
        0);
    const std::string damaged = answer();
    EXPECT_EQ(status_of(damaged), "HTTP/1.1 503 Service Unavailable");
    EXPECT_TRUE(has(body_of(damaged), "Store is damaged")) << damaged;
    ASSERT_EQ(run_command("cp " + later + "/good " + later + "/data.mdb", later).status, 0);
    EXPECT_EQ(body_of(answer()), read_file(PM_METRICS "/small.openmetrics"));
}

// The inventory and the items of a later load are seen.
TEST_F(MetricsServer, SeesWhatChanges) {
    load_small();
    const metrics_service service(url());
    EXPECT_FALSE(has(ask(service.port(), request_text("GET /metrics")), "lc9"));
    write_file(store_.path() + "/more", R"({"node":{"id":99,"name":"lc9","sw_state":1}})");
    load("load " + store_.path() + "/more");
    EXPECT_TRUE(has(ask(service.port(), request_text("GET /metrics")), "perf_node_up{node=\"lc9\"} 0\n"));
}

TEST_F(MetricsServer, AnswersAHundredAtATime) {
    load_small();
    const metrics_service service(url());
    const std::string expected = read_file(PM_METRICS "/small.openmetrics");
    std::atomic<int> good = 0;
    std::vector<std::thread> clients;
    for (int i = 0; i < 100; ++i) {
        clients.emplace_back([&] {
            good += body_of(ask(service.port(), request_text("GET /metrics", WANTS_OPENMETRICS))) == expected ? 1 : 0;
        });
    }
    for (std::thread &each : clients) {
        each.join();
    }
    EXPECT_EQ(good, 100);
}

// Several clients that ask and never read, more than there are readers of the store; each response is larger than what
// the sockets and pipes on its way hold. Another client does not wait for them.
TEST_F(MetricsServer, DoesNotWaitForSlowClients) {
    ASSERT_EQ(
        run_command("perf-store gen --endpoints 15000 --policies 0 --interfaces 0 --tunnels 0 | perf-store load -",
                    store_.path())
            .status,
        0);
    metrics_service service(url());
    std::vector<int> slow;
    for (int i = 0; i < 10; ++i) {
        slow.push_back(connect_to(service.port()));
        ASSERT_GE(slow.back(), 0);
        const std::string request = request_text("GET /metrics");
        ASSERT_GT(write(slow.back(), request.data(), request.size()), 0);
    }
    const int idle = connect_to(service.port());  // and one that says nothing
    const auto begin = std::chrono::steady_clock::now();
    const std::string body = body_of(ask(service.port(), request_text("GET /metrics", WANTS_OPENMETRICS)));
    [[maybe_unused]] const auto taken = std::chrono::steady_clock::now() - begin;
    EXPECT_TRUE(body.ends_with("# EOF\n"));
    EXPECT_GT(body.size(), 10'000'000U);
#ifndef PM_SANITIZE                             // which makes the text itself take seconds
    EXPECT_LT(taken, std::chrono::seconds(9));  // less than what cuts slow ones off
#endif
    // The end does not wait for them either.
    const auto end = std::chrono::steady_clock::now();
    EXPECT_EQ(service.end_by(SIGTERM), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - end, std::chrono::seconds(6));
    for (const int each : slow) {
        close(each);
    }
    close(idle);
}

TEST_F(MetricsServer, EndsBySignals) {
    load_small();
    for (const int signal : {SIGTERM, SIGINT}) {
        metrics_service service(url());
        EXPECT_EQ(status_of(ask(service.port(), request_text("GET /metrics"))), "HTTP/1.1 200 OK");
        EXPECT_EQ(service.end_by(signal), 0);
    }
}

TEST_F(MetricsServer, SaysThatAnAddressIsTaken) {
    const metrics_service service(url());
    const std::string place = "127.0.0.1:" + std::to_string(service.port());
    const command_result second = run_command("perf-measure metrics --listen " + place, store_.path());
    EXPECT_EQ(second.err, "perf-measure: cannot listen on " + place + ": Address already in use\n");
    EXPECT_EQ(second.status, 1);
}

}  // namespace
