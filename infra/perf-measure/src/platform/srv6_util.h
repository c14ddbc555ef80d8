// SPDX-License-Identifier: Apache-2.0
// Names of SRv6 SID formats and of SRv6 endpoint behaviours (RFC 8986, section 10.2).
#pragma once

#include <cstdint>

// Both give "unknown" for a code without a name. The texts are constant.
[[nodiscard]] const char *srv6_util_sid_fmt_str(std::uint32_t format);
[[nodiscard]] const char *srv6_util_end_func_str(std::uint32_t behaviour);
