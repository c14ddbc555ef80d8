// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/engine_names.h.
#include "pm_utils/engine_names.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(EngineNames, QueueTypesHaveTheirNames) {
    expect_names(pm_queue_type_str,
                 {{0, "Querier rx queue"},
                  {1, "Responder rx queue"},
                  {2, "Checkpoint op queue"},
                  {3, "Checkpoint op result queue"}},
                 "Unknown queue type");
}

TEST(EngineNames, InterfaceManagerEventsHaveTheirNames) {
    expect_names(pm_im_event_str,
                 {{0, "IM CAPS ADD"},
                  {1, "IM CAPS DELETE"},
                  {2, "IM ATTR REG"},
                  {3, "IM ATTR UNREG"},
                  {4, "IM DELAY/LOSS ATTR"},
                  {5, "KPKT Attach"},
                  {6, "IM PTRACE ATTR"}},
                 "UNKNOWN");
}

TEST(EngineNames, RetryReasonsHaveTheirNamesAndNoWordForOthers) {
    expect_names(pm_dr_retry_reason_str,
                 {{0, "Profile not configured in PM"}, {1, "No NPU capacity"}, {2, "Label allocation from LSD failed"}},
                 "");
}

}  // namespace
