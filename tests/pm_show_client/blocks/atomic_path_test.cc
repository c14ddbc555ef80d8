// SPDX-License-Identifier: Apache-2.0
// Atomic paths, as no show command meets them. tests/golden has the others.
#include "pm_show_client/blocks/atomic_path.h"

#include <gtest/gtest.h>

namespace {

TEST(AtomicPath, AnOffloadedPathWithoutItsOffloadRecordAborts) {
    pm_srpolicy_atomic_path_parcel path{};
    path.NPUOffloadedSession = 1;
    EXPECT_DEATH(pm_show_atomic_path(&path, false, 6, 30),
                 "NULL != parcel, pm_show_client.*print_session_npu_offload_info");
}

}  // namespace
