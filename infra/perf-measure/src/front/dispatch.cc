// SPDX-License-Identifier: Apache-2.0
// From the options to a row of the command table, and from the row to a request.
#include "front/dispatch.h"

#include <algorithm>
#include <span>

#include "base/pm_output.h"
#include "front/command_table.h"
#include "front/resolve_node.h"
#include "pm_show_client/pm_show_options.h"

namespace {

// Which row of the command's type is meant; `subtyped` says that -t tells.
pm_show_variant wanted_variant(bool subtyped) {
    if (subtyped) {
        return static_cast<pm_show_variant>(pm_show_options.subtype);
    }
    if (pm_show_options.named_profile) {
        return pm_show_variant::named_profile;
    }
    return pm_show_options.global_profile ? pm_show_variant::global_profile : pm_show_variant::all_profiles;
}

void report_invalid_subtype() {
    if (pm_show_options.command_type == PM_SHOW_LIVE_HISTORY) {
        pm_print_error<"Liveness history only supported for SR Policy and Endpoint">();
    } else {
        pm_print_error<"Show command subtype invalid %u\n">(pm_show_options.subtype);
    }
}

// The row that says what to read; null when the command or its subtype is invalid, reported.
const pm_show_command *find_command() {
    const std::span<const pm_show_command> rows = pm_show_commands_of(pm_show_options.command_type);
    if (rows.empty()) {
        pm_print_error<"Show command type invalid %u\n">(pm_show_options.command_type);
        return nullptr;
    }
    if (rows.front().variant == pm_show_variant::only) {
        return &rows.front();
    }
    const bool subtyped = rows.front().variant <= pm_show_variant::of_endpoint;
    const auto found = std::ranges::find(rows, wanted_variant(subtyped), &pm_show_command::variant);
    if (found == rows.end()) {
        report_invalid_subtype();
        return nullptr;
    }
    return &*found;
}

void choose_nodes(pm_show_nodes nodes) {
    if (nodes == pm_show_nodes::local) {
        pm_show_options.local_node_only = true;
    }
    if (nodes == pm_show_nodes::hosting) {
        static_cast<void>(pm_show_resolve_node());  // without an interface, or its node, all nodes are read
    }
}

// Composes the item path; `*single_path` is whether it names a single item, where composition
// decides that. Fails, reported, when a name cannot be encoded.
errcode compose(const pm_show_path_rule &rule, pm_show_path &path, bool *single_path) {
    switch (rule.form) {
    case pm_show_path_form::FIXED: pm_format_text<"%s">(path, sizeof path, path_of(rule.where).data()); break;
    case pm_show_path_form::NAME: pm_show_compose_plain(path, rule.where); break;
    case pm_show_path_form::NAME_BY_KIND:
        pm_show_compose_plain(path, pm_show_options.loss_kind ? rule.where_for_loss : rule.where);
        break;
    case pm_show_path_form::SESSION: pm_show_compose_session(path, rule.where); break;
    case pm_show_path_form::FILTERED: pm_show_compose_filtered(path, rule.where); break;
    case pm_show_path_form::NAMED_PROFILE: return pm_show_compose_named_profile(path, single_path);
    }
    return ERRCODE_SUCCESS;
}

bool is_single(pm_show_single rule, bool single_path) {
    switch (rule) {
    case pm_show_single::never: return false;
    case pm_show_single::always: return true;
    case pm_show_single::by_name: return pm_show_options.name != nullptr;
    case pm_show_single::by_session_id: return pm_show_options.session_id != 0;
    case pm_show_single::by_path: break;
    }
    return single_path;
}

}  // namespace

pm_show_build pm_show_build_request(pm_show_request *request, pm_show_path &item_path) {
    const pm_show_command *const command = find_command();
    if (command == nullptr) {
        return pm_show_build::refused;
    }
    choose_nodes(command->nodes);
    bool single_path = false;
    if (compose(command->path, item_path, &single_path) != ERRCODE_SUCCESS) {
        return pm_show_build::nothing;
    }
    const parcel_descriptor *const record = command->record();
    *request = {
        .base_path = command->root,
        .item_path = item_path,
        .start_key = "",
        .display = command->display,
        .parcel_desc = record,
        .decoded_size = static_cast<std::uint32_t>(record->layout->size),
        .batch_size = command->single == pm_show_single::always ? 0 : PM_SHOW_BATCH_SIZE,
        .single_item = is_single(command->single, single_path) ? 1U : 0U,
        .spacing = command->spacing,
        .legend = command->legend,
    };
    return pm_show_build::ready;
}

int pm_show_dispatch() {
    pm_show_request request;
    pm_show_path item_path;
    switch (pm_show_build_request(&request, item_path)) {
    case pm_show_build::refused: return -1;
    case pm_show_build::nothing: return 0;
    case pm_show_build::ready: break;
    }
    generic_show_node_walker(&request);
    return 0;
}
