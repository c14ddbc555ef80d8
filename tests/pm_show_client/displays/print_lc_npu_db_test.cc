// SPDX-License-Identifier: Apache-2.0
// The NPU database's promises that no stored record can break; tests/golden/npu-database has the whole
// reports.
#include "pm_show_client/displays/print_lc_npu_db.h"

#include <gtest/gtest.h>

#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

TEST(NpuDatabase, AnEmptyDatabaseCountsAsPrinted) {
    const pm_dr_lc_npu_info database{};
    int result = 1;
    EXPECT_EQ(captured([&] { result = print_lc_npu_db(&database); }), "No Linecard information available");
    EXPECT_EQ(result, PM_SHOW_PRINTED);
}

TEST(NpuDatabaseDeath, NoRecordAborts) {
    EXPECT_DEATH(static_cast<void>(print_lc_npu_db(nullptr)),
                 "^Assertion failed: NULL != decoded_parcel, pm_show_client:5424, "
                 "errcode print_lc_npu_db\\(void \\*\\)\n$");
}

TEST(NpuDatabaseDeath, ACountOfNpusWithoutNpusAborts) {
    pm_dr_lc_info linecard{};
    linecard.NPUInfo.count = 1;
    pm_dr_lc_npu_info database{};
    database.LinecardInfo = {1, &linecard};
    EXPECT_DEATH(
        static_cast<void>(print_lc_npu_db(&database)),
        "Assertion failed: NULL != npu_parcel, pm_show_client:5346, void print_npu\\(pm_dr_npu_info \\*\\)\n$");
}

}  // namespace
