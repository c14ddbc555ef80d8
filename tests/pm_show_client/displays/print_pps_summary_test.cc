// SPDX-License-Identifier: Apache-2.0
// The promise that no stored record can break; tests/golden/pps-summary has the whole reports.
#include "pm_show_client/displays/print_pps_summary.h"

#include <gtest/gtest.h>

namespace {

TEST(PpsSummaryDeath, NoRecordAborts) {
    EXPECT_DEATH(static_cast<void>(print_pps_summary(nullptr)),
                 "NULL != decoded_parcel, pm_show_client.*errcode print_pps_summary\\(const void \\*\\)");
}

}  // namespace
