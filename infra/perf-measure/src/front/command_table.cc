// SPDX-License-Identifier: Apache-2.0
// The rows of the show commands, by ascending type. command_table.h explains their columns.
#include "front/command_table.h"

#include <algorithm>

#include "front/advert_legend.h"
#include "paths/item_paths.h"
#include "paths/roots.h"
#include "pm_show_client/displays/pm_show_allowed_queriers.h"
#include "pm_show_client/displays/pm_show_allowed_responders.h"
#include "pm_show_client/displays/pm_show_batch_counters.h"
#include "pm_show_client/displays/pm_show_chkpt_dr.h"
#include "pm_show_client/displays/pm_show_chkpt_dr_session.h"
#include "pm_show_client/displays/pm_show_chkpt_scb.h"
#include "pm_show_client/displays/pm_show_dr.h"
#include "pm_show_client/displays/pm_show_endpoint.h"
#include "pm_show_client/displays/pm_show_endpoint_counters.h"
#include "pm_show_client/displays/pm_show_endpoint_history.h"
#include "pm_show_client/displays/pm_show_endpoint_live_history.h"
#include "pm_show_client/displays/pm_show_intf.h"
#include "pm_show_client/displays/pm_show_intf_counters.h"
#include "pm_show_client/displays/pm_show_intf_history.h"
#include "pm_show_client/displays/pm_show_name_profile.h"
#include "pm_show_client/displays/pm_show_proc_fsm.h"
#include "pm_show_client/displays/pm_show_profile.h"
#include "pm_show_client/displays/pm_show_resp_intf.h"
#include "pm_show_client/displays/pm_show_resp_intf_counters.h"
#include "pm_show_client/displays/pm_show_resp_summary.h"
#include "pm_show_client/displays/pm_show_rsvpte.h"
#include "pm_show_client/displays/pm_show_rsvpte_counters.h"
#include "pm_show_client/displays/pm_show_rsvpte_history.h"
#include "pm_show_client/displays/pm_show_rx_summary.h"
#include "pm_show_client/displays/pm_show_session.h"
#include "pm_show_client/displays/pm_show_srpolicy.h"
#include "pm_show_client/displays/pm_show_srpolicy_counters.h"
#include "pm_show_client/displays/pm_show_srpolicy_history.h"
#include "pm_show_client/displays/pm_show_summary.h"
#include "pm_show_client/displays/print_capability.h"
#include "pm_show_client/displays/print_dr_retry_queue.h"
#include "pm_show_client/displays/print_lc_npu_db.h"
#include "pm_show_client/displays/print_pps_summary.h"
#include "schema/pm_descriptors.h"

