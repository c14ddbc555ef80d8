// SPDX-License-Identifier: Apache-2.0
// The promise that no stored record can break; tests/golden/capability has the whole reports.
#include "pm_show_client/displays/print_capability.h"

#include <gtest/gtest.h>

namespace {

TEST(CapabilityDeath, NoRecordAborts) {
    EXPECT_DEATH(static_cast<void>(print_capability(nullptr)),
                 "NULL != decoded_parcel, pm_show_client.*errcode print_capability\\(const void \\*\\)");
}

}  // namespace
