// SPDX-License-Identifier: Apache-2.0
// Inputs that the fuzz target of a server's replies began with, and those that it found.
#include <gtest/gtest.h>

#include "fuzz/redis_reply_fuzz.h"
#include "tests/support/fuzz_replay.h"

namespace {

TEST(ReplyFuzz, KeptInputsStillHold) {
    EXPECT_GE(replay_inputs(PM_FUZZ_FOLDER "/corpus/redis_reply", redis_reply_fuzz_one), 8U);
    replay_inputs(PM_FUZZ_FOLDER "/crashers/redis_reply", redis_reply_fuzz_one);
}

}  // namespace