namespace {

// Data roots.
constexpr const char *MAIN = path_of(path_grammar::root::main);
constexpr const char *RESP = path_of(path_grammar::root::responder);
constexpr const char *RX = path_of(path_grammar::root::receive);
constexpr const char *CHKPT = path_of(path_grammar::root::checkpoint);

// Item paths.
using enum path_grammar::place;
constexpr pm_show_path_rule fixed(path_grammar::place at) { return {pm_show_path_form::FIXED, at}; }
constexpr pm_show_path_rule with_name(path_grammar::place at) { return {pm_show_path_form::NAME, at}; }
constexpr pm_show_path_rule with_session(path_grammar::place at) { return {pm_show_path_form::SESSION, at}; }
constexpr pm_show_path_rule delay_or_loss(path_grammar::place delay, path_grammar::place loss) {
    return {pm_show_path_form::NAME_BY_KIND, delay, loss};
}
constexpr pm_show_path_rule filtered(path_grammar::place at) { return {pm_show_path_form::FILTERED, at}; }
constexpr pm_show_path_rule composed_profile{pm_show_path_form::NAMED_PROFILE};

using enum pm_show_variant;
using enum pm_show_single;
using enum pm_show_nodes;
using enum pm_show_spacing;

// type, variant, root, item path          // what it shows
// record, single, nodes, display, and where they are not the usual ones: spacing, legend
//
// Of the histories only those of RSVP-TE tunnels are local, although details and counters of endpoints are.
constexpr pm_show_command COMMANDS[] = {
    {1, only, MAIN, with_name(intf_detail),  // interfaces
     pm_intf_parcel_descriptor, by_name, hosting, pm_show_intf},
    {2, only, MAIN, with_name(intf_detail),  // counters of interfaces
     pm_intf_parcel_descriptor, by_name, hosting, pm_show_intf_counters},
    {4, of_intf, MAIN, delay_or_loss(intf_delay_probe_history, intf_loss_probe_history),  // past probes
     pm_intf_history_parcel_descriptor, by_name, hosting, pm_show_intf_history},
    {4, of_srpolicy, MAIN, filtered(srpolicy_probe_history),  // past probes
     pm_srpolicy_history_parcel_descriptor, by_name, all, pm_show_srpolicy_history},
    {4, of_rsvpte, MAIN, filtered(rsvpte_probe_history),  // past probes
     pm_rsvpte_history_parcel_descriptor, by_name, local, pm_show_rsvpte_history},
    {4, of_endpoint, MAIN, filtered(endpoint_probe_history),  // past probes
     pm_endpoint_history_parcel_descriptor, by_name, all, pm_show_endpoint_history},
    {5, of_intf, MAIN, delay_or_loss(intf_delay_aggr_history, intf_loss_aggr_history),  // past aggregations
     pm_intf_history_parcel_descriptor, by_name, hosting, pm_show_intf_history},
    {5, of_srpolicy, MAIN, filtered(srpolicy_aggr_history),  // past aggregations
     pm_srpolicy_history_parcel_descriptor, by_name, all, pm_show_srpolicy_history},
    {5, of_rsvpte, MAIN, filtered(rsvpte_aggr_history),  // past aggregations
     pm_rsvpte_history_parcel_descriptor, by_name, local, pm_show_rsvpte_history},
    {5, of_endpoint, MAIN, filtered(endpoint_aggr_history),  // past aggregations
     pm_endpoint_history_parcel_descriptor, by_name, all, pm_show_endpoint_history},
    {6, only, MAIN, with_session(session),  // sessions
     pm_session_parcel_descriptor, by_session_id, all, pm_show_session},
    {7, only, RESP, with_name(resp_intf),  // interfaces of the responder
     pm_resp_intf_parcel_descriptor, by_name, all, pm_show_resp_intf},
    {8, only, RESP, with_name(resp_intf),  // counters of the responder's interfaces
     pm_resp_intf_parcel_descriptor, by_name, all, pm_show_resp_intf_counters},
    {9, only, MAIN, fixed(summary),  // summary of the service
     pm_summary_parcel_descriptor, always, all, pm_show_summary},
    {10, only, RESP, fixed(summary),  // summary of the responder
     pm_resp_summary_parcel_descriptor, always, all, pm_show_resp_summary},
    {11, only, RX, fixed(summary),  // summary of the receive path
     pm_rx_summary_parcel_descriptor, always, all, pm_show_rx_summary},
    {12, only, CHKPT, fixed(chkpt_scb),  // checkpointed sessions
     pm_chkpt_scb_parcel_descriptor, never, all, pm_show_chkpt_scb, dense},
    {13, only, MAIN, fixed(proc_fsm),  // state machine of the process
     pm_mgmt_proc_fsm_descriptor, always, all, pm_show_proc_fsm},
    {14, only, MAIN, fixed(batch_counters),  // counters of batched messages
     pm_stats_batch_t_descriptor, always, all, pm_show_batch_counters},
    {15, only, MAIN, filtered(rsvpte_detail),  // RSVP-TE tunnels
     pm_rsvpte_parcel_descriptor, by_name, local, pm_show_rsvpte},
    {16, only, MAIN, with_name(rsvpte_counters),  // counters of RSVP-TE tunnels
     pm_rsvpte_counters_parcel_descriptor, by_name, local, pm_show_rsvpte_counters},
    {17, only, MAIN, filtered(srpolicy_detail),  // SR policies
     pm_srpolicy_parcel_descriptor, by_name, hosting, pm_show_srpolicy},
    {18, only, MAIN, filtered(srpolicy_counters),  // counters of SR policies
     pm_srpolicy_counters_parcel_descriptor, by_name, hosting, pm_show_srpolicy_counters},
    {20, of_intf, MAIN, delay_or_loss(intf_delay_adv_history, intf_loss_adv_history),  // advertisements
     pm_intf_history_parcel_descriptor, by_name, hosting, pm_show_intf_history, spaced, pm_show_advert_legend},
    {20, of_srpolicy, MAIN, filtered(srpolicy_adv_history),  // advertisements
     pm_srpolicy_history_parcel_descriptor, by_name, all, pm_show_srpolicy_history, spaced, pm_show_advert_legend},
    {20, of_rsvpte, MAIN, filtered(rsvpte_adv_history),  // advertisements
     pm_rsvpte_history_parcel_descriptor, by_name, local, pm_show_rsvpte_history, spaced, pm_show_advert_legend},
    {20, of_endpoint, MAIN, filtered(endpoint_adv_history),  // advertisements
     pm_endpoint_history_parcel_descriptor, by_name, all, pm_show_endpoint_history, spaced, pm_show_advert_legend},
    {22, of_intf, MAIN, with_name(intf_loss_pkt_history),  // loss packets
     pm_intf_history_parcel_descriptor, by_name, hosting, pm_show_intf_history},
    {23, named_profile, MAIN, composed_profile,  // named profiles
     pm_name_profile_parcel_descriptor, by_path, all, pm_show_name_profile},
    {23, global_profile, MAIN, fixed(profile),  // the default profiles
     pm_profile_parcel_descriptor, always, all, pm_show_profile},
    {23, all_profiles, MAIN, fixed(all_profile),  // all profiles
     pm_name_profile_parcel_descriptor, never, all, pm_show_name_profile},
    {24, only, MAIN, fixed(dr),  // distribution of sessions
     pm_dr_info_descriptor, never, local, pm_show_dr},
    {25, only, CHKPT, fixed(chkpt_dr),  // checkpointed distribution
     pm_chkpt_dr_info_descriptor, never, local, pm_show_chkpt_dr},
    {26, only, MAIN, filtered(endpoint_detail),  // endpoints
     pm_endpoint_common_descriptor, by_name, local, pm_show_endpoint},
    {27, of_srpolicy, MAIN, filtered(srpolicy_live_history),  // changes of liveness
     pm_srpolicy_history_parcel_descriptor, by_name, all, pm_show_srpolicy_history},
    {27, of_endpoint, MAIN, filtered(endpoint_live_history),  // changes of liveness
     pm_endpoint_history_parcel_descriptor, by_name, all, pm_show_endpoint_live_history},
    {28, only, MAIN, filtered(endpoint_counters),  // counters of endpoints
     pm_endpoint_counters_parcel_descriptor, by_name, local, pm_show_endpoint_counters},
    {30, only, MAIN, fixed(pps_summary),  // packets per second
     pm_pps_summary_parcel_descriptor, always, all, print_pps_summary},
    {31, only, MAIN, fixed(capability),  // capabilities of the platform
     pm_capability_parcel_descriptor, always, all, print_capability},
    {32, only, MAIN, fixed(npu_db),  // line cards and their NPUs
     pm_dr_lc_npu_info_descriptor, always, local, print_lc_npu_db},
    {33, only, CHKPT, fixed(chkpt_dr_session),  // checkpointed distributed sessions
     pm_chkpt_dr_db_sess_info_descriptor, never, local, pm_show_chkpt_dr_session},
    {34, only, MAIN, fixed(dr_retry_queue),  // distribution records that wait
     pm_dr_retry_queue_info_descriptor, always, local, print_dr_retry_queue},
    {35, only, MAIN, with_session(probe_session),  // probe sessions
     pm_session_parcel_descriptor, by_session_id, all, pm_show_session},
    {36, only, MAIN, fixed(allowed_querier),  // allowed queriers
     pm_querier_prefixes_summary_descriptor, always, all, pm_show_allowed_queriers},
    {37, only, MAIN, fixed(allowed_responder),  // allowed responders
     pm_responder_prefixes_summary_descriptor, always, all, pm_show_allowed_responders},
};

static_assert(std::ranges::is_sorted(COMMANDS, {}, &pm_show_command::type));

}  // namespace

std::span<const pm_show_command> pm_show_commands() { return COMMANDS; }

std::span<const pm_show_command> pm_show_commands_of(std::uint32_t type) {
    return {std::ranges::lower_bound(COMMANDS, type, {}, &pm_show_command::type),
            std::ranges::upper_bound(COMMANDS, type, {}, &pm_show_command::type)};
}
