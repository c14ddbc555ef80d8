// The rows of the show commands. See command_table.h.
#include "front/command_table.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "paths/item_paths.h"
#include "paths/roots.h"
#include "pm_show_client/displays/allowed_queriers.h"
#include "pm_show_client/displays/allowed_responders.h"
#include "pm_show_client/displays/batch_counters.h"
#include "pm_show_client/displays/capability.h"
#include "pm_show_client/displays/chkpt_dr.h"
#include "pm_show_client/displays/chkpt_dr_session.h"
#include "pm_show_client/displays/chkpt_scb.h"
#include "pm_show_client/displays/dr_retry_queue.h"
#include "pm_show_client/displays/endpoint.h"
#include "pm_show_client/displays/endpoint_counters.h"
#include "pm_show_client/displays/history_displays.h"
#include "pm_show_client/displays/intf.h"
#include "pm_show_client/displays/npu_database.h"
#include "pm_show_client/displays/pps_summary.h"
#include "pm_show_client/displays/process_fsm.h"
#include "pm_show_client/displays/profile.h"
#include "pm_show_client/displays/resp_intf.h"
#include "pm_show_client/displays/resp_summary.h"
#include "pm_show_client/displays/rsvpte.h"
#include "pm_show_client/displays/rx_summary.h"
#include "pm_show_client/displays/session.h"
#include "pm_show_client/displays/session_distribution.h"
#include "pm_show_client/displays/srpolicy.h"
#include "pm_show_client/displays/srpolicy_counters.h"
#include "pm_show_client/displays/summary.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace {

// Data roots.
constexpr const char *MAIN = path_of(path_grammar::root::main);
constexpr const char *RESP = path_of(path_grammar::root::responder);
constexpr const char *RX = path_of(path_grammar::root::receive);
constexpr const char *CHKPT = path_of(path_grammar::root::checkpoint);

// Subtypes.
constexpr std::uint32_t INTF = 3;
constexpr std::uint32_t SRPOLICY = 19;
constexpr std::uint32_t RSVPTE = 21;
constexpr std::uint32_t ENDPOINT = 29;

// Item paths.
using enum path_grammar::place;
constexpr pm_show_path_rule fixed(path_grammar::place at) { return {pm_show_path_form::FIXED, at}; }
constexpr pm_show_path_rule with_name(path_grammar::place at) { return {pm_show_path_form::NAME, at}; }
constexpr pm_show_path_rule with_session(path_grammar::place at) { return {pm_show_path_form::SESSION, at}; }
constexpr pm_show_path_rule delay_or_loss(path_grammar::place delay, path_grammar::place loss) {
    return {pm_show_path_form::NAME_BY_KIND, delay, loss};
}
constexpr pm_show_path_rule filtered(path_grammar::place at) { return {pm_show_path_form::FILTERED, at}; }
constexpr pm_show_path_rule invalid{};
constexpr pm_show_path_rule named_profile{pm_show_path_form::NAMED_PROFILE};
constexpr pm_show_path_rule by_subtype{pm_show_path_form::BY_SUBTYPE};
constexpr pm_show_path_rule by_profile{pm_show_path_form::BY_PROFILE};

// Record types, each with the size that its structure must have.
template <class Record, std::size_t Size>
constexpr pm_show_record record(const parcel_descriptor *(*descriptor)()) {
    static_assert(sizeof(Record) == Size);
    return {descriptor, Size};
}

