// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/text_ring.h"

char *pm_next_text_slot() {
    static char slots[PM_TEXT_RING_SLOTS][PM_UTILS_MAX_STRING_LEN];
    static std::size_t next = 0;
    char *slot = slots[next];
    next = (next + 1) % PM_TEXT_RING_SLOTS;
    return slot;
}
