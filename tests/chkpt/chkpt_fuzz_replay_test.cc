// SPDX-License-Identifier: Apache-2.0
// Replays the checkpoint fuzz target's corpus and every input that ever crashed it.
#include <gtest/gtest.h>

#include "fuzz/chkpt_decode_fuzz.h"
#include "tests/chkpt/shapes.h"
#include "tests/support/fuzz_replay.h"

namespace {

TEST(ChkptFuzz, TheCorpusAndEveryFormerCrasherDecodeSafely) {
    EXPECT_GT(replay_inputs(PM_FUZZ_FOLDER "/corpus/chkpt_decode", chkpt_fuzz_one), 20U);
    replay_inputs(PM_FUZZ_FOLDER "/crashers/chkpt_decode", chkpt_fuzz_one);
}

TEST(ChkptFuzz, KnowsEveryMessage) { EXPECT_EQ(all_shapes().size(), CHKPT_FUZZ_MESSAGES); }

}  // namespace
