// SPDX-License-Identifier: Apache-2.0
#include "pm_utils/address_text.h"

#include <algorithm>

#include "base/pm_address_text.h"
#include "base/pm_format.h"
#include "pm_utils/text_ring.h"

const char *pm_mac_to_dotted_str(const std::uint8_t *bytes, std::int32_t length) {
    static char text[16];
    if (length < 1) {
        return text;
    }
    const auto count = std::min(static_cast<std::size_t>(length), PM_MAC_SIZE);
    char *end = text;
    for (std::size_t at = 0; at < count; ++at) {
        if (at != 0 && at % 2 == 0) {
            *end++ = '.';
        }
        end = pm_write_hexadecimal(end, bytes + at, 1);
    }
    *end = '\0';
    return text;
}

const char *pm_prefix_str(const pm_prefix_t *prefix) {
    char *slot = pm_next_text_slot();
    if (prefix == nullptr) {
        return "Empty prefix";
    }
    pm_format_text<"%s/%u">(slot, PM_UTILS_MAX_STRING_LEN, ip_addr_string(prefix), prefix->length);
    slot[PM_UTILS_MAX_STRING_LEN - 1] = '\0';
    return slot;
}
