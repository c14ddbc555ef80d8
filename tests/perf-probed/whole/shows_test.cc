// SPDX-License-Identifier: Apache-2.0
// From packets to printed text: every show that makes sense on a host, of a service that measures itself over the
// loopback interface. What differs from run to run is written as a pattern: <n> a number, <t> a time stamp, <w> a wait
// or an age, <p> a port, <r> the reason of an advertisement, <c> when the next check is due, <a> the delays of its
// interval so far, <_> blanks; trailing blanks do not count. Everything else is compared byte for byte.
#include <cctype>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

#include "tests/perf-probed/support/live.h"

namespace {

constexpr char CONFIG[] = R"(node: {name: h, id: 1}
clock: {error: 10 ms}
packet-rate: 1000
reflector:
  listen: [{address: 127.0.0.1, port: 18790}, {address: "::1", port: 18790}]
  allowed-queriers: [127.0.0.0/8, "::1"]
allowed-responders: [127.0.0.1, "::1"]
profiles:
  - {name: quick, kind: delay, computation-interval: 1 s, tx-interval: 100 ms, burst-count: 5, response-timeout: 200 ms,
     advertisement: {periodic: {interval: 2 s, threshold: 10, minimum-change: 1 us},
                     accelerated: {threshold: 20, minimum-change: 500 us}}}
  - {name: alive, kind: liveness, tx-interval: 200 ms, multiplier: 4}
endpoints:
  - {name: v4, description: Over IPv4, address: 127.0.0.1, port: 18790, delay: quick, liveness: alive, probe: true}
  - {name: v6, address: "::1", port: 18790, delay: quick}
interfaces:
  - {name: lo, next-hop: 127.0.0.1, port: 18790, delay: quick}
)";

std::string escaped(const std::string &text) {
    static const std::regex special(R"([.^$|()\[\]{}*+?\\])");
    return std::regex_replace(text, special, R"(\$&)");
}

std::string replaced(std::string text, const std::string &what, const std::string &with) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
        text.replace(at, what.size(), with);
    }
    return text;
}

bool line_matches(const std::string &line, const std::string &pattern) {
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

std::vector<std::string> lines_of(const std::string &text) {
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
std::vector<std::string> body_of(const std::string &printed) {
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
std::string difference(const std::string &printed, const std::string &patterns) {
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
        // In the second half of a second nothing is sent, and by the fourth one an interval is over.
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

    static live_service *service_;
};
live_service *shows_test::service_ = nullptr;

// A delay session after a few computations, as it is printed at an indent of two blanks.
constexpr char SESSION[] = R"(    Last advertisement:
      Advertised at: <t> (<w> seconds ago)
      Advertised reason: <r>
      Advertised delays (uSec): avg: <n>, min: <n>, max: <n>, variance: <n>
      A flag set: False

    Next advertisement:
      <c>(roughly every 2 seconds)
      <a>
      Rolling average (uSec): <n>

    Current computation:
      Started at: <t> (<w> seconds ago)
      Packets Sent: 5, received: 5
      Measured delays (uSec): avg: <n>, min: <n>, max: <n>, variance: <n>
      Next probe scheduled at: <t> (in <w> seconds)
      TX completed
      Responder IP            : 127.0.0.1
      Number of Hops          : 0
)";

constexpr char KEYS[] = R"(  Profile Keys:
    Profile name              : quick
    Profile type              : Generic Delay Measurement
)";

TEST_F(shows_test, interfaces) {
    expect("-c 1 -i lo", std::string(R"(Interface Name: lo (ifh: 0x1)
  Delay-Measurement                 : Enabled
  Loss-Measurement                  : Disabled
  Path-Tracing                      : Disabled
  Configured IPv4 Address           : 127.0.0.1
  Configured IPv6 Address           : ::1
  Link Local IPv6 Address           : ::
  Configured Next-hop Address       : 127.0.0.1
  Local MAC Address                 : 0000.0000.0000
  Next-hop MAC Address              : 0000.0000.0000
  In-use Source Address             : 127.0.0.1
  In-use Destination Address        : 127.0.0.1
  Primary VLAN Tag                  : None
  Secondary VLAN Tag                : None
  State                             : Up

  Delay Measurement session:
    Session ID          : 5
    Profile Keys:
      Profile name      : quick
      Profile type      : Generic Delay Measurement
)") + SESSION);
}

TEST_F(shows_test, interfaces_as_a_table) {
    expect("-c 1 -b", R"( Interface Name                Tx/Rx            Avg/Min/Max/Variance (uSec)
 --------------------------------------------------------------------------------------------------------------------------------------------------------------
 lo                            5/5              <n>/<n>/<n>/<n>
)");
}

TEST_F(shows_test, counters_of_interfaces) {
    expect("-c 2", R"(Interface Name: lo (ifh: 0x1)
  Delay-Measurement:
    Packets:
      Total sent                                : <n>
      Total received                            : <n>
    Errors:
      Total sent errors                         : 0
      Total received errors                     : 0
    Probes:
      Total started                             : <n>
      Total completed                           : <n>
      Total incomplete                          : 0
      Total advertisements                      : <n>
)");
}

// A history of as many rows as there are by now.
void expect_history(live_service *service, const std::string &arguments, const std::string &head,
                    const std::string &row, std::size_t least_rows) {
    const std::vector<std::string> lines = body_of(service->show(arguments).out);
    const std::vector<std::string> expected = lines_of(head);
    ASSERT_GE(lines.size(), expected.size() + least_rows) << service->show(arguments).out;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const std::string &pattern = index < expected.size() ? expected[index] : row;
        EXPECT_TRUE(line_matches(lines[index], pattern)) << lines[index] << "\nexpected: " << pattern;
    }
}

constexpr char ENDPOINT_HEAD[] = R"(Endpoint name: v4
  vrf                         : default
  endpoint                    : 127.0.0.1
  source                      : 127.0.0.1

  Segment-List              : None
)";

