// SPDX-License-Identifier: Apache-2.0
// The commands in words, as data: each phrase with the options of perf-show that it stands for, and one line
// of help for every word.
//
// This table alone says what the words are. The parser, the help, the completion, the manual page and the page
// of commands are all made from it; a new show command is a new row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace perf_measure {

// What an option takes.
enum class value_kind : std::uint8_t {
    nothing,
    number,   // from `smallest` to `largest`; decimal or 0x
    choice,   // one of `choices`
    address,  // IPv4 or IPv6
    text,     // a component of a filter key: no comma, at most LONGEST_FILTER_TEXT bytes
    name,     // of an item; completed from the store
    node,     // by name or id; completed from the inventory
};

inline constexpr std::size_t LONGEST_FILTER_TEXT = 63;
inline constexpr std::size_t LONGEST_NAME = 380;  // an item's whole path has 400 bytes at most

// A value that is one of several words.
struct choice {
    const char *word;
    const char *letters;  // perf-show's options for it
    const char *help;
    const char *wants = nullptr;  // the option that must be given too
};

// A word that may follow a phrase, each once and in any order.
struct option {
    const char *word;
    const char *letters;  // perf-show's options; a value follows them. "" for a choice, whose words have their own
    const char *help;
    value_kind value = value_kind::nothing;
    const char *value_name = nullptr;  // for help: NUMBER
    std::uint32_t smallest = 0;
    std::uint32_t largest = 0;
    std::span<const choice> choices = {};
    std::uint8_t group = 0;  // of several options of one group only one may be given; 0: no group
};

// Options by number. The order is that of the help.
enum class option_id : std::uint8_t {
    name,
    profile_name,
    session,
    brief,
    detail,
    verbose_policies,
    verbose_counters,
    internal,
    loss_session,
    own_lines,
    history_delay,
    history_loss,
    summary_delay,
    summary_liveness,
    plot_probe,
    plot_aggregated,
    plot_advertised,
    limit,
    color,
    policy_endpoint,
    endpoint_address,
    destination,
    origin,
    preference,
    discriminator,
    segment_list,
    policy_kind,
    endpoint_kind,
    host,
    npu,
    label,
    true_flag,
    vrf,
    lsp,
    profile_kind,
    transport,
    node,
    all_nodes,
    count
};

using option_set = std::uint64_t;
[[nodiscard]] constexpr option_set bit(option_id id) { return option_set{1} << static_cast<unsigned>(id); }

// Where the names of a phrase's items are: in the branches of a root, below a path.
struct name_source {
    const char *root = nullptr;  // null: the phrase takes no name
    const char *prefix = nullptr;
};

struct phrase {
    const char *words;    // "show sr-policies counters"
    const char *letters;  // "-c 18"; "" for what no single command of perf-show reads
    const char *help;
    option_set options = 0;
    name_source names = {};
    bool takes_name = false;  // a plot: a name follows at once, without a word before it
    bool is_metrics = false;
};

// The first words of several phrases: "show history".
struct phrase_group {
    const char *words;
    const char *help;
};

// A word that someone may try, and the one that is meant.
struct synonym {
    const char *tried;
    const char *meant;
};

[[nodiscard]] std::span<const phrase> phrases();
[[nodiscard]] std::span<const phrase_group> phrase_groups();
[[nodiscard]] std::span<const synonym> synonyms();
[[nodiscard]] const option &option_of(option_id id);

}  // namespace perf_measure
