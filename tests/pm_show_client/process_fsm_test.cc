// The process displays without a record; tests/golden/process-fsm and tests/golden/batch-counters have
// the whole reports.
#include "pm_show_client/process_fsm.h"

#include <gtest/gtest.h>

#include "pm_show_client/batch_counters.h"
#include "pm_show_client/captured.h"
#include "pm_show_client/pm_show_options.h"

namespace {

TEST(ProcessFsm, PrintsNothingWithoutARecord) {
    int result = 0;
    EXPECT_EQ(captured([&] { result = pm_show_proc_fsm(nullptr); }), "");
    EXPECT_EQ(result, PM_SHOW_NO_RECORD);
}

TEST(BatchCounters, PrintNothingWithoutARecord) {
    int result = 0;
    EXPECT_EQ(captured([&] { result = pm_show_batch_counters(nullptr); }), "");
    EXPECT_EQ(result, PM_SHOW_NO_RECORD);
}

}  // namespace
