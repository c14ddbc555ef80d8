// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/unshown_advert_reason.h.
#include "pm_utils/unshown_advert_reason.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(AdvertReason, ThresholdsAnomaliesFirstAndNewSessionsAreTriggered) {
    expect_answers(pm_advert_reason_is_triggered, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 20, 22}, true);
}

}  // namespace
