// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_not_running_reason.h.
#include "pm_utils/unshown_not_running_reason.h"

#include "tests/pm_utils/expect_names.h"

namespace {

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