TEST_F(shows_test, histories_of_endpoints) {
    expect_history(service_, "-c 4 -t 29 -i v4",
                   std::string(ENDPOINT_HEAD) +
                       "    Delay-Measurement history (uSec):\n"
                       "      Probe Start Timestamp     Pkt(TX/RX)   Average       Min       Max\n",
                   "      <t>         5/5 <_><n> <_><n> <_><n>", 2);
    expect_history(service_, "-c 5 -t 29 -i v4",
                   std::string(ENDPOINT_HEAD) +
                       "    Delay-Measurement history (uSec):\n"
                       "      Aggregation Timestamp       Average       Min       Max\n",
                   "      <t> <_><n> <_><n> <_><n>", 1);
    expect_history(service_, "-c 27 -t 29 -i v4",
                   std::string(ENDPOINT_HEAD) +
                       "    Liveness-Detection history:\n"
                       "      Liveness state change timestamp      New State\n",
                   "      <t>                    UP", 1);
}

TEST_F(shows_test, histories_of_interfaces) {
    expect_history(service_, "-c 4 -t 3",
                   "Interface Name: lo (ifh: 0x1)\nDelay-Measurement history (uSec):\n"
                   "  Probe Start Timestamp     Pkt(TX/RX)   Average       Min       Max\n",
                   "  <t>         5/5 <_><n> <_><n> <_><n>", 2);
    expect_history(service_, "-c 5 -t 3",
                   "Interface Name: lo (ifh: 0x1)\nDelay-Measurement history (uSec):\n"
                   "  Aggregation Timestamp       Average       Min       Max\n",
                   "  <t> <_><n> <_><n> <_><n>", 1);
}

TEST_F(shows_test, advertisement_histories_begin_with_the_first_one) {
    for (const std::string &arguments : {std::string("-c 20 -t 29 -i v4"), std::string("-c 20 -t 3 -i lo")}) {
        const std::string shown = service_->show(arguments).out;
        const std::size_t head = shown.find("Advertisement Timestamp     Average       Min       Max        Reason\n");
        ASSERT_NE(head, std::string::npos) << shown;
        const std::string row = lines_of(shown.substr(head)).at(1);
        EXPECT_TRUE(line_matches(row, "<_><t> <_><n> <_><n> <_><n>         FIRST")) << row;
    }
}

