// SPDX-License-Identifier: Apache-2.0
// From packets to printed text: the shows of interfaces, endpoints and sessions.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/perf-probed/support/shows.h"

namespace {

using namespace shown;

class session_shows_test : public shows_test {};

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

TEST_F(session_shows_test, interfaces) {
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

TEST_F(session_shows_test, interfaces_as_a_table) {
    expect("-c 1 -b", R"( Interface Name                Tx/Rx            Avg/Min/Max/Variance (uSec)
 --------------------------------------------------------------------------------------------------------------------------------------------------------------
 lo                            5/5              <n>/<n>/<n>/<n>
)");
}

TEST_F(session_shows_test, counters_of_interfaces) {
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

TEST_F(session_shows_test, histories_of_endpoints) {
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

TEST_F(session_shows_test, histories_of_interfaces) {
    expect_history(service_, "-c 4 -t 3",
                   "Interface Name: lo (ifh: 0x1)\nDelay-Measurement history (uSec):\n"
                   "  Probe Start Timestamp     Pkt(TX/RX)   Average       Min       Max\n",
                   "  <t>         5/5 <_><n> <_><n> <_><n>", 2);
    expect_history(service_, "-c 5 -t 3",
                   "Interface Name: lo (ifh: 0x1)\nDelay-Measurement history (uSec):\n"
                   "  Aggregation Timestamp       Average       Min       Max\n",
                   "  <t> <_><n> <_><n> <_><n>", 1);
}

TEST_F(session_shows_test, advertisement_histories_begin_with_the_first_one) {
    for (const std::string &arguments : {std::string("-c 20 -t 29 -i v4"), std::string("-c 20 -t 3 -i lo")}) {
        const std::string shown = service_->show(arguments).out;
        const std::size_t head = shown.find("Advertisement Timestamp     Average       Min       Max        Reason\n");
        ASSERT_NE(head, std::string::npos) << shown;
        const std::string row = lines_of(shown.substr(head)).at(1);
        EXPECT_TRUE(line_matches(row, "<_><t> <_><n> <_><n> <_><n>         FIRST")) << row;
    }
}

TEST_F(session_shows_test, sessions) {
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

TEST_F(session_shows_test, probe_sessions) {
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

TEST_F(session_shows_test, endpoints) {
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

TEST_F(session_shows_test, counters_of_endpoints) {
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

}  // namespace
