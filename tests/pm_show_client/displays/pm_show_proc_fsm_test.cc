// SPDX-License-Identifier: Apache-2.0
// The process state machine in another time zone; tests/golden/process-fsm has the whole reports.
#include "pm_show_client/displays/pm_show_proc_fsm.h"

#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <string>

#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

// Sets the time zone and the clock for one test.
class fixed_clock {
public:
    fixed_clock(const char *zone, const char *now_msec) {
        setenv("TZ", zone, 1);
        setenv("PERF_SHOW_NOW", now_msec, 1);
        tzset();
    }
    ~fixed_clock() {
        unsetenv("TZ");
        unsetenv("PERF_SHOW_NOW");
        tzset();
    }
    fixed_clock(const fixed_clock &) = delete;
    fixed_clock &operator=(const fixed_clock &) = delete;
};

TEST(ProcessFsm, ShowsTimesInTheLocalZoneWithItsName) {
    const fixed_clock clock("EAST-2", "1709647387042");
    pm_mgmt_proc_fsm fsm{};
    fsm.FailoverStatus.StartTime = 61;
    int result = 1;
    const std::string text = captured([&] { result = pm_show_proc_fsm(&fsm); });
    EXPECT_EQ(result, PM_SHOW_PRINTED);
    EXPECT_NE(text.find("    Role Change Start       : Tue Mar 05 16:02:06 EAST 2024 (0d 00:01:01 ago)\n"),
              std::string::npos)
        << text;
}

}  // namespace