TEST_F(shows_test, sessions) {
    std::string session = replaced(SESSION, "\n  ", "\n");
    const std::string head = R"(Transport type              : Endpoint
Measurement type            : Delay Measurement
Endpoint name               : v4
endpoint                    : 127.0.0.1
source                      : 127.0.0.1
vrf                         : default
Segment-list                : None
Liveness Detection: Disabled
Delay Measurement session:
  Session ID          : 1
)";
    session = replaced(session, "\n  Current computation:", "\n    Current computation:");  // its indent is fixed
    session = replaced(replaced(session, "Responder IP ", "Responder IP   "), "Number of Hops ", "Number of Hops   ");
    expect("-c 6 -s 1", head + session.substr(2));
    expect("-c 6 -s 2", R"(Transport type              : Endpoint
Measurement type            : Liveness Detection
Endpoint name               : v4
endpoint                    : 127.0.0.1
source                      : 127.0.0.1
vrf                         : default
Segment-list                : None
Liveness Detection: Enabled
  Session ID          : 2
  Profile Keys:
    Profile name        : alive
    Profile type        : Generic Liveness Detection
  Session State: Up
  Last State Change Timestamp: <t>
  Missed count: 0
)");
}

TEST_F(shows_test, probe_sessions) {
    expect("-c 35", R"(Transport type              : Endpoint
Measurement type            : Probe
Endpoint name               : v4
endpoint                    : 127.0.0.1
source                      : Unknown
vrf                         : default
Segment-list                : None
Path Assurance session:
  Session ID          : 3
  Profile Keys:
    Profile name        : Not configured
    Profile type        : N/A
  Current status:
    Packet sent every 30.0 seconds
    Next packet will be sent in <w> seconds
)");
}

TEST_F(shows_test, endpoints) {
    expect("-c 26 -i v4 -h 0", std::string(R"(Endpoint name: v4
  Source address              : 127.0.0.1
  Destination Port            : 18790
  Source Port                 : <p>
  VRF name                    : default
  Delay-measurement           : Enabled
  Description                 : Over IPv4
)") + KEYS + R"(
  Segment-list                : None
  Delay Measurement session:
    Session ID          : 1
)" + SESSION);
    expect("-c 26 -i v4 -h 2", R"(Endpoint name: v4
  Source address              : 127.0.0.1
  VRF name                    : default
  Liveness Detection          : Enabled
  Profile Keys:
    Profile name              : alive
    Profile type              : Generic Liveness Detection
  Segment-list                : None
  Liveness Detection session:
    Session ID                : 2
    Flow-label                : 0
    Session State: Up
    Last State Change Timestamp: <t>
    Missed count: 0
)");
    expect("-c 26 -i v6 -b -h 0",
           " Endpoint Name(64 char) <_>SL Name(32 char) <_>Tx/Rx <_>Avg/Min/Max/Variance (uSec)\n"
           " ----------------------------------------------------------------------------------------------------------"
           "----"
           "------------------------------------------------\n"
           " v6 <_>None <_>5/5 <_><n>/<n>/<n>/<n>\n");
}

TEST_F(shows_test, counters_of_endpoints) {
    expect("-c 28 -i v4 -d", R"(Endpoint name: v4
    Segment-List              : None
      Packets:
        Total sent                              : <n>
        Total received                          : <n>
      Errors:
          TX:
            Reason missing segment list labels  : 0
          RX:
            Reason negative delay               : 0
            Reason delay threshold exceeded     : 0
            Reason missing TX timestamp         : 0
            Reason missing RX timestamp         : 0
            Reason probe full                   : 0
            Reason probe not started            : 0
            Reason control code error           : 0
            Reason control code notif           : 0
      Probes:
        Total started                           : <n>
        Total completed                         : <n>
        Total incomplete                        : 0
        Total advertisements                    : <n>
        Total liveness missed count             : 0
      Packets:
        Total sent                              : <n>
        Total received                          : <n>
      Errors:
          TX:
            Reason missing segment list labels  : 0
            Reason other                        : 0
          RX:
            Reason negative delay               : 0
            Reason delay threshold exceeded     : 0
            Reason missing TX timestamp         : 0
            Reason missing RX timestamp         : 0
            Reason probe full                   : 0
            Reason probe not started            : 0
      Probes:
        Total started                           : 0
        Total completed                         : 0
        Total incomplete                        : 0
        Total advertisements                    : 0
        Total liveness missed count             : 0
)");
}

TEST_F(shows_test, the_responder) {
    expect("-c 7", R"(Interface Name: lo
  Interface Handle          : 0x1
  Configured IPv4 Address   : 127.0.0.1
  Configured IPv6 Address   : ::1
  Link Local IPv6 Address   : ::
  Current rate              : <n> pkts/sec
  Rate high water mark      : <n> pkts/sec
  Cleanup time remaining    : 3599 sec
)");
    const std::string counters = R"(  Total query packets received                  : <n>
  Total reply packets sent                      : <n>
  Total reply packets sent errors               : 0
  Total URO TLV not present errors              : 0
  Total invalid port number errors              : 0
  Total no source address errors                : 0
  Total no return path errors                   : 0
  Total unsupported querier control code errors : 0
  Total unsupported timestamp format errors     : 0
  Total timestamp not available errors          : 0
  Total unsupported mandatory TLV errors        : 0
  Total invalid packet errors                   : 0
)";
    expect("-c 8", "Interface Name: lo\n  Delay-Measurement:\n  " +
                       replaced(counters.substr(0, counters.size() - 1), "\n", "\n  ") + "\n");
    expect("-c 10", "Delay-Measurement:\n  Total interfaces                              : 1\n" + counters +
                        "  Current rate                                  : <n> pkts/sec\n"
                        "  Rate high water mark                          : <n> pkts/sec\n");
}

