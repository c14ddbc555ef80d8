// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_npu_names.h"

#include "platform/errcode.h"
#include "pm_utils/name_table.h"

namespace {

constexpr pm_name NPU_SESSION_PROTOCOLS[] = {
    {0, "PM MPLS"},
    {1, "PM TWAMP"},
};

constexpr pm_name HW_PROTOCOLS[] = {
    {0, "None"},
    {1, "PM MPLS"},
    {2, "Unknown"},
    {3, "TWAMP-light"},
};

constexpr pm_name NPU_ERRORS[] = {
    {0, "Success"},       {1, "Internal error"}, {2, "Invalid parameter"}, {3, "Session exists"},
    {4, "No space left"}, {5, "Invalid memory"}, {6, "Session not found"}, {7, "Uknown error"},  // spelled so
};

constexpr pm_name NPU_CREATE_FAIL_REASONS[] = {
    {1, "PM profile not configured"},
    {2, "No NPU capacity"},
    {3, "Label allocation from LSD failed"},
};

}  // namespace

const char *pm_npu_session_protocol_str(std::int32_t protocol) {
    return pm_name_of(NPU_SESSION_PROTOCOLS, protocol, "UNKNOWN");
}

const char *pm_hw_protocol_str(std::int32_t protocol) { return pm_name_of(HW_PROTOCOLS, protocol, "Unknown"); }

const char *pm_npu_error_str(std::uint32_t code) {
    const char *own = pm_name_of(NPU_ERRORS, code, nullptr);
    return own != nullptr ? own : errcode_strerror(code);
}

const char *pm_npu_create_fail_reason_str(std::int32_t reason) {
    return pm_name_of(NPU_CREATE_FAIL_REASONS, reason, "none");
}
