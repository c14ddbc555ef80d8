// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/control_code.h"

#include "pm_utils/name_table.h"

namespace {

constexpr pm_name CONTROL_CODES[] = {
    {1, "Success"},
    {2, "Data Format Invalid"},
    {3, "Initialization in Progress"},
    {4, "Data Reset Occurred"},
    {5, "Resource Temporarily Unavailable"},
    // 6 to 12 have no name
    {13, "Probe not running due to High Link PPS"},  // not of RFC 6374
    // 14 and 15 have no name
    {16, "Unspecified Error"},
    {17, "Unsupported Version"},
    {18, "Unsupported Control Code"},
    {19, "Unsupported Data Format"},
    {20, "Authentication Failure"},
    {21, "Invalid Destination Node Identifier"},
    {22, "Connection Mismatch"},
    {23, "Unsupported Mandatory TLV Object"},
    {24, "Unsupported Query Interval"},
    {25, "Administrative Block"},
    {26, "Resource Unavailable"},
    {27, "Resource Released"},
    {28, "Invalid Message"},
    {29, "Protocol Error"},
};

}  // namespace

const char *pm_control_code_str(std::uint32_t code) {
    return pm_name_of(CONTROL_CODES, code & 0xFF, "Unknown control code");
}
