// SPDX-License-Identifier: Apache-2.0
// Inputs that the fuzz target of the test packets began with, and those that it found.
#include <gtest/gtest.h>

#include "fuzz/stamp_packet_fuzz.h"
#include "tests/support/fuzz_replay.h"

namespace {

TEST(stamp_fuzz, kept_inputs_still_hold) {
    EXPECT_GE(replay_inputs(PM_FUZZ_FOLDER "/corpus/stamp_packet", stamp_fuzz_one), 7U);
    replay_inputs(PM_FUZZ_FOLDER "/crashers/stamp_packet", stamp_fuzz_one);
}

}  // namespace
