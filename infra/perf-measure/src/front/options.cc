// SPDX-License-Identifier: Apache-2.0
// The option table and its getopt loop.
#include "front/options.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <unistd.h>

#include "base/pm_kept_memory.h"
#include "base/pm_output.h"
#include "pm_show_client/pm_show_options.h"

namespace {

using record = pm_show_options_record;

constexpr char OPTION_LETTERS[] = "a:bc:de:f:l:g:h:i:k:m:n:o:ps:t:vAOD:L:M:W:PQ:SN:T:V:rju:";

// What one letter sets: its flag, and its argument as a number or as a text. Null for none.
struct option {
    char letter;
    bool record::*flag;
    std::uint32_t record::*number = nullptr;
    const char *record::*text = nullptr;
};

// -e, -j and -r also store what is no plain argument; see apply().
constexpr option OPTIONS[] = {
    {'c', nullptr, &record::command_type},
    {'t', nullptr, &record::subtype},
    {'l', nullptr, &record::history_limit},
    {'i', nullptr, nullptr, &record::name},
    {'s', nullptr, &record::session_id},
    {'N', nullptr, &record::node_id},
    {'A', &record::all_nodes},
    {'e', &record::address_set},
    {'f', &record::f_set, &record::f_value},
    {'o', &record::o_set, &record::o_value},
    {'g', &record::g_set, &record::g_value},
    {'m', &record::m_set, &record::m_value},
    {'h', &record::h_set, &record::h_value},
    {'u', &record::u_set, &record::u_value},
    {'k', &record::k_set, &record::k_value},
    {'a', &record::a_set, &record::a_value},
    {'n', &record::n_set, nullptr, &record::n_text},
    {'V', &record::V_set, nullptr, &record::V_text},
    {'O', &record::true_flag},
    {'j', &record::jr_set},
    {'r', &record::jr_set},
    {'D', &record::delay_kind, &record::profile_kind},
    {'L', &record::loss_kind, &record::profile_kind},
    {'W', &record::liveness_kind, &record::profile_kind},
    {'M', &record::probe_kind, &record::profile_kind},
    {'T', &record::profile_type_set, &record::profile_type},
    {'P', &record::named_profile},
    {'Q', nullptr, nullptr, &record::profile_name},
    {'S', &record::global_profile},
    {'d', &record::detail},
    {'v', &record::verbose},
    {'p', &record::internal},
    {'b', &record::brief},
};

// Sets what `letter` means; `argument` is null for options without one.
void apply(int letter, const char *argument) {
    const option *const found = std::ranges::find(OPTIONS, letter, &option::letter);
    if (found == std::end(OPTIONS)) {
        pm_print_error<"Unrecognised argument %u">(letter);
        return;
    }
    if (found->flag != nullptr) {
        pm_show_options.*found->flag = true;
    }
    if (found->number != nullptr) {
        pm_show_options.*found->number = static_cast<std::uint32_t>(std::strtoul(argument, nullptr, 0));
    }
    if (found->text != nullptr) {
        const pm_kept_memory text;
        pm_show_options.*found->text = ::strdup(argument);
    }
    if (letter == 'e' && hex_string2ip_addr(argument, &pm_show_options.address) != 0) {
        pm_print_error<"Invalid IP address">();  // -e still counts as given
    }
    if (letter == 'j' || letter == 'r') {
        pm_show_options.jr_value = letter == 'j' ? 1 : 0;
    }
}

}  // namespace

void pm_show_parse_options(int argc, char **argv) {
    pm_show_options = {};
    ::opterr = 0;  // the only message on a bad option is ours
    ::optind = 0;  // begin again, whatever was parsed before
    for (int letter = 0; (letter = ::getopt(argc, argv, OPTION_LETTERS)) != -1;) {
        apply(letter, ::optarg);
    }
}
