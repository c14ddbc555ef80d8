// SPDX-License-Identifier: Apache-2.0
// Where items are below a node's branch: every path that a show command reads or a generated data set fills.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "paths/filter_keys.h"

namespace path_grammar {

// The place of one item, or of the items of one kind. Places of one path are in different roots.
enum class place : std::uint8_t {
    intf_detail,
    intf_delay_probe_history,
    intf_delay_aggr_history,
    intf_delay_adv_history,
    intf_loss_probe_history,
    intf_loss_aggr_history,
    intf_loss_adv_history,
    intf_loss_pkt_history,
    srpolicy_detail,
    srpolicy_counters,
    srpolicy_probe_history,
    srpolicy_aggr_history,
    srpolicy_adv_history,
    srpolicy_live_history,
    rsvpte_detail,
    rsvpte_counters,
    rsvpte_probe_history,
    rsvpte_aggr_history,
    rsvpte_adv_history,
    endpoint_detail,
    endpoint_counters,
    endpoint_probe_history,
    endpoint_aggr_history,
    endpoint_adv_history,
    endpoint_live_history,
    session,
    probe_session,
    name_profile,
    all_profile,
    profile,
    summary,
    proc_fsm,
    batch_counters,
    dr,
    dr_retry_queue,
    npu_db,
    pps_summary,
    capability,
    allowed_querier,
    allowed_responder,
    resp_intf,
    chkpt_scb,
    chkpt_dr,
    chkpt_dr_session,
};

struct place_row {
    place id;
    std::string_view path;               // one item's, or what comes before an item's name; zero-terminated
    const filter_key *filter = nullptr;  // null: a path with "-filter/" means nothing here
};

inline constexpr place_row PLACES[] = {
    // in the root "main"
    {place::intf_detail, "intf/detail/"},
    {place::intf_delay_probe_history, "intf/delay/probe-history/"},
    {place::intf_delay_aggr_history, "intf/delay/aggr-history/"},
    {place::intf_delay_adv_history, "intf/delay/adv-history/"},
    {place::intf_loss_probe_history, "intf/loss/probe-history/"},
    {place::intf_loss_aggr_history, "intf/loss/aggr-history/"},
    {place::intf_loss_adv_history, "intf/loss/adv-history/"},
    {place::intf_loss_pkt_history, "intf/loss/pkt-history/"},
    {place::srpolicy_detail, "srpolicy/detail/", &SRPOLICY_KEY},
    {place::srpolicy_counters, "srpolicy/counters/", &SRPOLICY_KEY},
    {place::srpolicy_probe_history, "srpolicy/delay/probe-history/", &SRPOLICY_KEY},
    {place::srpolicy_aggr_history, "srpolicy/delay/aggr-history/", &SRPOLICY_KEY},
    {place::srpolicy_adv_history, "srpolicy/delay/adv-history/", &SRPOLICY_KEY},
    {place::srpolicy_live_history, "srpolicy/liveness/live-history/", &SRPOLICY_KEY},
    {place::rsvpte_detail, "rsvpte/detail/", &RSVPTE_KEY},
    {place::rsvpte_counters, "rsvpte/counters/", &RSVPTE_KEY},
    {place::rsvpte_probe_history, "rsvpte/delay/probe-history/", &RSVPTE_KEY},
    {place::rsvpte_aggr_history, "rsvpte/delay/aggr-history/", &RSVPTE_KEY},
    {place::rsvpte_adv_history, "rsvpte/delay/adv-history/", &RSVPTE_KEY},
    {place::endpoint_detail, "endpoint/detail/", &ENDPOINT_KEY},
    {place::endpoint_counters, "endpoint/counters/", &ENDPOINT_KEY},
    {place::endpoint_probe_history, "endpoint/delay/probe-history/", &ENDPOINT_KEY},
    {place::endpoint_aggr_history, "endpoint/delay/aggr-history/", &ENDPOINT_KEY},
    {place::endpoint_adv_history, "endpoint/delay/adv-history/", &ENDPOINT_KEY},
    {place::endpoint_live_history, "endpoint/delay/live-history/", &ENDPOINT_KEY},
    {place::session, "session/"},
    {place::probe_session, "probe-session/"},
    {place::name_profile, "name-profile/", &PROFILE_KEY},
    {place::all_profile, "all-profile/"},  // another name of name_profile
    {place::profile, "profile"},
    {place::summary, "summary"},  // and in the roots "resp" and "rx"
    {place::proc_fsm, "proc_fsm"},
    {place::batch_counters, "counters/batch"},
    {place::dr, "dr/"},
    {place::dr_retry_queue, "dr_retry_queue"},
    {place::npu_db, "npu_db"},
    {place::pps_summary, "pps_summary"},
    {place::capability, "capability"},
    {place::allowed_querier, "allowed-querier/summary"},
    {place::allowed_responder, "allowed-responder/summary"},
    // in the root "resp"
    {place::resp_intf, "intf/"},
    // in the root "chkpt"; listed without the last '/'
    {place::chkpt_scb, "scb"},
    {place::chkpt_dr, "dr"},
    {place::chkpt_dr_session, "dr-db-session"},
};

constexpr const place_row &row_of(place wanted) { return PLACES[static_cast<std::size_t>(wanted)]; }
constexpr std::string_view path_of(place wanted) { return row_of(wanted).path; }

// What comes before the key in filtered paths of a place that ends in '/'.
inline std::string filter_prefix(const place_row &row) {
    return std::string(row.path.substr(0, row.path.size() - 1)).append(FILTER_MARK);
}

namespace detail {

constexpr bool rows_are_in_order() {
    std::size_t at = 0;
    for (const place_row &row : PLACES) {
        if (static_cast<std::size_t>(row.id) != at++) {
            return false;
        }
    }
    return true;
}
static_assert(rows_are_in_order());

}  // namespace detail

}  // namespace path_grammar
