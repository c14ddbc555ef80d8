// What the command line asked for, and the few values that live for the whole command.
//
// The front end fills them (front/options.h); the displays only read them, except that a table
// display clears pm_show_header_pending once it has printed its header.
#pragma once

#include <cstdint>

#include "platform/address.h"

inline constexpr std::uint32_t PM_SHOW_ALL_NODES = 0xFFFFFFFF;
inline constexpr std::uint32_t PM_SHOW_EVERY_KIND = 4;  // of measurement, in h_value; else a pm_measurement_type_e

// The request. The member initialisers are the defaults. Texts are owned copies that live until
// the program ends; null when not given.
struct pm_show_options_record {
    std::uint32_t command_type = 0;             // -c
    std::uint32_t subtype = 0;                  // -t
    std::uint32_t history_limit = 0;            // -l; 0 means no limit
    const char *name = nullptr;                 // -i: interface name, or last component of a filtered path
    std::uint32_t session_id = 0;               // -s
    bool detail = false;                        // -d
    bool verbose = false;                       // -v
    bool internal = false;                      // -p
    std::uint32_t node_id = PM_SHOW_ALL_NODES;  // -N
    bool all_nodes = false;                     // -A

    // Components of the filter keys; they mean nothing here beyond their position in a key.
    bool f_set = false;
    std::uint32_t f_value = 0;
    bool address_set = false;  // -e
    ip_address address{};
    bool o_set = false;
    std::uint32_t o_value = 0;
    bool g_set = false;
    std::uint32_t g_value = 0;
    bool m_set = false;
    std::uint32_t m_value = 0;
    bool n_set = false;
    const char *n_text = nullptr;
    bool true_flag = false;  // -O
    bool a_set = false;
    std::uint32_t a_value = 0;

    // Measurement kinds; profile_kind is the argument of the last of -D, -L, -W and -M.
    bool delay_kind = false;     // -D
    bool loss_kind = false;      // -L
    bool liveness_kind = false;  // -W
    bool probe_kind = false;     // -M
    std::uint32_t profile_kind = 4;
    bool profile_type_set = false;  // -T
    std::uint32_t profile_type = 4;
    bool brief = false;                  // -b
    bool named_profile = false;          // -P
    const char *profile_name = nullptr;  // -Q
    bool global_profile = false;         // -S

    bool V_set = false;
    const char *V_text = nullptr;
    bool h_set = false;
    std::uint32_t h_value = PM_SHOW_EVERY_KIND;
    bool jr_set = false;  // -j gives 1, -r gives 0
    std::uint32_t jr_value = 2;
    bool u_set = false;
    std::uint32_t u_value = 0xFFFF;
    bool k_set = false;
    std::uint32_t k_value = 0x100000;

    bool local_node_only = false;  // set by some commands of the dispatch table
};

extern pm_show_options_record pm_show_options;

// Wall-clock milliseconds since the epoch, taken once at start. Every age is computed from it.
extern std::uint64_t pm_show_now_msec;

// Set before each node is read; a table display prints its column header while it is set.
extern bool pm_show_header_pending;

// 160 '-' and a newline, around node headers.
inline constexpr char pm_show_separator[] =
    "--------------------------------------------------------------------------------"
    "--------------------------------------------------------------------------------\n";

// A blank, 158 '-', a blank and a newline, under the column headers of tables.
inline constexpr char pm_show_table_rule[] =
    " -------------------------------------------------------------------------------"
    "------------------------------------------------------------------------------- \n";

static_assert(sizeof pm_show_separator == 161 + 1 && sizeof pm_show_table_rule == 161 + 1);

// Results of a display.
inline constexpr int PM_SHOW_PRINTED = 0;
inline constexpr int PM_SHOW_NO_RECORD = 22;  // called without a record
inline constexpr int PM_SHOW_NOTHING = 125;   // printed nothing: no blank line before the next item

// Prints one decoded record and returns one of the results above. The record is the caller's and
// valid during the call only; null once for an empty listing.
using pm_show_display = int (*)(const void *decoded_parcel);
