// SPDX-License-Identifier: Apache-2.0
// From packets to printed text: a service that measures itself over the loopback interface, and patterns for what
// differs from run to run: <n> a number, <t> a time stamp, <w> a wait or an age, <p> a port, <r> the reason of an
// advertisement, <c> when the next check is due, <a> the delays of its interval so far, <_> blanks. Trailing blanks do
// not count. Everything else is compared byte for byte.
#pragma once

#include <gtest/gtest.h>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/perf-probed/support/live.h"

namespace shown {

inline constexpr char CONFIG[] = R"(node: {name: h, id: 1}
clock: {error: 10 ms}
packet-rate: 1000
reflector:
  listen: [{address: 127.0.0.1, port: 18790}, {address: "::1", port: 18790}]
  allowed-queriers: [127.0.0.0/8, "::1"]
allowed-responders: [127.0.0.1, "::1"]
profiles:
  - {name: quick, kind: delay, computation-interval: 1 s, tx-interval: 20 ms, burst-count: 5, response-timeout: 200 ms,
     advertisement: {periodic: {interval: 2 s, threshold: 10, minimum-change: 1 us},
                     accelerated: {threshold: 20, minimum-change: 500 us}}}
  - {name: alive, kind: liveness, tx-interval: 200 ms, multiplier: 4}
endpoints:
  - {name: v4, description: Over IPv4, address: 127.0.0.1, port: 18790, delay: quick, liveness: alive, probe: true}
  - {name: v6, address: "::1", port: 18790, delay: quick}
interfaces:
  - {name: lo, next-hop: 127.0.0.1, port: 18790, delay: quick}
)";

inline std::string escaped(const std::string &text) {
    static const std::regex special(R"([.^$|()\[\]{}*+?\\])");
    return std::regex_replace(text, special, R"(\$&)");
}

inline std::string replaced(std::string text, const std::string &what, const std::string &with) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
        text.replace(at, what.size(), with);
    }
    return text;
}

inline bool line_matches(const std::string &line, const std::string &pattern) {
    std::string expression = escaped(pattern);
    expression = replaced(expression, "<n>", "[0-9]+");
    expression = replaced(expression, "<w>", "[0-9]+\\.[0-9]+");
    expression = replaced(expression, "<t>", "[A-Z][a-z]{2} [ 0-9]{2} 20[0-9]{2} [0-9:]{8}\\.[0-9]{3}");
    expression = replaced(expression, "<d>",
                          "[A-Z][a-z]{2} [A-Z][a-z]{2} [ 0-9]{2} [0-9:]{8} UTC 20[0-9]{2} \\([0-9]+d [0-9:]{8} ago\\)");
    expression = replaced(expression, "<p>", "[0-9]{4,5}");
    expression = replaced(expression, "<r>", "(First advertisement|Periodic timer, min delay threshold crossed)");
    expression = replaced(
        expression, "<a>",
        "(No probes completed|Aggregated delays \\(uSec\\): avg: [0-9]+, min: [0-9]+, max: [0-9]+, variance: [0-9]+)");
    expression =
        replaced(expression, "<c>",
                 "(Check scheduled at the end of the current computation|Threshold check scheduled in 1 more probe) ");
    return std::regex_match(line, std::regex(replaced(expression, "<_>", " *")));
}

inline std::vector<std::string> lines_of(const std::string &text) {
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    while (!lines.empty() && lines.back().empty()) {
        lines.pop_back();
    }
    return lines;
}

// The lines after the node's header.
inline std::vector<std::string> body_of(const std::string &printed) {
    std::vector<std::string> lines = lines_of(printed);
    std::size_t rules = 0;
    while (!lines.empty() && rules < 2) {
        rules += lines.front().starts_with("------") ? 1 : 0;
        lines.erase(lines.begin());
    }
    while (!lines.empty() && lines.front().empty()) {
        lines.erase(lines.begin());
    }
    return lines;
}

// Why the text does not match; empty when it does.
inline std::string difference(const std::string &printed, const std::string &patterns) {
    const std::vector<std::string> lines = body_of(printed);
    const std::vector<std::string> expected = lines_of(patterns);
    for (std::size_t index = 0; index < std::max(lines.size(), expected.size()); ++index) {
        if (index >= lines.size()) {
            return "missing: " + expected[index];
        }
        if (index >= expected.size()) {
            return "too much: " + lines[index];
        }
        if (!line_matches(lines[index], expected[index])) {
            return "line " + std::to_string(index + 1) + " is:  " + lines[index] + "\nexpected: " + expected[index];
        }
    }
    return "";
}

class shows_test : public testing::Test {
protected:
    static void SetUpTestSuite() {
        service_ = new live_service(CONFIG);
        // Packets are sent in the first tenth of each second only, so that most snapshots have whole computations.
        within(15, [] { return service_->shows("-c 5 -t 29 -i v4", "Aggregation Timestamp"); });
        pause(1.2);
    }
    static void TearDownTestSuite() {
        delete service_;
        service_ = nullptr;
    }

    // A service that measures on prints something else now and then, between two computations: a few tries are made.
    static void expect(const std::string &arguments, const std::string &patterns) {
        std::string wrong;
        command_result shown;
        within(6, [&] {
            shown = service_->show(arguments);
            wrong = difference(shown.out, patterns);
            return wrong.empty();
        });
        EXPECT_EQ(wrong, "") << "perf-show " << arguments << "\n" << shown.out << shown.err;
    }

    static inline live_service *service_ = nullptr;
};

}  // namespace shown
