// SPDX-License-Identifier: Apache-2.0
// Called by no show.
#include "pm_utils/unshown_value_text.h"

#include "base/pm_format.h"
#include "platform/ifnx.h"
#include "platform/node.h"
#include "pm_utils/text_ring.h"

const char *pm_nodeid_str(std::uint32_t nodeid) {
    char *slot = pm_next_text_slot();
    return nodeid_to_str_external(nodeid, slot, PM_UTILS_MAX_STRING_LEN) == ERRCODE_SUCCESS ? slot : "N/A";
}

const char *pm_ifname_str(std::uint32_t ifhandle) {
    char *slot = pm_next_text_slot();
    ifnx_display_namestring(ifhandle, slot, PM_UTILS_MAX_STRING_LEN, 0);
    return slot;
}

const char *pm_udp_port_str(std::uint32_t port) {
    char *slot = pm_next_text_slot();
    const std::uint32_t number = port & 0xFFFF;
    if (number == 0) {
        return "random port";
    }
    pm_format_text<"configured port %u">(slot, PM_UTILS_MAX_STRING_LEN, number);
    return slot;
}

const char *pm_u32_list_str(const std::uint32_t *values, std::int32_t count) {
    constexpr std::int32_t MOST_VALUES = 16;
    char *slot = pm_next_text_slot();
    const std::int32_t printed = count < 0 || count > MOST_VALUES ? MOST_VALUES : count;
    pm_text_writer writer(slot, slot + PM_UTILS_MAX_STRING_LEN - 1);
    for (std::int32_t at = 0; at < printed; ++at) {
        pm_format<"%u,">(writer, values[at]);
    }
    *writer.cursor() = '\0';
    return slot;
}
