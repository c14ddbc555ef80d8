// SPDX-License-Identifier: Apache-2.0
// Tests of pm_utils/npu_names.h.
#include "pm_utils/npu_names.h"

#include "tests/pm_utils/expect_names.h"

namespace {

TEST(NpuNames, SessionStatesHaveTheirNames) {
    expect_names(pm_npu_session_state_str,
                 {{0, "No NPU session"},
                  {1, "Session created"},
                  {2, "Pending creation"},
                  {3, "Pending update"},
                  {4, "Pending delete"}},
                 "Unknown");
}

}  // namespace
