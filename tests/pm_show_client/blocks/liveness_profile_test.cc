// SPDX-License-Identifier: Apache-2.0
// Liveness profiles, as no show command meets them. tests/golden/profile has the reports.
#include "pm_show_client/blocks/liveness_profile.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/captured.h"

namespace {

// The lines of a block that begin with a text after their indent.
std::string lines_with(const std::string &block, const std::string &text) {
    std::string found;
    for (std::size_t begin = 0; begin < block.size();) {
        const std::size_t end = block.find('\n', begin) + 1;
        const std::string line = block.substr(begin, end - begin);
        if (line.compare(std::min(line.find_first_not_of(' '), line.size()), text.size(), text) == 0) {
            found += line;
        }
        begin = end;
    }
    return found;
}

TEST(LivenessProfile, OffloadedWithoutItsTxIntervalShowsNoIntervalUnlessNpusHaveABurst) {
    std::uint32_t burst = 31;
    std::uint32_t effective = 43;
    pm_liveness_transport_profile_parcel profile{};
    profile.BurstInterval = &burst;
    profile.TXIntervalEffectiveNPUSRPolicy = {1, &effective};
    const auto intervals = [&] {
        const std::string block = captured([&] { pm_show_liveness_profile(profile, PM_TRANSPORT_SR_POLICY); });
        return lines_with(block, "Tx interval") + lines_with(block, "Burst interval") + lines_with(block, "SR Policy");
    };
    EXPECT_EQ(intervals(), "");
    profile.BurstIntervalNPUEffective = {1, &effective};
    EXPECT_EQ(intervals(),
              "    Burst interval                              : 31 mSec\n"
              "        SR Policy                               : 43 mSec\n");
}

TEST(LivenessProfile, GenericCountsTheSessionsThatItHas) {
    std::uint32_t sessions = 7;
    pm_liveness_transport_profile_parcel profile{};
    profile.SessionCountEndpoint = &sessions;
    const std::string block = captured([&] { pm_show_liveness_profile(profile, PM_TRANSPORT_GENERIC); });
    EXPECT_NE(block.find("    CPU session count:\n"
                         "      Endpoint                                  : 7\n"),
              std::string::npos)
        << block;
}

}  // namespace
