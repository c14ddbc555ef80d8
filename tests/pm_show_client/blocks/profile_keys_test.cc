// SPDX-License-Identifier: Apache-2.0
// Profile keys, as no show command meets them. tests/golden has the others.
#include "pm_show_client/blocks/profile_keys.h"

#include <gtest/gtest.h>

#include "tests/support/captured.h"

namespace {

TEST(ProfileKeys, AreNothingWithoutAKey) {
    EXPECT_EQ(captured([] { pm_show_profile_keys(nullptr, "profile-1", 2, 24); }), "");
}

}  // namespace
