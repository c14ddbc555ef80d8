// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/advert_reason.h.
#include "pm_utils/advert_reason.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(AdvertReason, LongTextsAreSentences) {
    expect_names(pm_advert_reason_str,
                 {{0, "No advertisements have occured"},
                  {1, "Periodic timer, avg delay threshold crossed"},
                  {2, "Periodic timer, min delay threshold crossed"},
                  {3, "Periodic timer, max delay threshold crossed"},
                  {4, "Periodic timer, delay variance threshold crossed"},
                  {5, "Accel threshold crossed, avg delay threshold crossed"},
                  {6, "Accel threshold crossed, min delay threshold crossed"},
                  {7, "Accel threshold crossed, max delay threshold crossed"},
                  {8, "Accel threshold crossed, avg delay upper-bound crossed"},
                  {9, "Accel threshold crossed, min delay upper-bound crossed"},
                  {10, "Accel threshold crossed, max delay upper-bound crossed"},
                  {11, "Min delay A flag toggled and dynamic delay is in effect"},
                  {12, "Min delay A flag toggled and static delay is in effect"},
                  {13, "Advertisement enabled"},
                  {14, "Advertisement disabled"},
                  {15, "Session deleted"},
                  {16, "Cleared through exec command"},
                  {17, "Advertise delay config"},
                  {18, "Advertise delay unconfig"},
                  {19, "Control code error"},
                  {20, "First advertisement"},
                  {21, "Link state changed to down"},
                  {22, "New child session"},
                  {23, "Performance measurement session error"},
                  {24, "Dynamic delay advertisement is in effect"},
                  {25, "Path tracing config"},
                  {26, "Path tracing unconfig"},
                  {27, "Path tracing interface ready"}},
                 "Invalid advertisement reason");
}

TEST(AdvertReason, ShortTextsAreCodesAndTheVarianceReasonHasNone) {
    expect_names(
        pm_advert_reason_short_str,
        {{0, "NONE"},          {1, "PER-AVG"},       {2, "PER-MIN"},       {3, "PER-MAX"},      {4, "N/A"},
         {5, "ACCEL-AVG"},     {6, "ACCEL-MIN"},     {7, "ACCEL-MAX"},     {8, "ACCEL-UP-AVG"}, {9, "ACCEL-UP-MIN"},
         {10, "ACCEL-UP-MAX"}, {11, "ANOM-MIN-DYN"}, {12, "ANOM-MIN-STA"}, {13, "ENABLE"},      {14, "DISABLE"},
         {15, "DELETE"},       {16, "EXEC-CLEAR"},   {17, "ADV-CFG"},      {18, "ADV-UNCFG"},   {19, "ERROR"},
         {20, "FIRST"},        {21, "LINK-DOWN"},    {22, "NEW-SESSION"},  {23, "PM-ERROR"},    {24, "DYN-DM"},
         {25, "PT-CFG"},       {26, "PT-UNCFG"},     {27, "PT-INTF_READY"}},
        "N/A");
}

TEST(AdvertReason, SixReasonsWithdrawValues) {
    expect_answers(pm_advert_reason_withdraws_values, {14, 15, 16, 18, 19, 23}, true);
}

}  // namespace
