// SPDX-License-Identifier: Apache-2.0
// The record types by path: what the show commands decode there.
#include "perf-store/datasets/path_types.h"

#include "paths/item_paths.h"

namespace perf_store {

namespace {

using path_grammar::path_of;
using path_grammar::place;
using store::root;

struct typed_place {
    root data_root;
    std::string_view path;
    std::string_view type;
};

constexpr typed_place TYPED_PLACES[] = {
    {root::main, path_of(place::intf_detail), "pm_intf_parcel"},
    {root::main, "intf/delay/", "pm_intf_history_parcel"},
    {root::main, "intf/loss/", "pm_intf_history_parcel"},
    {root::main, path_of(place::srpolicy_detail), "pm_srpolicy_parcel"},
    {root::main, path_of(place::srpolicy_counters), "pm_srpolicy_counters_parcel"},
    {root::main, "srpolicy/delay/", "pm_srpolicy_history_parcel"},
    {root::main, "srpolicy/liveness/", "pm_srpolicy_history_parcel"},
    {root::main, path_of(place::rsvpte_detail), "pm_rsvpte_parcel"},
    {root::main, path_of(place::rsvpte_counters), "pm_rsvpte_counters_parcel"},
    {root::main, "rsvpte/delay/", "pm_rsvpte_history_parcel"},
    {root::main, path_of(place::endpoint_detail), "pm_endpoint_common"},
    {root::main, path_of(place::endpoint_counters), "pm_endpoint_counters_parcel"},
    {root::main, "endpoint/delay/", "pm_endpoint_history_parcel"},
    {root::main, path_of(place::session), "pm_session_parcel"},
    {root::main, path_of(place::probe_session), "pm_session_parcel"},
    {root::main, path_of(place::name_profile), "pm_name_profile_parcel"},
    {root::main, path_of(place::profile), "pm_profile_parcel"},
    {root::main, path_of(place::summary), "pm_summary_parcel"},
    {root::main, path_of(place::proc_fsm), "pm_mgmt_proc_fsm"},
    {root::main, path_of(place::batch_counters), "pm_stats_batch_t"},
    {root::main, path_of(place::dr), "pm_dr_info"},
    {root::main, path_of(place::dr_retry_queue), "pm_dr_retry_queue_info"},
    {root::main, path_of(place::npu_db), "pm_dr_lc_npu_info"},
    {root::main, path_of(place::pps_summary), "pm_pps_summary_parcel"},
    {root::main, path_of(place::capability), "pm_capability_parcel"},
    {root::main, path_of(place::allowed_querier), "pm_querier_prefixes_summary"},
    {root::main, path_of(place::allowed_responder), "pm_responder_prefixes_summary"},
    {root::responder, path_of(place::resp_intf), "pm_resp_intf_parcel"},
    {root::responder, path_of(place::summary), "pm_resp_summary_parcel"},
    {root::receive, path_of(place::summary), "pm_rx_summary_parcel"},
    {root::checkpoint, "scb/", "pm_chkpt_scb_parcel"},
    {root::checkpoint, "dr/", "pm_chkpt_dr_info"},
    {root::checkpoint, "dr-db-session/", "pm_chkpt_dr_db_sess_info"},
};

}  // namespace

std::string_view type_at(store::root root, std::string_view path) {
    for (const typed_place &each : TYPED_PLACES) {
        if (each.data_root == root && (each.path.ends_with('/') ? path.starts_with(each.path) : path == each.path)) {
            return each.type;
        }
    }
    return {};
}

}  // namespace perf_store
