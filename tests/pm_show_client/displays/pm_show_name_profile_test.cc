// SPDX-License-Identifier: Apache-2.0
// A profile with a long name; tests/golden/profile has the reports.
#include "pm_show_client/displays/pm_show_name_profile.h"

#include <gtest/gtest.h>
#include <string>

#include "pm_show_client/pm_show_display.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

TEST(NamedProfile, ATitleIsCutLikeAnyLineAndThenLosesItsNewline) {
    const std::string name(300, 'n');
    pm_name_profile_parcel profile{};
    profile.Name = name.c_str();
    profile.TransportType = PM_TRANSPORT_ENDPOINT;
    profile.Profile.MeasurementType = static_cast<pm_measurement_type_e>(4);
    const std::string title = "Endpoint Measurement Type Unknown Profile Name: ";
    EXPECT_EQ(captured([&] { EXPECT_EQ(pm_show_name_profile(&profile), PM_SHOW_PRINTED); }),
              title + std::string(255 - title.size(), 'n'));
}

}  // namespace
