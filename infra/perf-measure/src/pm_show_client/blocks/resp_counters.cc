// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/blocks/resp_counters.h"

#include "pm_show_client/blocks/label_lines.h"

namespace {

struct counter_line {
    pm_text label;
    std::uint64_t pm_counter_resp_parcel::*counter;
};

// Queries come first, although the record begins with the replies.
constexpr counter_line COUNTERS[] = {
    {"Total query packets received", &pm_counter_resp_parcel::QueryPacketReceived},
    {"Total reply packets sent", &pm_counter_resp_parcel::ReplyPacketSent},
    {"Total reply packets sent errors", &pm_counter_resp_parcel::ReplyPacketSentError},
    {"Total URO TLV not present errors", &pm_counter_resp_parcel::ReceivedPacketErrorURO_TLVNotPresent},
    {"Total invalid port number errors", &pm_counter_resp_parcel::ReceivedPacketErrorInvalidSourcePortNumber},
    {"Total no source address errors", &pm_counter_resp_parcel::ReceivedPacketErrorNoSourceAddress},
    {"Total no return path errors", &pm_counter_resp_parcel::ReceivedPacketErrorNoReturnPath},
    {"Total unsupported querier control code errors",
     &pm_counter_resp_parcel::ReceivedPacketErrorInvalidQuerierControlCode},
    {"Total unsupported timestamp format errors",
     &pm_counter_resp_parcel::ReceivedPacketErrorUnsupportedTimestampFormat},
    {"Total timestamp not available errors", &pm_counter_resp_parcel::ReceivedPacketErrorTimestampNotAvailable},
    {"Total unsupported mandatory TLV errors", &pm_counter_resp_parcel::ReceivedPacketErrorUnsupportedMandatoryTLV},
    {"Total invalid packet errors", &pm_counter_resp_parcel::ReceivedPacketErrorInvalidPacket},
};

}  // namespace

void pm_show_resp_counters(const pm_counter_resp_parcel *counters, int indent) {
    const pm_lines lines{indent, indent + 46};
    for (const counter_line &line : COUNTERS) {
        lines.number(line.label, counters->*line.counter);
    }
}