constexpr auto intf_record = record<pm_intf_parcel, 288>(pm_intf_parcel_descriptor);
constexpr auto session_record = record<pm_session_parcel, 584>(pm_session_parcel_descriptor);
constexpr auto resp_intf_record = record<pm_resp_intf_parcel, 168>(pm_resp_intf_parcel_descriptor);
constexpr auto summary_record = record<pm_summary_parcel, 1616>(pm_summary_parcel_descriptor);
constexpr auto resp_summary_record = record<pm_resp_summary_parcel, 112>(pm_resp_summary_parcel_descriptor);
constexpr auto rx_summary_record = record<pm_rx_summary_parcel, 272>(pm_rx_summary_parcel_descriptor);
constexpr auto chkpt_scb_record = record<pm_chkpt_scb_parcel, 16>(pm_chkpt_scb_parcel_descriptor);
constexpr auto proc_fsm_record = record<pm_mgmt_proc_fsm, 64>(pm_mgmt_proc_fsm_descriptor);
constexpr auto stats_batch_record = record<pm_stats_batch_t, 280>(pm_stats_batch_t_descriptor);
constexpr auto rsvpte_record = record<pm_rsvpte_parcel, 32>(pm_rsvpte_parcel_descriptor);
constexpr auto rsvpte_counters_record = record<pm_rsvpte_counters_parcel, 24>(pm_rsvpte_counters_parcel_descriptor);
constexpr auto srpolicy_record = record<pm_srpolicy_parcel, 96>(pm_srpolicy_parcel_descriptor);
constexpr auto srpolicy_counters_record =
    record<pm_srpolicy_counters_parcel, 40>(pm_srpolicy_counters_parcel_descriptor);
constexpr auto dr_record = record<pm_dr_info, 48>(pm_dr_info_descriptor);
constexpr auto chkpt_dr_record = record<pm_chkpt_dr_info, 16>(pm_chkpt_dr_info_descriptor);
constexpr auto endpoint_record = record<pm_endpoint_common, 56>(pm_endpoint_common_descriptor);
constexpr auto endpoint_counters_record =
    record<pm_endpoint_counters_parcel, 24>(pm_endpoint_counters_parcel_descriptor);
constexpr auto pps_summary_record = record<pm_pps_summary_parcel, 192>(pm_pps_summary_parcel_descriptor);
constexpr auto capability_record = record<pm_capability_parcel, 16>(pm_capability_parcel_descriptor);
constexpr auto npu_db_record = record<pm_dr_lc_npu_info, 24>(pm_dr_lc_npu_info_descriptor);
constexpr auto chkpt_dr_session_record = record<pm_chkpt_dr_db_sess_info, 24>(pm_chkpt_dr_db_sess_info_descriptor);
constexpr auto dr_retry_queue_record = record<pm_dr_retry_queue_info, 16>(pm_dr_retry_queue_info_descriptor);
constexpr auto querier_prefixes_record =
    record<pm_querier_prefixes_summary, 80>(pm_querier_prefixes_summary_descriptor);
constexpr auto responder_prefixes_record =
    record<pm_responder_prefixes_summary, 88>(pm_responder_prefixes_summary_descriptor);

constexpr auto intf_history_record = record<pm_intf_history_parcel, 56>(pm_intf_history_parcel_descriptor);
constexpr auto srpolicy_history_record = record<pm_srpolicy_history_parcel, 56>(pm_srpolicy_history_parcel_descriptor);
constexpr auto rsvpte_history_record = record<pm_rsvpte_history_parcel, 24>(pm_rsvpte_history_parcel_descriptor);
constexpr auto endpoint_history_record = record<pm_endpoint_history_parcel, 88>(pm_endpoint_history_parcel_descriptor);

constexpr auto name_profile_record = record<pm_name_profile_parcel, 352>(pm_name_profile_parcel_descriptor);
constexpr auto profile_record = record<pm_profile_parcel, 1824>(pm_profile_parcel_descriptor);

using enum pm_show_single;
using enum pm_show_nodes;

