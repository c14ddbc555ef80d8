// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/value_text.h"

#include <cstring>

#include "base/pm_assert.h"
#include "base/pm_format.h"
#include "platform/ifnx.h"
#include "pm_utils/text_ring.h"

const char *pm_ifh_str(std::uint32_t ifhandle) {
    static char buffers[2][86];
    static std::size_t next = 0;
    char *buffer = buffers[next];
    next = 1 - next;
    std::memset(buffer, 0, sizeof buffers[0]);
    pm_format_text<"%s (ifh: 0x%x) ">(buffer, sizeof buffers[0], interface_name(ifhandle, 0), ifhandle);
    return buffer;
}

const char *pm_count_or_all_str(std::uint32_t count) {
    char *slot = pm_next_text_slot();
    if (count == 0) {
        return "All";
    }
    pm_format_text<"%u">(slot, PM_UTILS_MAX_STRING_LEN, count);
    return slot;
}

const char *pm_truncate_name(const char *name, std::size_t trunc_len) {
    if (name == nullptr) {
        return nullptr;
    }
    // Tested by subtraction, which no width can make overflow.
    PM_ASSERT(trunc_len <= PM_UTILS_MAX_STRING_LEN - 3, "(trunc_len + 3) <= PM_UTILS_MAX_STRING_LEN", "pm_utils",
              "const char *pm_truncate_name(const char *, size_t)");
    char *slot = pm_next_text_slot();
    std::memset(slot, 0, PM_UTILS_MAX_STRING_LEN);
    const std::size_t length = std::strlen(name);
    if (length <= trunc_len) {
        std::memcpy(slot, name, length);
        return slot;
    }
    std::memcpy(slot, name, trunc_len);
    std::memcpy(slot + trunc_len, "..", 2);  // two dots, although there is room for three
    return slot;
}