TEST_F(shows_test, packet_rates) {
    // Two endpoints with five packets a second each, five for liveness and one in thirty seconds; an interface with
    // five.
    const std::vector<std::string> lines = body_of(service_->show("-c 30").out);
    const std::vector<std::string> expected =
        lines_of(R"(  PPS Pool type                                 : Single PPS Pool

  Total PPS Limit                               : 1000
  Total PPS Requested                           : 21

    Interface Sessions:
      Total PPS Budget                          : 250
      Total PPS Requested                       : 5
      Total PPS Effectively In-use              : 5
      PPS Budget Usage                          : 0%
      In-use TX Interval Stretched Factor       : 100%
)");
    ASSERT_GE(lines.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        EXPECT_EQ(lines[index], expected[index]);
    }
}

TEST_F(shows_test, capabilities) {
    expect("-c 31", R"(Performance-measurement capability:
  Performance-Measurement                       : Supported

  Local hardware capability:
  SWFWD Inject                                  : Supported
    Max inject PPS                              : 1000
    Min inject interval                         : 1000 usec
  KPKT Inject                                   : Supported
  KPKT TWAMP Inject                             : Supported
    Max inject PPS                              : 1000
    Min inject interval                         : 1000 usec
  PD-DLL Inject/Punt                            : Not Supported
  Platform NPU Offload                          : Not Supported
  Local Node NPU Offload                        : Not Supported
  Remote Punt                                   : Not Supported
  Linecard Distribution                         : Not Supported
  Max Timestamp Offset                          : Unlimited
  Hardware Timestamp                            : Not Supported
)");
}

TEST_F(shows_test, allowed_queriers_and_responders) {
    expect("-c 36", R"(Allowed-querier IPv4 prefix                                 : 1
  127.0.0.0/8
Allowed-querier IPv6 prefix                                 : 1
  ::1/128

RX UDP port status:
  TWAMP-Light Configured Unauthenticated responder port     : 18790
    Opened IPv4 port                                        : 18790
    IPv4 Port Update Time                                   : <t>
    Opened IPv6 port                                        : 18790
    IPv6 Port Update Time                                   : <t>
)");
    expect("-c 37", R"(Allowed-responder IPv4 prefix                               : 1
  127.0.0.1/32
Allowed-responder IPv6 prefix                               : 1
  ::1/128

Querier CPU UDP port status:
  TWAMP-Light Default Unauthenticated querier port          : <p>
    Opened IPv4 port                                        : <p>
    IPv4 Port Update Time                                   : <t>
    Opened IPv6 port                                        : <p>
    IPv6 Port Update Time                                   : <t>
)");
}

