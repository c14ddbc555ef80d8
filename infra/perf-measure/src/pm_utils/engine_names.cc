// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/engine_names.h"

#include "pm_utils/name_table.h"

namespace {

constexpr pm_name QUEUE_TYPES[] = {
    {0, "Querier rx queue"},
    {1, "Responder rx queue"},
    {2, "Checkpoint op queue"},
    {3, "Checkpoint op result queue"},
};

constexpr pm_name IM_EVENTS[] = {
    {0, "IM CAPS ADD"},        {1, "IM CAPS DELETE"}, {2, "IM ATTR REG"},    {3, "IM ATTR UNREG"},
    {4, "IM DELAY/LOSS ATTR"}, {5, "KPKT Attach"},    {6, "IM PTRACE ATTR"},
};

constexpr pm_name DR_RETRY_REASONS[] = {
    {PM_DR_RETRY_PROFILE_NOT_CONFIGURED, "Profile not configured in PM"},
    {PM_DR_RETRY_NO_NPU_CAPACITY, "No NPU capacity"},
    {PM_DR_RETRY_LABEL_ALLOCATION_FAILED, "Label allocation from LSD failed"},
};

}  // namespace

const char *pm_queue_type_str(std::int32_t type) { return pm_name_of(QUEUE_TYPES, type, "Unknown queue type"); }

const char *pm_im_event_str(std::int32_t type) { return pm_name_of(IM_EVENTS, type, "UNKNOWN"); }

const char *pm_dr_retry_reason_str(pm_dr_retry_reason_e reason) { return pm_name_of(DR_RETRY_REASONS, reason, ""); }
