// Tests of pm_utils/not_running_reason.h.
#include "pm_utils/not_running_reason.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(NotRunningReason, ShortTextsFitATable) {
    expect_names(pm_not_running_reason_short_str,
                 {{0, "None"},
                  {1, "Platform not supported"},
                  {2, "Not on V1-active"},
                  {3, "Control code error"},
                  {4, "Interface admin down"},
                  {5, "Interface not MPLS capable"},
                  {6, "Interface not present"},
                  {7, "Missing IP address"},
                  {8, "Missing Next-hop address"},
                  {9, "Wrong next-hop address type"},
                  {10, "Missing port configure"},
                  {11, "Port failed to open"},
                  {12, "Does not support PM-MPLS protocol (RFC6374)"},
                  {13, "Unknown"},
                  {14, "Client process not ready"},
                  {15, "Missing reverse path"},
                  {16, "Rev_path exceed SID limit"},
                  {17, "Process not running"},
                  {18, "Suspended by exec command"},
                  {19, "Profile is not configured"},
                  {20, "Missing source address"},
                  {21, "Interface type not supported"},
                  {22, "Non-default VRF is not supported"},
                  {23, "Interface down"},
                  {24, "Invalid non-existing vrf"},
                  {25, "Invalid source address"},
                  {26, "Invalid/Empty SL"},
                  {27, "SL dampening enabled"},
                  {28, "IPv4 protocol is down"},
                  {29, "IPv6 protocol is down"},
                  {30, "Both IPv4 and IPv6 protocol down"},
                  {31, "Missing next hop MAC address"},
                  {32, "Loopback mode unsupported"},
                  {33, "Src port failed to open"},
                  {34, "Invalid reverse path"},
                  {35, "Source address family mismatch"},
                  {36, "SWFWD not ready"}},
                 "Unknown");
}

TEST(NotRunningReason, LongTextsExplain) {
    expect_names(pm_not_running_reason_str,
                 {{0, "None"},
                  {1, "Platform not supported"},
                  {2, "Session only ran on V1-active"},
                  {3, "Control code error"},
                  {4, "Interface admin down"},
                  {5, "Interface is not MPLS capable"},
                  {6, "Interface not present or preconfigured"},
                  {7, "IP address is not configured"},
                  {8, "Next-hop address is required to be configured under the PM interface"},
                  {9, "Wrong next-hop address type under the PM interface"},
                  {10, "Missing protocol querier-dst-port configuration"},
                  {11, "Protocol querier-dst-port failed to open"},
                  {12, "Does not support PM-MPLS protocol (RFC6374)"},
                  {13, "Unknown"},
                  {14, "The client process is not ready"},
                  {15, "Missing reverse path for loopback measurement mode"},
                  {16, "Reverse path exceed SID limit"},
                  {17, "Process is not in run state"},
                  {18, "Measurement has been suspended by exec command"},
                  {19, "Profile is not configured"},
                  {20, "Missing source address configuration"},
                  {21, "Interface type not supported"},
                  {22, "Non-default VRF is not supported"},
                  {23, "Interface down"},
                  {24, "Unable to resolve (non-existing) vrf"},
                  {25, "invalid source address (cannot be same as endpoint destination)"},
                  {26, "Invalid or empty Segment list"},
                  {27, "Segment list changed - Dampening enabled"},
                  {28, "IPv4 protocol is down"},
                  {29, "IPv6 protocol is down"},
                  {30, "Both IPv4 and IPv6 protocol down"},
                  {31, "Missing next hop MAC address"},
                  {32, "Loopback mode unsupported for IP Endpoint without segment list"},
                  {33, "Protocol querier-src-port failed to open"},
                  {34, "Invalid reverse path segment list for loopback mode"},
                  {35, "Source address incompatible with Endpoint address family or Segment-list type"},
                  {36, "SWFWD not ready"}},
                 "Unknown");
}

std::int32_t error_class(std::int32_t reason) {
    return pm_not_running_reason_error_class(static_cast<pm_probe_running_error_reason>(reason));
}

TEST(NotRunningReason, ReasonsWithACounterHaveItsClass) {
    EXPECT_EQ(error_class(4), 2);
    EXPECT_EQ(error_class(23), 2);
    EXPECT_EQ(error_class(5), 3);
    EXPECT_EQ(error_class(7), 4);
    EXPECT_EQ(error_class(28), 5);
    EXPECT_EQ(error_class(29), 6);
    EXPECT_EQ(error_class(30), 7);
    EXPECT_EQ(error_class(31), 8);
    EXPECT_EQ(error_class(26), 9);
}

TEST(NotRunningReason, AllOtherReasonsAreInClassOne) {
    for (const std::int32_t reason : {-1, 0,  1,  2,  3,  6,  8,  9,  10, 11, 12, 13, 14, 15, 16,        17,
                                      18, 19, 20, 21, 22, 24, 25, 27, 32, 33, 34, 35, 36, 37, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(error_class(reason), 1) << "for the reason " << reason;
    }
}

TEST(NotRunningReason, WaitingForProtocolsOrNextHopIsNotHard) {
    expect_answers(pm_not_running_reason_is_hard, {0, 28, 29, 30, 31}, false);
}

TEST(NotRunningReason, EightReasonsAreNotReportable) {
    expect_answers(pm_not_running_reason_is_reportable, {0, 14, 18, 28, 29, 30, 31, 33}, false);
}

TEST(NotRunningReason, DampeningAndForwardingStartAreTransient) {
    expect_answers(pm_not_running_reason_is_transient, {27, 36}, true);
}

TEST(NotRunningReason, NoReasonIsPermanent) { expect_answers(pm_not_running_reason_is_permanent, {}, true); }

}  // namespace
