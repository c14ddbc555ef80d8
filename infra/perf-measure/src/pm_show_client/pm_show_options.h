// SPDX-License-Identifier: Apache-2.0
// What the command line asked for. The front end fills it (front/options.h); displays only read it.
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

    // Components of the filter keys. Three of them also select what the displays of SR policies and endpoints
    // print: the measurement kind in h_value, and the segment list that n_set and n_text name. The others mean
    // nothing here beyond their position in a key.
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

    // More components of the filter keys.
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
