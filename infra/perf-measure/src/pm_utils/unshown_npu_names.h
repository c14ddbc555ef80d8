// SPDX-License-Identifier: Apache-2.0
// Called by no show: more words for measurement sessions that are offloaded to a network processor (NPU).
//
// Every routine takes any value and returns constant text, never null; a value without a word of
// its own gives the word stated as "else".
#pragma once

#include <cstdint>

// 0 "PM MPLS", 1 "PM TWAMP"; else "UNKNOWN".
[[nodiscard]] const char *pm_npu_session_protocol_str(std::int32_t protocol);

// Protocol as the hardware numbers it: 0 "None", 1 "PM MPLS", 3 "TWAMP-light"; else "Unknown".
[[nodiscard]] const char *pm_hw_protocol_str(std::int32_t protocol);

// Result of an NPU operation. 0 to 7 are the NPU's own; from 8 on a code is an errcode and has the
// platform's text (errcode_strerror).
[[nodiscard]] const char *pm_npu_error_str(std::uint32_t code);

// Why a session could not be created, from 1; else "none".
[[nodiscard]] const char *pm_npu_create_fail_reason_str(std::int32_t reason);
