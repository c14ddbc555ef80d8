// SPDX-License-Identifier: Apache-2.0
// Replays the parcel fuzz target's corpus and every input that ever crashed it.
#include <gtest/gtest.h>

#include "fuzz/parcel_decode_fuzz.h"
#include "tests/support/fuzz_replay.h"

namespace {

TEST(ParcelFuzz, TheCorpusAndEveryFormerCrasherDecodeSafely) {
    EXPECT_GT(replay_inputs(PM_FUZZ_FOLDER "/corpus/parcel_decode", parcel_fuzz_one), 20U);
    replay_inputs(PM_FUZZ_FOLDER "/crashers/parcel_decode", parcel_fuzz_one);
}

}  // namespace
