// The infrastructure summary without a record; tests/golden/summary has the whole reports.
#include "pm_show_client/displays/summary.h"

#include <gtest/gtest.h>

#include "pm_show_client/pm_show_display.h"
#include "tests/support/captured.h"

namespace {

TEST(Summary, PrintsNothingWithoutARecord) {
    int result = 0;
    EXPECT_EQ(captured([&] { result = pm_show_summary(nullptr); }), "");
    EXPECT_EQ(result, PM_SHOW_NO_RECORD);
}

}  // namespace
