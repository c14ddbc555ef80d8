// SPDX-License-Identifier: Apache-2.0
// The rotating slots that hold built texts. For the files of pm_utils only.
#pragma once

#include <cstddef>

inline constexpr std::size_t PM_UTILS_MAX_STRING_LEN = 256;  // bytes of a slot, terminator included
inline constexpr std::size_t PM_TEXT_RING_SLOTS = 10;        // results that can be live at once

// The next of the slots, PM_UTILS_MAX_STRING_LEN bytes with the text of its last use. The tenth
// call after this one hands the same slot out again, so one statement can carry ten built texts.
// Not for several threads.
[[nodiscard]] char *pm_next_text_slot();
