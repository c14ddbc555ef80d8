// SPDX-License-Identifier: Apache-2.0
// Words for the control codes of probe packets.
#pragma once

#include <cstdint>

// Text of a control code of RFC 6374, section 3.1, or of the measurement engine's own code 13.
// Only the low 8 bits of `code` count. Constant text, never null; a code without a name gives
// "Unknown control code".
[[nodiscard]] const char *pm_control_code_str(std::uint32_t code);
