// SPDX-License-Identifier: Apache-2.0
// The show commands as data: what each reads, how its item path is composed, and who displays it.
//
// Look a command's type up here to find its display.
#pragma once

#include <cstdint>
#include <span>

#include "front/generic_show.h"
#include "paths/item_paths.h"
#include "platform/parcel.h"
#include "pm_show_client/pm_show_display.h"

// Which row of a type a command line means. The number of a subtype is what -t gives.
enum class pm_show_variant : std::uint32_t {
    only = 0,  // the type has one row
    of_intf = 3,
    of_srpolicy = 19,
    of_rsvpte = 21,
    of_endpoint = 29,
    named_profile,   // -P
    global_profile,  // -S without -P
    all_profiles,    // neither
};

// How an item path comes from the row's texts and the options.
enum class pm_show_path_form : std::uint8_t {
    FIXED,          // the place's path
    NAME,           // and the name
    NAME_BY_KIND,   // the same, of the place for loss with -L
    SESSION,        // and the session id, if any
    FILTERED,       // and the name; with a filter the filtered path
    NAMED_PROFILE,  // pm_show_compose_named_profile()
};

struct pm_show_path_rule {
    pm_show_path_form form;
    path_grammar::place where = {};
    path_grammar::place where_for_loss = {};
};

// Whether the path names a single item. What always does is read without a batch, all else in batches of
// PM_SHOW_BATCH_SIZE.
enum class pm_show_single : std::uint8_t {
    never,
    always,
    by_name,        // when -i was given
    by_session_id,  // when the session id is not 0
    by_path,        // as the path's composition says
};

inline constexpr std::uint32_t PM_SHOW_BATCH_SIZE = 200;

// Which nodes are read unless the user chose some.
enum class pm_show_nodes : std::uint8_t {
    all,
    local,    // the local node only
    hosting,  // the node that hosts the interface in -i, when there is one
};

struct pm_show_command {
    std::uint32_t type;  // -c
    pm_show_variant variant;
    const char *root;
    pm_show_path_rule path;
    const parcel_descriptor *(*record)();  // the type of the items
    pm_show_single single;
    pm_show_nodes nodes;
    pm_show_display display;
    pm_show_spacing spacing = pm_show_spacing::spaced;
    pm_show_legend legend = nullptr;
};

inline constexpr std::uint32_t PM_SHOW_LIVE_HISTORY = 27;  // refuses subtypes in words of its own

// All rows, by ascending type.
[[nodiscard]] std::span<const pm_show_command> pm_show_commands();

// The rows of a command type; empty when no show command has that type.
[[nodiscard]] std::span<const pm_show_command> pm_show_commands_of(std::uint32_t type);
