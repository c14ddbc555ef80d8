// Profiles where whole commands would be many: lengths of lists, a long name, results.
// tests/golden/profile has the reports.
#include "pm_show_client/displays/profile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "pm_show_client/blocks/profile_blocks.h"
#include "pm_show_client/blocks/profile_lines.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_show_client/pm_show_options.h"
#include "schema/pm_records.h"
#include "tests/support/captured.h"

namespace {

class Profile : public testing::Test {
protected:
    void SetUp() override { pm_show_options = {}; }
    void TearDown() override { pm_show_options = {}; }
};

// A list of the values 1 to `count`.
std::string flow_labels(std::uint32_t count) {
    std::vector<std::uint32_t> values(count);
    std::iota(values.begin(), values.end(), 1U);
    return captured([&] { pm_profile_flow_labels({count, values.data()}); });
}

TEST_F(Profile, PrintsNothingWithoutARecord) {
    int named = 0;
    int defaults = 0;
    EXPECT_EQ(captured([&] {
                  named = pm_show_name_profile(nullptr);
                  defaults = pm_show_profile(nullptr);
              }),
              "");
    EXPECT_EQ(named, PM_SHOW_NO_RECORD);
    EXPECT_EQ(defaults, PM_SHOW_NO_RECORD);
}

TEST_F(Profile, DefaultsOfLossCountAsPrintedAlthoughTheyHaveNoSection) {
    pm_show_options.loss_kind = true;
    const pm_profile_parcel profiles{};
    int result = -1;
    EXPECT_EQ(captured([&] { result = pm_show_profile(&profiles); }), "");
    EXPECT_EQ(result, PM_SHOW_PRINTED);
}

TEST_F(Profile, ValuesOfListsHaveASignAtEveryPlace) {
    std::vector<std::uint32_t> values(16, 1);
    values[1] = values[15] = 0xFFFFFFFF;
    EXPECT_EQ(captured([&] {
                  pm_profile_flow_labels({16, values.data()});
              }),
              "    Flow Label Count                            : 16\n"
              "      Flow Labels: 1, -1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,\n"
              "                   -1\n");
}

// The lines of a block that begin with a text behind their indent.
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

TEST_F(Profile, AnOffloadedLivenessProfileWithoutItsTxIntervalShowsNoIntervalUnlessNpusHaveABurst) {
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

TEST_F(Profile, AGenericDelayProfileChecksInterfacesByTheirOwnFlags) {
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

TEST_F(Profile, AGenericProfileCountsTheSessionsThatItHas) {
    std::uint32_t sessions = 7;
    pm_liveness_transport_profile_parcel profile{};
    profile.SessionCountEndpoint = &sessions;
    const std::string block = captured([&] { pm_show_liveness_profile(profile, PM_TRANSPORT_GENERIC); });
    EXPECT_NE(block.find("    CPU session count:\n"
                         "      Endpoint                                  : 7\n"),
              std::string::npos)
        << block;
}

TEST_F(Profile, AnEmptyListIsItsCountAlone) {
    EXPECT_EQ(flow_labels(0), "    Flow Label Count                            : 0\n");
}

TEST_F(Profile, FifteenValuesFillOneLine) {
    EXPECT_EQ(flow_labels(1),
              "    Flow Label Count                            : 1\n"
              "      Flow Labels: 1\n");
    EXPECT_EQ(flow_labels(2),
              "    Flow Label Count                            : 2\n"
              "      Flow Labels: 1, 2\n");
    EXPECT_EQ(flow_labels(15),
              "    Flow Label Count                            : 15\n"
              "      Flow Labels: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15\n");
}

TEST_F(Profile, EachFurtherFifteenValuesBeginALine) {
    EXPECT_EQ(flow_labels(16),
              "    Flow Label Count                            : 16\n"
              "      Flow Labels: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,\n"
              "                   16\n");
    EXPECT_EQ(flow_labels(30),
              "    Flow Label Count                            : 30\n"
              "      Flow Labels: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,\n"
              "                   16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30\n");
    EXPECT_EQ(flow_labels(31),
              "    Flow Label Count                            : 31\n"
              "      Flow Labels: 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15,\n"
              "                   16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30,\n"
              "                   31\n");
}

TEST_F(Profile, ATitleIsCutLikeAnyLineAndThenLosesItsNewline) {
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