// Row N - 1 is command type N. The numbers 3, 19, 21 and 29 are no show commands.
// clang-format off
constexpr pm_show_command commands[] = {
    // type, root, item path, record, batch, single, nodes, display
    {1, MAIN, with_name(intf_detail), intf_record, 200, WITH_NAME, INTERFACE, pm_show_intf},
    {2, MAIN, with_name(intf_detail), intf_record, 200, WITH_NAME, INTERFACE, pm_show_intf},
    {3, nullptr, invalid},
    {4, nullptr, by_subtype},   // probe history
    {5, nullptr, by_subtype},   // aggregated history
    {6, MAIN, with_session(session), session_record, 200, WITH_SESSION_ID, ALL, pm_show_session},
    {7, RESP, with_name(resp_intf), resp_intf_record, 200, WITH_NAME, ALL, pm_show_resp_intf},
    {8, RESP, with_name(resp_intf), resp_intf_record, 200, WITH_NAME, ALL, pm_show_resp_intf},
    {9, MAIN, fixed(summary), summary_record, 0, ALWAYS, ALL, pm_show_summary},
    {10, RESP, fixed(summary), resp_summary_record, 0, ALWAYS, ALL, pm_show_resp_summary},
    {11, RX, fixed(summary), rx_summary_record, 0, ALWAYS, ALL, pm_show_rx_summary},
    {12, CHKPT, fixed(chkpt_scb), chkpt_scb_record, 200, NEVER, ALL, pm_show_chkpt_scb},
    {13, MAIN, fixed(proc_fsm), proc_fsm_record, 0, ALWAYS, ALL, pm_show_proc_fsm},
    {14, MAIN, fixed(batch_counters), stats_batch_record, 0, ALWAYS, ALL, pm_show_batch_counters},
    {15, MAIN, filtered(rsvpte_detail), rsvpte_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte},
    {16, MAIN, with_name(rsvpte_counters), rsvpte_counters_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte_counters},
    {17, MAIN, filtered(srpolicy_detail), srpolicy_record, 200, WITH_NAME, INTERFACE, pm_show_srpolicy},
    {18, MAIN, filtered(srpolicy_counters), srpolicy_counters_record, 200, WITH_NAME, INTERFACE, pm_show_srpolicy_counters},
    {19, nullptr, invalid},
    {20, nullptr, by_subtype},  // advertisement history
    {21, nullptr, invalid},
    {22, nullptr, by_subtype},  // loss packet history
    {23, nullptr, by_profile},
    {24, MAIN, fixed(dr), dr_record, 200, NEVER, LOCAL, pm_show_dr},
    {25, CHKPT, fixed(chkpt_dr), chkpt_dr_record, 200, NEVER, LOCAL, pm_show_chkpt_dr},
    {26, MAIN, filtered(endpoint_detail), endpoint_record, 200, WITH_NAME, LOCAL, pm_show_endpoint},
    {27, nullptr, by_subtype},  // live history
    {28, MAIN, filtered(endpoint_counters), endpoint_counters_record, 200, WITH_NAME, LOCAL, pm_show_endpoint_counters},
    {29, nullptr, invalid},
    {30, MAIN, fixed(pps_summary), pps_summary_record, 0, ALWAYS, ALL, print_pps_summary},
    {31, MAIN, fixed(capability), capability_record, 0, ALWAYS, ALL, print_capability},
    {32, MAIN, fixed(npu_db), npu_db_record, 0, ALWAYS, LOCAL, print_lc_npu_db},
    {33, CHKPT, fixed(chkpt_dr_session), chkpt_dr_session_record, 200, NEVER, LOCAL, pm_show_chkpt_dr_session},
    {34, MAIN, fixed(dr_retry_queue), dr_retry_queue_record, 0, ALWAYS, LOCAL, print_dr_retry_queue},
    {35, MAIN, with_session(probe_session), session_record, 200, WITH_SESSION_ID, ALL, pm_show_session},
    {36, MAIN, fixed(allowed_querier), querier_prefixes_record, 0, ALWAYS, ALL, pm_show_allowed_queriers},
    {37, MAIN, fixed(allowed_responder), responder_prefixes_record, 0, ALWAYS, ALL, pm_show_allowed_responders},
};
// clang-format on

// The rows of the commands that a subtype completes.
struct subtype_row {
    std::uint32_t subtype;
    pm_show_command command;
};

