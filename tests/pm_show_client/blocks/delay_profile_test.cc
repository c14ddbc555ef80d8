// SPDX-License-Identifier: Apache-2.0
// Delay profiles, as no show command meets them. tests/golden/profile has the reports.
#include "pm_show_client/blocks/delay_profile.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/captured.h"

namespace {

TEST(DelayProfile, GenericChecksInterfacesByTheirOwnFlags) {
    pm_delay_transport_profile_parcel profile{};
    profile.AdvertisementCheckInterface.AdvertisementThresholdCheckAverageDelay = 1;
    profile.AdvertisementCheckInterface.AdvertisementThresholdCheckMinimumDelay = 1;
    const std::string block = captured([&] { pm_show_delay_profile(profile, PM_TRANSPORT_GENERIC); });
    EXPECT_NE(block.find("    Threshold crossing check:\n"
                         "      SR policy                                 : \n"
                         "      Endpoint                                  : \n"
                         "      Interface                                 : Average-delayMinimum-delay\n"),
              std::string::npos)
        << block;
}

}  // namespace
