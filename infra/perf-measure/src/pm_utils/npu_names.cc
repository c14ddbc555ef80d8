// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/npu_names.h"

#include "pm_utils/name_table.h"

namespace {

constexpr pm_name NPU_SESSION_STATES[] = {
    {PM_NPU_SESSION_NONE, "No NPU session"},
    {PM_NPU_SESSION_CREATED, "Session created"},
    {PM_NPU_SESSION_PENDING_CREATION, "Pending creation"},
    {PM_NPU_SESSION_PENDING_UPDATE, "Pending update"},
    {PM_NPU_SESSION_PENDING_DELETE, "Pending delete"},
};

}  // namespace

const char *pm_npu_session_state_str(pm_npu_session_running_state_e state) {
    return pm_name_of(NPU_SESSION_STATES, state, "Unknown");
}