TEST_F(shows_test, profiles) {
    expect("-c 23 -P -D 0", R"(Generic Delay Measurement Profile Name: quick
  Profile configuration:
    Measurement mode:
      SR Policy                                 : Not-set
      Endpoint                                  : Two-way
      Interface                                 : Two-way
    Protocol type                               : TWAMP-light
    Encap mode                                  : UDP
    Type of service:
      PM-MPLS traffic class                     : 0
      TWAMP-light DSCP                          : 48
    Probe computation interval                  : 1 seconds
      Effective for SR policy                   : 0 seconds
      Effective for Endpoint                    : 1 seconds
      Effective for interface                   : 1 seconds
    Tx interval                                 : 100000 uSec
      Effective for SR policy                   : 0 uSec
      Effective for Endpoint                    : 100000 uSec
      Effective for interface                   : 100000 uSec
    Packets per computation interval:
      SR policy                                 : 0
      Endpoint                                  : 5
      Interface                                 : 5
    Periodic advertisement                      : Enabled
      Interval                                  : 2 sec
        Effective for SR policy                 : 0 sec
        Effective for Endpoint                  : 2 sec
        Effective for interface                 : 2 sec
      Threshold                                 : 10%
      Minimum-change                            : 1 uSec
    Accelerated advertisement                   : Enabled
      Threshold                                 : 20%
      Minimum-change                            : 500 uSec
    Anomaly advertisement                       : Disabled
    Advertisement logging:
      Delay exceeded                            : Disabled (default)
    Threshold crossing check:
      SR policy                                 :
      Endpoint                                  : Minimum-delay
      Interface                                 : Minimum-delay
    Router alert                                : Disabled (default)
    Destination sweeping mode                   : Disabled
    CPU session count:
)");
    expect("-c 23 -S -W 2 -T 3", R"(Endpoint Liveness Detection (default)
  Profile configuration:
    Measurement mode                            : Two-way
    Protocol type                               : TWAMP-light
    Type of service:
      TWAMP-light DSCP                          : 48
    Burst interval                              : 3000 (effective: 3000) mSec
    TX interval                                 : 3000000 (effective: 3000000) uSec
    Destination sweeping mode                   : Disabled
    Flow Label Count                            : 0
    Liveness detection parameters:
      Multiplier                                : 3
      Logging state change                      : Enabled
)");
}

TEST_F(shows_test, the_process_and_whom_it_works_with) {
    const std::string shown = service_->show("-c 13").out;
    for (const char *const line :
         {"  Current process role : Primary Active (Master)\n", "  Current process state: Run\n",
          "    IM                  Up   (", "    UDP V4 SOCKET       Up   (", "    UDP V6 SOCKET       Up   (",
          "    OPSTORE             Up   (",
          "    Wait-Collab-Conn    Run                 Start Run Phase           N/A"}) {
        EXPECT_NE(shown.find(line), std::string::npos) << line << "\n" << shown;
    }
}

TEST_F(shows_test, the_summary_counts_sessions_by_kind) {
    const std::string shown = service_->show("-c 9").out;
    for (const char *const lines :
         {"  Total interfaces with PM sessions             : 1\n",
          "  Total Endpoints with PM sessions              : 2\n",
          "    Interface Delay-Measurement:\n      Total sessions                            : 1\n"
          "        Total running sessions                  : 1\n        Total running IPv4 sessions             : 1\n"
          "        Total running IPv6 sessions             : 0\n",
          "    Endpoint Delay-Measurement:\n      Total sessions                            : 2\n"
          "        Total running sessions                  : 2\n        Total running IPv4 sessions             : 1\n"
          "        Total running IPv6 sessions             : 1\n",
          "    Endpoint Liveness Detection:\n      Total sessions                            : 1\n"
          "        Total running sessions                  : 1\n",
          "        Path-assurance sessions:\n          Total running sessions                : 1\n"}) {
        EXPECT_NE(shown.find(lines), std::string::npos) << lines << "\n" << shown;
    }
}

TEST_F(shows_test, the_receive_path) {
    const std::string shown = service_->show("-c 11").out;
    EXPECT_NE(shown.find("TWAMP-Light Unauthenticated delay responder destination ports:\n"
                         "  Configured port                               : 18790\n"
                         "  Opened IPv4 port                              : 18790\n"
                         "  Opened IPv6 port                              : 18790\n"),
              std::string::npos)
        << shown;
    EXPECT_EQ(shown.find("Total UDP IPv4 packets received                 : 0\n"), std::string::npos);
    EXPECT_EQ(shown.find("Total UDP IPv6 packets received                 : 0\n"), std::string::npos);
    EXPECT_NE(shown.find("Total UDP IPv4 packet errors received           : 0\n"), std::string::npos);
}

}  // namespace
