// SPDX-License-Identifier: Apache-2.0
// A Prometheus server reads the service, and answers with what it has read. The example's alert rules and dashboard ask
// for metrics that exist.
#include <algorithm>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>

#include "perf-measure/metrics/metric_table.h"
#include "tests/perf-measure/support/metrics_service.h"
#include "tests/perf-measure/support/programs.h"

namespace {

using namespace perf_measure;

// A port that was free a moment ago.
int free_port() {
    const int taken = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(taken, reinterpret_cast<sockaddr *>(&address), size), 0);
    EXPECT_EQ(getsockname(taken, reinterpret_cast<sockaddr *>(&address), &size), 0);
    close(taken);
    return ntohs(address.sin_port);
}

// A server that scrapes one service every second; it and its data go with the test.
class prometheus_server {
public:
    explicit prometheus_server(int scraped) : port_(free_port()) {
        write_file(folder_.path() + "/prometheus.yaml",
                   "global: {scrape_interval: 1s}\n"
                   "scrape_configs:\n"
                   "  - job_name: perf-measure\n"
                   "    static_configs: [{targets: ['127.0.0.1:" +
                       std::to_string(scraped) + "']}]\n");
        process_ = fork();
        if (process_ == 0) {
            const int log = open((folder_.path() + "/log").c_str(), O_WRONLY | O_CREAT, 0600);
            dup2(log, STDOUT_FILENO);
            dup2(log, STDERR_FILENO);
            execl(PROMETHEUS, "prometheus", ("--config.file=" + folder_.path() + "/prometheus.yaml").c_str(),
                  ("--storage.tsdb.path=" + folder_.path() + "/data").c_str(),
                  ("--web.listen-address=127.0.0.1:" + std::to_string(port_)).c_str(), nullptr);
            std::_Exit(127);
        }
    }
    ~prometheus_server() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    prometheus_server(const prometheus_server &) = delete;
    prometheus_server &operator=(const prometheus_server &) = delete;

    // The value of the one series that an expression has now, as text; "" when there is none or several.
    [[nodiscard]] std::string value_of(const std::string &expression) const {
        std::string encoded;
        for (const char letter : expression) {
            char code[8];
            std::snprintf(code, sizeof code, "%%%02X", static_cast<unsigned char>(letter));
            encoded += code;
        }
        const std::string response = ask(port_, request_text("GET /api/v1/query?query=" + encoded));
        const std::regex value(R"re("value":\[[0-9.]+,"([^"]*)"\])re");
        const std::sregex_iterator found(response.begin(), response.end(), value);
        return std::distance(found, {}) == 1 ? (*found)[1].str() : "";
    }
    [[nodiscard]] bool becomes(const std::string &expression, const std::string &value) const {
        for (int tries = 0; tries < 300; ++tries) {
            if (value_of(expression) == value) {
                return true;
            }
            usleep(100'000);
        }
        return false;
    }
    [[nodiscard]] std::string log() const { return read_file(folder_.path() + "/log"); }

private:
    temporary_folder folder_;
    int port_;
    pid_t process_ = -1;
};

TEST(Prometheus, ReadsTheServiceAndAnswersWithItsValues) {
    const temporary_folder store;
    ASSERT_EQ(run_command("perf-store load " PM_METRICS_QUOTED "/small.ndjson", store.path()).status, 0);
    const metrics_service service("lmdb:" + store.path());
    const prometheus_server server(service.port());
    ASSERT_TRUE(server.becomes("up", "1")) << server.log();
    const std::string lines = run_command("grep -cv '^#' " PM_METRICS_QUOTED "/small.openmetrics", store.path()).out;
    EXPECT_EQ(server.value_of("scrape_samples_scraped") + '\n', lines);
    EXPECT_EQ(server.value_of(R"(perf_delay_average_seconds{family="interface",session="7"})"), "0.0015");
    EXPECT_EQ(server.value_of(R"(perf_packets_sent_total{name="eth0/1/0/4"})"), "100");
    EXPECT_EQ(server.value_of(R"(perf_liveness_up{name="p\"1\\",session="1"})"), "0");
    EXPECT_EQ(server.value_of(R"(perf_publisher_state{node="lc1",perf_publisher_state="stopped"} == 1)"), "1");
    EXPECT_EQ(server.value_of("sum(perf_node_up)"), "1");
    EXPECT_EQ(server.value_of("count(perf_packet_errors_total)"), "3");
    // A store that goes is seen.
    ASSERT_EQ(run_command("mv " + store.path() + "/data.mdb " + store.path() + "/away", store.path()).status, 0);
    EXPECT_TRUE(server.becomes("up", "0")) << server.log();
}

// The names of all samples.
std::set<std::string> sample_names() {
    std::set<std::string> names;
    for (std::size_t group = 0; group < METRIC_GROUPS; ++group) {
        for (const metric &each : metrics_of(static_cast<metric_group>(group))) {
            names.insert(std::string(each.name) + (each.type == metric_type::counter ? "_total" : ""));
        }
    }
    return names;
}

std::set<std::string> names_in(const std::string &file) {
    const std::string text = read_file(file);
    const std::regex name(R"(\bperf_[a-z_]+)");
    std::set<std::string> names;
    for (std::sregex_iterator each(text.begin(), text.end(), name); each != std::sregex_iterator(); ++each) {
        names.insert(each->str());
    }
    return names;
}

TEST(Examples, AskForMetricsThatExist) {
    const std::set<std::string> all = sample_names();
    for (const char *const file : {"/alerts.yaml", "/dashboard.json"}) {
        const std::set<std::string> asked = names_in(std::string(PM_EXAMPLES) + file);
        EXPECT_GT(asked.size(), 5U) << file;
        for (const std::string &each : asked) {
            EXPECT_TRUE(all.contains(each)) << file << ": " << each;
        }
    }
}

// Each metric is on the page, and what the page has exists.
TEST(Examples, PageOfMetricsHasEveryOne) {
    std::set<std::string> documented = names_in(PM_METRICS_PAGE);
    EXPECT_EQ(documented, sample_names());
}

TEST(Examples, OfAlertsAndConfigurationAreValid) {
    const temporary_folder work;
    const command_result checked = run_command(
        "cd " + work.path() +
            " && cp " PM_EXAMPLES_QUOTED "/*.yaml " PM_METRICS_QUOTED
            "/alerts_test.yaml . && promtool check config prometheus.yaml && promtool check rules alerts.yaml && "
            "promtool test rules alerts_test.yaml",
        work.path());
    EXPECT_EQ(checked.status, 0) << checked.out << checked.err;
}

TEST(Examples, OfADashboardIsJsonWithPanelsThatQuery) {
    const temporary_folder work;
    const command_result read = run_command(
        "jq -r '.panels[] | select((.targets | length) == 0 or any(.targets[]; "
        ".expr == \"\")) | .title' " PM_EXAMPLES_QUOTED
        "/dashboard.json; jq '[.panels[].id] | length - (unique | length)' " PM_EXAMPLES_QUOTED "/dashboard.json",
        work.path());
    EXPECT_EQ(read.out, "0\n") << read.err;
}

}  // namespace