// Of these families only the RSVP-TE one is local, although endpoint detail and counters are.
// clang-format off
constexpr subtype_row subtypes[] = {
    {INTF, {4, MAIN, delay_or_loss(intf_delay_probe_history, intf_loss_probe_history), intf_history_record, 200, WITH_NAME, INTERFACE, pm_show_intf_history}},
    {SRPOLICY, {4, MAIN, filtered(srpolicy_probe_history), srpolicy_history_record, 200, WITH_NAME, ALL, pm_show_srpolicy_history}},
    {RSVPTE, {4, MAIN, filtered(rsvpte_probe_history), rsvpte_history_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte_history}},
    {ENDPOINT, {4, MAIN, filtered(endpoint_probe_history), endpoint_history_record, 200, WITH_NAME, ALL, pm_show_endpoint_history}},
    {INTF, {5, MAIN, delay_or_loss(intf_delay_aggr_history, intf_loss_aggr_history), intf_history_record, 200, WITH_NAME, INTERFACE, pm_show_intf_history}},
    {SRPOLICY, {5, MAIN, filtered(srpolicy_aggr_history), srpolicy_history_record, 200, WITH_NAME, ALL, pm_show_srpolicy_history}},
    {RSVPTE, {5, MAIN, filtered(rsvpte_aggr_history), rsvpte_history_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte_history}},
    {ENDPOINT, {5, MAIN, filtered(endpoint_aggr_history), endpoint_history_record, 200, WITH_NAME, ALL, pm_show_endpoint_history}},
    {INTF, {20, MAIN, delay_or_loss(intf_delay_adv_history, intf_loss_adv_history), intf_history_record, 200, WITH_NAME, INTERFACE, pm_show_intf_history}},
    {SRPOLICY, {20, MAIN, filtered(srpolicy_adv_history), srpolicy_history_record, 200, WITH_NAME, ALL, pm_show_srpolicy_history}},
    {RSVPTE, {20, MAIN, filtered(rsvpte_adv_history), rsvpte_history_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte_history}},
    {ENDPOINT, {20, MAIN, filtered(endpoint_adv_history), endpoint_history_record, 200, WITH_NAME, ALL, pm_show_endpoint_history}},
    {INTF, {22, MAIN, with_name(intf_loss_pkt_history), intf_history_record, 200, WITH_NAME, INTERFACE, pm_show_intf_history}},
    {SRPOLICY, {PM_SHOW_LIVE_HISTORY, MAIN, filtered(srpolicy_live_history), srpolicy_history_record, 200, WITH_NAME, ALL, pm_show_srpolicy_history}},
    {ENDPOINT, {PM_SHOW_LIVE_HISTORY, MAIN, filtered(endpoint_live_history), endpoint_history_record, 200, WITH_NAME, ALL, pm_show_endpoint_live_history}},
};

// The rows of the profile command, in the order in which the options decide.
constexpr pm_show_command named_profiles{23, MAIN, named_profile, name_profile_record, 200, BY_PATH, ALL, pm_show_name_profile};
constexpr pm_show_command global_profile{23, MAIN, fixed(profile), profile_record, 0, ALWAYS, ALL, pm_show_profile};
constexpr pm_show_command all_profiles{23, MAIN, fixed(all_profile), name_profile_record, 200, NEVER, ALL, pm_show_name_profile};
// clang-format on

constexpr bool rows_are_numbered() {
    for (std::size_t row = 0; row < std::size(commands); ++row) {
        if (commands[row].type != row + 1) {
            return false;
        }
    }
    return std::size(commands) == 37;
}
static_assert(rows_are_numbered());

}  // namespace

const pm_show_command *pm_show_find_command(std::uint32_t type) {
    if (type == 0 || type > std::size(commands) || commands[type - 1].path.form == pm_show_path_form::INVALID) {
        return nullptr;
    }
    return &commands[type - 1];
}

const pm_show_command *pm_show_find_subtype(std::uint32_t type, std::uint32_t subtype) {
    const subtype_row *const found = std::ranges::find_if(subtypes, [type, subtype](const subtype_row &row) {
        return row.command.type == type && row.subtype == subtype;
    });
    return found != std::end(subtypes) ? &found->command : nullptr;
}

const pm_show_command &pm_show_named_profile_command() { return named_profiles; }
const pm_show_command &pm_show_global_profile_command() { return global_profile; }
const pm_show_command &pm_show_all_profiles_command() { return all_profiles; }
