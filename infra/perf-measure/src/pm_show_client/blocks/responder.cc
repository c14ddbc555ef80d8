// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/responder.h"

#include "pm_show_client/blocks/label_lines.h"

void pm_show_responder(const pm_record_address *address, const std::uint8_t *hops, int indent, int width) {
    const pm_lines lines{indent, width};
    if (address != nullptr) {
        lines.address("Responder IP", *address);
    }
    if (hops != nullptr) {
        lines.number("Number of Hops", *hops);
    }
}
