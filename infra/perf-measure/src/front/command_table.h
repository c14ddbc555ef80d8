// The show commands as data: what each reads, how its item path is composed, and who displays it.
//
// Look a command's type up here to find its display.
#pragma once

#include <cstdint>

#include "paths/item_paths.h"
#include "platform/parcel.h"
#include "pm_show_client/pm_show_options.h"

// How an item path comes from the row's texts and the options.
enum class pm_show_path_form : std::uint8_t {
    INVALID,        // the row is no show command
    FIXED,          // the place's path
    NAME,           // and the name
    NAME_BY_KIND,   // the same, of the place for loss with -L
    SESSION,        // and the session id, if any
    FILTERED,       // and the name; with a filter the filtered path
    NAMED_PROFILE,  // pm_show_compose_named_profile()
    BY_SUBTYPE,     // another row says: that of the command's subtype
    BY_PROFILE,     // another row says: that of the profile options
};

struct pm_show_path_rule {
    pm_show_path_form form = pm_show_path_form::INVALID;
    path_grammar::place where = {};
    path_grammar::place where_for_loss = {};
};

// Whether the path names a single item.
enum class pm_show_single : std::uint8_t {
    NEVER,
    ALWAYS,
    WITH_NAME,        // when -i was given
    WITH_SESSION_ID,  // when the session id is not 0
    BY_PATH,          // as the path's composition says
};

// Which nodes are read unless the user chose some.
enum class pm_show_nodes : std::uint8_t {
    ALL,
    LOCAL,      // the local node only
    INTERFACE,  // the node that hosts the interface in -i, when there is one
};

// A record type and the size of its structure.
struct pm_show_record {
    const parcel_descriptor *(*descriptor)() = nullptr;
    std::uint32_t size = 0;
};

struct pm_show_command {
    std::uint32_t type;          // -c
    const char *root = nullptr;  // null: no show command, or another row says
    pm_show_path_rule path = {};
    pm_show_record record = {};
    std::uint32_t batch_size = 0;
    pm_show_single single = pm_show_single::NEVER;
    pm_show_nodes nodes = pm_show_nodes::ALL;
    pm_show_display display = nullptr;
};

inline constexpr std::uint32_t PM_SHOW_LIVE_HISTORY = 27;  // refuses subtypes in words of its own

// The row of a command type; null when no show command has that type.
[[nodiscard]] const pm_show_command *pm_show_find_command(std::uint32_t type);

// The row of a subtype of a BY_SUBTYPE command; null when the command has no such subtype.
[[nodiscard]] const pm_show_command *pm_show_find_subtype(std::uint32_t type, std::uint32_t subtype);

// The rows of the BY_PROFILE command.
[[nodiscard]] const pm_show_command &pm_show_named_profile_command();
[[nodiscard]] const pm_show_command &pm_show_global_profile_command();
[[nodiscard]] const pm_show_command &pm_show_all_profiles_command();
