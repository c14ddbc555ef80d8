// SPDX-License-Identifier: Apache-2.0
// The promise that no stored record can break; tests/golden/dr-retry-queue has the whole reports.
#include "pm_show_client/displays/print_dr_retry_queue.h"

#include <gtest/gtest.h>

namespace {

TEST(RetryQueueDeath, NoRecordAborts) {
    EXPECT_DEATH(static_cast<void>(print_dr_retry_queue(nullptr)),
                 "Assertion failed: NULL != decoded_parcel, pm_show_client:5488, errcode "
                 "print_dr_retry_queue\\(void \\*\\)");
}

}  // namespace
