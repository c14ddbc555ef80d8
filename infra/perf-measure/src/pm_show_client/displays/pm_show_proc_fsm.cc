// SPDX-License-Identifier: Apache-2.0
#include "pm_show_client/displays/pm_show_proc_fsm.h"

#include <array>
#include <cstdint>
#include <ctime>

#include "base/pm_output.h"
#include "platform/kal_time.h"
#include "pm_show_client/pm_show_display.h"
#include "pm_utils/event_time.h"
#include "pm_utils/process_names.h"
#include "schema/pm_records.h"

namespace {

// Ages that are no age; what they mean differs from line to line.
constexpr std::uint32_t ZERO_AGE = 0;
constexpr std::uint32_t NO_AGE = 0xFFFFFFFF;

constexpr std::size_t CALENDAR_SIZE = 128;
constexpr char CALENDAR_FORMAT[] = "%a %b %d %H:%M:%S %Z %Y";

constexpr int REPORT_CARD_RULE = 123;
constexpr int EVENT_HISTORY_RULE = 133;

void print(const char *text) { pm_print<"%s">(text); }

void print_end_of_line() { pm_print<"\n">(); }

// A line that says what block follows.
void print_title(const char *title) { pm_print<"  %s:\n">(title); }

// Label and colon of a line whose value follows.
void print_label(pm_text label) { pm_print<"    %-24s: ">(label); }

void print_rule(int width) {
    static constexpr auto signs = [] {
        std::array<char, EVENT_HISTORY_RULE + 1> text{};
        text.fill('=');
        text.back() = '\0';
        return text;
    }();
    pm_print<"  %.*s">(width, signs.data());
    print_end_of_line();
}

// Times -------------------------------------------------------------------------------------------

std::int64_t now_in_seconds() { return static_cast<std::int64_t>(pm_get_epoch_time_in_msec() / 1000); }

bool happened(std::uint32_t age) { return age != ZERO_AGE && age != NO_AGE; }

// When an event was, and how long ago. The clock moves on between the two.
void print_time_ago(std::uint32_t age) {
    const std::timespec event{now_in_seconds() - age, 0};
    char text[CALENDAR_SIZE];
    kal_time_format_timespec2(&event, CALENDAR_FORMAT, KAL_TIME_LOCAL_ZONE, text, sizeof text);
    pm_print<"%s (%s ago)">(static_cast<const char *>(text),
                            sprint_dhms(static_cast<std::uint32_t>(now_in_seconds() - event.tv_sec)));
}

void print_time_or(std::uint32_t age, const char *zero, const char *none) {
    if (happened(age)) {
        print_time_ago(age);
    } else {
        print(age == ZERO_AGE ? zero : none);
    }
}

void print_time_or_never(std::uint32_t age) { print_time_or(age, "Never", "Never"); }

// Blocks ------------------------------------------------------------------------------------------

void print_role_and_state(const pm_mgmt_proc_fsm &fsm) {
    print("Perf-Meas Process FSM\n");
    pm_print<"  Current process role : %s">(pm_process_role_str(fsm.ProcessRole));
    if (fsm.ProcessRole == PM_PROCESS_PRIMARY_ACTIVE) {
        print(" (Master)");
    }
    print_end_of_line();
    pm_print<"  Current process state: %s\n">(pm_process_state_str(fsm.ProcessState));
    print_end_of_line();
}

void print_role_change(pm_text label, std::uint32_t age, const char *zero) {
    print_label(label);
    print_time_or(age, zero, "Never");
    print_end_of_line();
}

void print_role_changes(const pm_failover_status &status) {
    print_title("Process Role Change Status");
    print_role_change("Role Change Triggered", status.TriggeredTime, "No Role Change");
    print_role_change("Role Change Start", status.StartTime, "No");
    print_role_change("Role Change End", status.MasterTime, "No");
    print_end_of_line();
}

void print_state_transitions(const parcel_array<std::uint32_t> &ages) {
    print_title("Process State Transition Time");
    for (std::uint32_t state = 0; state < ages.count; ++state) {
        print_label(pm_process_state_str(state));
        print_time_or_never(ages[state]);
        print_end_of_line();
    }
    print_end_of_line();
}

void print_report_card(const pm_mgmt_proc_fsm_report_card &card) {
    pm_print<"    %-16s    %-4s (">(card.CollaboratorName, card.CollaboratorIsConnected ? "Up" : "Down");
    if (happened(card.ConnectionChangeTime)) {
        print_time_ago(card.ConnectionChangeTime);
        pm_print<")%-6s">(" ");
    } else {
        pm_print<"Never came Up) %-29s%-6s">(" ", " ");
    }
    print_time_or(card.IdtTime, "N/A", "No");
    print_end_of_line();
}

void print_report_cards(const parcel_array<pm_mgmt_proc_fsm_report_card> &cards) {
    print_title("Process Collaborator Report Card");
    pm_print<"    %-16s    %-52s    %-11s\n">("Collaborator", "Connection Status (Since)", "IDT Done (At)");
    print_rule(REPORT_CARD_RULE);
    for (const pm_mgmt_proc_fsm_report_card &card : cards) {
        print_report_card(card);
    }
    print_end_of_line();
}

void print_event(const pm_mgmt_proc_fsm_event_history &event) {
    pm_print<"    %-16s    %-16s    %-22s    %-16s    ">(
        pm_process_state_str(event.PreviousState), pm_process_state_str(event.NewState),
        pm_process_event_str(event.ProcessEvent), pm_process_collaborator_str(event.ProcessCollaborator));
    print_time_or_never(event.EventTimestamp);
    print_end_of_line();
}

void print_events(const parcel_array<pm_mgmt_proc_fsm_event_history> &events) {
    print_title("Process Event History");
    pm_print<"    %-36s    %-22s    %-16s    %-50s\n">("State transition", "Event", "Collaborator", "Time");
    pm_print<"    %-16s    %-16s\n">("From", "To");
    print_rule(EVENT_HISTORY_RULE);
    for (const pm_mgmt_proc_fsm_event_history &event : events) {
        print_event(event);
    }
}

}  // namespace

int pm_show_proc_fsm(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NO_RECORD;
    }
    const auto &fsm = *static_cast<const pm_mgmt_proc_fsm *>(decoded_parcel);
    print_role_and_state(fsm);
    print_role_changes(fsm.FailoverStatus);
    print_state_transitions(fsm.StateTransitionTime);
    print_report_cards(fsm.ReportCard);
    print_events(fsm.EventHistory);
    return PM_SHOW_PRINTED;
}
