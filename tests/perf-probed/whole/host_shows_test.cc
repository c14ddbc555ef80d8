// SPDX-License-Identifier: Apache-2.0
// From packets to printed text: the shows of the host as a whole.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/perf-probed/support/shows.h"

namespace {

using namespace shown;

class host_shows_test : public shows_test {};

TEST_F(host_shows_test, the_responder) {
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

TEST_F(host_shows_test, packet_rates) {
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

TEST_F(host_shows_test, capabilities) {
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

TEST_F(host_shows_test, allowed_queriers_and_responders) {
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

TEST_F(host_shows_test, profiles) {
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
    Tx interval                                 : 20000 uSec
      Effective for SR policy                   : 0 uSec
      Effective for Endpoint                    : 20000 uSec
      Effective for interface                   : 20000 uSec
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

TEST_F(host_shows_test, all_profiles) {
    const std::string shown = service_->show("-c 23").out;
    const std::size_t delay = shown.find("Generic Delay Measurement Profile Name: quick\n");
    const std::size_t liveness = shown.find("Generic Liveness Detection Profile Name: alive\n");
    EXPECT_LT(delay, liveness) << shown;
    EXPECT_NE(liveness, std::string::npos) << shown;
}

// What is about checkpoints, messages between processes, tunnels, policies and line cards.
TEST_F(host_shows_test, what_a_host_does_not_have_is_absent) {
    for (const char *const command :
         {"-c 14", "-c 15", "-c 16", "-c 17", "-c 18", "-c 24", "-c 32", "-c 34", "-c 4 -t 19", "-c 27 -t 19"}) {
        const command_result shown = service_->show(command);
        EXPECT_EQ(shown.status, 0) << command;
        EXPECT_EQ(shown.out.find(": "), std::string::npos) << command << "\n" << shown.out;  // no item has a line
    }
}

TEST_F(host_shows_test, the_process_and_whom_it_works_with) {
    const std::string shown = service_->show("-c 13").out;
    for (const char *const line :
         {"  Current process role : Primary Active (Master)\n", "  Current process state: Run\n",
          "    IM                  Up   (", "    UDP V4 SOCKET       Up   (", "    UDP V6 SOCKET       Up   (",
          "    OPSTORE             Up   (",
          "    Wait-Collab-Conn    Run                 Start Run Phase           N/A"}) {
        EXPECT_NE(shown.find(line), std::string::npos) << line << "\n" << shown;
    }
}

TEST_F(host_shows_test, the_summary_counts_sessions_by_kind) {
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

TEST_F(host_shows_test, the_receive_path) {
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
