// The rows of the show commands. See command_table.h.
#include "front/command_table.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

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
#include "schema/pm_records.h"

namespace {

// Data roots.
constexpr char MAIN[] = "/oper/perf_meas/main/";
constexpr char RESP[] = "/oper/perf_meas/resp/";
constexpr char RX[] = "/oper/perf_meas/rx/";
constexpr char CHKPT[] = "/oper/perf_meas/chkpt/";

// Subtypes.
constexpr std::uint32_t INTF = 3;
constexpr std::uint32_t SRPOLICY = 19;
constexpr std::uint32_t RSVPTE = 21;
constexpr std::uint32_t ENDPOINT = 29;

// Item paths.
constexpr pm_show_path_rule fixed(const char *path) { return {pm_show_path_form::FIXED, path}; }
constexpr pm_show_path_rule with_name(const char *prefix) { return {pm_show_path_form::NAME, prefix}; }
constexpr pm_show_path_rule with_session(const char *prefix) { return {pm_show_path_form::SESSION, prefix}; }
constexpr pm_show_path_rule delay_or_loss(const char *delay_prefix, const char *loss_prefix) {
    return {pm_show_path_form::NAME_BY_KIND, delay_prefix, loss_prefix};
}
constexpr pm_show_path_rule srpolicy(const char *plain_prefix, const char *filter_prefix) {
    return {pm_show_path_form::SRPOLICY, plain_prefix, filter_prefix};
}
constexpr pm_show_path_rule endpoint(const char *plain_prefix, const char *filter_prefix) {
    return {pm_show_path_form::ENDPOINT, plain_prefix, filter_prefix};
}
constexpr pm_show_path_rule rsvpte(const char *plain_prefix, const char *filter_prefix) {
    return {pm_show_path_form::RSVPTE, plain_prefix, filter_prefix};
}
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
    {1, MAIN, with_name("intf/detail/"), intf_record, 200, WITH_NAME, INTERFACE, pm_show_intf},
    {2, MAIN, with_name("intf/detail/"), intf_record, 200, WITH_NAME, INTERFACE, pm_show_intf_counters},
    {3, nullptr, invalid},
    {4, nullptr, by_subtype},   // probe history
    {5, nullptr, by_subtype},   // aggregated history
    {6, MAIN, with_session("session/"), session_record, 200, WITH_SESSION_ID, ALL, pm_show_session},
    {7, RESP, with_name("intf/"), resp_intf_record, 200, WITH_NAME, ALL, pm_show_resp_intf},
    {8, RESP, with_name("intf/"), resp_intf_record, 200, WITH_NAME, ALL, pm_show_resp_intf_counters},
    {9, MAIN, fixed("summary"), summary_record, 0, ALWAYS, ALL, pm_show_summary},
    {10, RESP, fixed("summary"), resp_summary_record, 0, ALWAYS, ALL, pm_show_resp_summary},
    {11, RX, fixed("summary"), rx_summary_record, 0, ALWAYS, ALL, pm_show_rx_summary},
    {12, CHKPT, fixed("scb"), chkpt_scb_record, 200, NEVER, ALL, pm_show_chkpt_scb},
    {13, MAIN, fixed("proc_fsm"), proc_fsm_record, 0, ALWAYS, ALL, pm_show_proc_fsm},
    {14, MAIN, fixed("counters/batch"), stats_batch_record, 0, ALWAYS, ALL, pm_show_batch_counters},
    {15, MAIN, rsvpte("rsvpte/detail/", "rsvpte/detail-filter/"), rsvpte_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte},
    {16, MAIN, with_name("rsvpte/counters/"), rsvpte_counters_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte_counters},
    {17, MAIN, srpolicy("srpolicy/detail/", "srpolicy/detail-filter/"), srpolicy_record, 200, WITH_NAME, INTERFACE, pm_show_srpolicy},
    {18, MAIN, srpolicy("srpolicy/counters/", "srpolicy/counters-filter/"), srpolicy_counters_record, 200, WITH_NAME, INTERFACE, pm_show_srpolicy_counters},
    {19, nullptr, invalid},
    {20, nullptr, by_subtype},  // advertisement history
    {21, nullptr, invalid},
    {22, nullptr, by_subtype},  // loss packet history
    {23, nullptr, by_profile},
    {24, MAIN, fixed("dr/"), dr_record, 200, NEVER, LOCAL, pm_show_dr},
    {25, CHKPT, fixed("dr"), chkpt_dr_record, 200, NEVER, LOCAL, pm_show_chkpt_dr},
    {26, MAIN, endpoint("endpoint/detail/", "endpoint/detail-filter/"), endpoint_record, 200, WITH_NAME, LOCAL, pm_show_endpoint},
    {27, nullptr, by_subtype},  // live history
    {28, MAIN, endpoint("endpoint/counters/", "endpoint/counters-filter/"), endpoint_counters_record, 200, WITH_NAME, LOCAL, pm_show_endpoint_counters},
    {29, nullptr, invalid},
    {30, MAIN, fixed("pps_summary"), pps_summary_record, 0, ALWAYS, ALL, print_pps_summary},
    {31, MAIN, fixed("capability"), capability_record, 0, ALWAYS, ALL, print_capability},
    {32, MAIN, fixed("npu_db"), npu_db_record, 0, ALWAYS, LOCAL, print_lc_npu_db},
    {33, CHKPT, fixed("dr-db-session"), chkpt_dr_session_record, 200, NEVER, LOCAL, pm_show_chkpt_dr_session},
    {34, MAIN, fixed("dr_retry_queue"), dr_retry_queue_record, 0, ALWAYS, LOCAL, print_dr_retry_queue},
    {35, MAIN, with_session("probe-session/"), session_record, 200, WITH_SESSION_ID, ALL, pm_show_session},
    {36, MAIN, fixed("allowed-querier/summary"), querier_prefixes_record, 0, ALWAYS, ALL, pm_show_allowed_queriers},
    {37, MAIN, fixed("allowed-responder/summary"), responder_prefixes_record, 0, ALWAYS, ALL, pm_show_allowed_responders},
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
    {INTF, {4, MAIN, delay_or_loss("intf/delay/probe-history/", "intf/loss/probe-history/"), intf_history_record, 200, WITH_NAME, INTERFACE, pm_show_intf_history}},
    {SRPOLICY, {4, MAIN, srpolicy("srpolicy/delay/probe-history/", "srpolicy/delay/probe-history-filter/"), srpolicy_history_record, 200, WITH_NAME, ALL, pm_show_srpolicy_history}},
    {RSVPTE, {4, MAIN, rsvpte("rsvpte/delay/probe-history/", "rsvpte/delay/probe-history-filter/"), rsvpte_history_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte_history}},
    {ENDPOINT, {4, MAIN, endpoint("endpoint/delay/probe-history/", "endpoint/delay/probe-history-filter/"), endpoint_history_record, 200, WITH_NAME, ALL, pm_show_endpoint_history}},
    {INTF, {5, MAIN, delay_or_loss("intf/delay/aggr-history/", "intf/loss/aggr-history/"), intf_history_record, 200, WITH_NAME, INTERFACE, pm_show_intf_history}},
    {SRPOLICY, {5, MAIN, srpolicy("srpolicy/delay/aggr-history/", "srpolicy/delay/aggr-history-filter/"), srpolicy_history_record, 200, WITH_NAME, ALL, pm_show_srpolicy_history}},
    {RSVPTE, {5, MAIN, rsvpte("rsvpte/delay/aggr-history/", "rsvpte/delay/aggr-history-filter/"), rsvpte_history_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte_history}},
    {ENDPOINT, {5, MAIN, endpoint("endpoint/delay/aggr-history/", "endpoint/delay/aggr-history-filter/"), endpoint_history_record, 200, WITH_NAME, ALL, pm_show_endpoint_history}},
    {INTF, {20, MAIN, delay_or_loss("intf/delay/adv-history/", "intf/loss/adv-history/"), intf_history_record, 200, WITH_NAME, INTERFACE, pm_show_intf_history}},
    {SRPOLICY, {20, MAIN, srpolicy("srpolicy/delay/adv-history/", "srpolicy/delay/adv-history-filter/"), srpolicy_history_record, 200, WITH_NAME, ALL, pm_show_srpolicy_history}},
    {RSVPTE, {20, MAIN, rsvpte("rsvpte/delay/adv-history/", "rsvpte/delay/adv-history-filter/"), rsvpte_history_record, 200, WITH_NAME, LOCAL, pm_show_rsvpte_history}},
    {ENDPOINT, {20, MAIN, endpoint("endpoint/delay/adv-history/", "endpoint/delay/adv-history-filter/"), endpoint_history_record, 200, WITH_NAME, ALL, pm_show_endpoint_history}},
    {INTF, {22, MAIN, with_name("intf/loss/pkt-history/"), intf_history_record, 200, WITH_NAME, INTERFACE, pm_show_intf_history}},
    {SRPOLICY, {PM_SHOW_LIVE_HISTORY, MAIN, srpolicy("srpolicy/liveness/live-history/", "srpolicy/liveness/live-history-filter/"), srpolicy_history_record, 200, WITH_NAME, ALL, pm_show_srpolicy_history}},
    {ENDPOINT, {PM_SHOW_LIVE_HISTORY, MAIN, endpoint("endpoint/delay/live-history/", "endpoint/delay/live-history-filter/"), endpoint_history_record, 200, WITH_NAME, ALL, pm_show_endpoint_live_history}},
};

// The rows of the profile command, in the order in which the options decide.
constexpr pm_show_command named_profiles{23, MAIN, named_profile, name_profile_record, 200, BY_PATH, ALL, pm_show_name_profile};
constexpr pm_show_command global_profile{23, MAIN, fixed("profile"), profile_record, 0, ALWAYS, ALL, pm_show_profile};
constexpr pm_show_command all_profiles{23, MAIN, fixed("all-profile/"), name_profile_record, 200, NEVER, ALL, pm_show_name_profile};
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
