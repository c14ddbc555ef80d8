// SPDX-License-Identifier: Apache-2.0
// A session as the records of the shows have it: the parts that several items share.
//
// docs/man/perf-probed.8 tells what each counter of the shows means on a host.
#pragma once

#include "perf-probed/schedule/clocks.h"
#include "perf-probed/service/prober.h"
#include "perf-probed/session/delay_session.h"
#include "perf-probed/session/history.h"
#include "perf-probed/session/liveness_session.h"
#include "perf-probed/session/loss_session.h"
#include "perf-probed/session/probe_session.h"
#include "perf-probed/state/snapshot.h"
#include "schema/pm_records.h"

namespace probed {

inline constexpr char NO_SEGMENT_LIST[] = "None";

[[nodiscard]] inline const delay_session &delay_of(const session_entry &entry) {
    return static_cast<const delay_session &>(*entry.run);
}
[[nodiscard]] inline const liveness_session &liveness_of(const session_entry &entry) {
    return static_cast<const liveness_session &>(*entry.run);
}
[[nodiscard]] inline const loss_session &loss_of(const session_entry &entry) {
    return static_cast<const loss_session &>(*entry.run);
}
[[nodiscard]] inline const probe_session &probe_of(const session_entry &entry) {
    return static_cast<const probe_session &>(*entry.run);
}

[[nodiscard]] pm_record_address record_address(const ip_address &address);  // none: the kind "none"
[[nodiscard]] std::uint32_t record_ipv4(const ip_address &address);         // 0 for any other
[[nodiscard]] parcel_ipv6 record_ipv6(const ip_address &address);           // :: for any other
[[nodiscard]] parcel_mac record_mac(const mac_address &address);
[[nodiscard]] pm_values_parcel record_values(const delay_values &values);
// Milliseconds from now until then; 0 when it is past or never comes.
[[nodiscard]] std::uint32_t msec_until(mono_nsec when, const moment &now);

[[nodiscard]] pm_profile_key_parcel record_profile_key(const session_plan &plan, record_arena *arena);
[[nodiscard]] pm_delay_counters_info_parcel record_delay_counters(const session_entry &entry);
[[nodiscard]] pm_endpoint_liveness_counters_info_parcel record_liveness_counters(const session_entry &entry);
// Adds up counters of many sessions of one transport.
void add_counters(const pm_delay_counters_info_parcel &from, pm_delay_counters_info_parcel *to);
void add_counters(const pm_endpoint_liveness_counters_info_parcel &from, pm_endpoint_liveness_counters_info_parcel *to);

[[nodiscard]] pm_scb_parcel record_delay_session(const session_entry &entry, const moment &now, record_arena *arena);
[[nodiscard]] pm_liveness_state_info_parcel record_liveness_state(const session_entry &entry);
[[nodiscard]] pm_scb_probe_session_parcel record_probe_session(const session_entry &entry, const moment &now,
                                                               record_arena *arena);

// Fills the elements of an array from a history, oldest first.
template <class Element, class Entry, class Convert>
parcel_array<Element> record_list(const history<Entry> &from, record_arena *arena, Convert convert) {
    const parcel_array<Element> list = arena->array<Element>(from.size());
    for (std::size_t index = 0; index < from.size(); ++index) {
        list.elements[index] = convert(from[index]);
    }
    return list;
}

// The histories of a session.
[[nodiscard]] pm_history_info record_probe_history(const session_entry &entry, record_arena *arena);
[[nodiscard]] pm_history_info record_aggregated_history(const session_entry &entry, record_arena *arena);
[[nodiscard]] pm_history_info record_advertisement_history(const session_entry &entry, record_arena *arena);
[[nodiscard]] pm_history_info record_liveness_history(const session_entry &entry, record_arena *arena);

// The records of loss.
[[nodiscard]] pm_intf_loss_session_parcel record_loss_session(const session_entry &entry, const moment &now);
[[nodiscard]] pm_history_info record_loss_probe_history(const session_entry &entry, record_arena *arena);
[[nodiscard]] pm_history_info record_loss_packet_history(const session_entry &entry, record_arena *arena);
[[nodiscard]] pm_history_info record_loss_aggregated_history(const session_entry &entry, record_arena *arena);
[[nodiscard]] pm_history_info record_loss_advertisement_history(const session_entry &entry, record_arena *arena);

}  // namespace probed
