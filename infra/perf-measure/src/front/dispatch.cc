// Requests from rows of the command table. See dispatch.h.
#include "front/dispatch.h"

#include "base/pm_assert.h"
#include "base/pm_output.h"
#include "front/command_table.h"
#include "front/resolve_node.h"
#include "pm_show_client/pm_show_options.h"

namespace {

const pm_show_command *find_subtype() {
    const std::uint32_t type = pm_show_options.command_type;
    const std::uint32_t subtype = pm_show_options.subtype;
    const pm_show_command *const command = pm_show_find_subtype(type, subtype);
    if (command == nullptr && type == PM_SHOW_LIVE_HISTORY) {
        pm_print_error<"Liveness history only supported for SR Policy and Endpoint">();
    } else if (command == nullptr) {
        pm_print_error<"Show command subtype invalid %u\n">(subtype);
    }
    return command;
}

const pm_show_command *find_profile() {
    if (pm_show_options.named_profile) {
        return &pm_show_named_profile_command();
    }
    return pm_show_options.global_profile ? &pm_show_global_profile_command() : &pm_show_all_profiles_command();
}

// The row that says what to read; null when the command or its subtype is invalid, reported.
const pm_show_command *find_command() {
    const pm_show_command *const command = pm_show_find_command(pm_show_options.command_type);
    if (command == nullptr) {
        pm_print_error<"Show command type invalid %u\n">(pm_show_options.command_type);
        return nullptr;
    }
    switch (command->path.form) {
    case pm_show_path_form::BY_SUBTYPE: return find_subtype();
    case pm_show_path_form::BY_PROFILE: return find_profile();
    default: return command;
    }
}

void choose_nodes(pm_show_nodes nodes) {
    if (nodes == pm_show_nodes::LOCAL) {
        pm_show_options.local_node_only = true;
    }
    if (nodes == pm_show_nodes::INTERFACE) {
        static_cast<void>(pm_show_resolve_node());  // without an interface, or its node, all nodes are read
    }
}

// Composes the item path; `*single_path` is whether it names a single item, where composition
// decides that. Fails, reported, when a name cannot be encoded.
errcode compose(const pm_show_path_rule &rule, pm_show_path &path, bool *single_path) {
    switch (rule.form) {
    case pm_show_path_form::FIXED: pm_snprintf(path, sizeof path, "%s", path_of(rule.where).data()); break;
    case pm_show_path_form::NAME: pm_show_compose_plain(path, rule.where); break;
    case pm_show_path_form::NAME_BY_KIND:
        pm_show_compose_plain(path, pm_show_options.loss_kind ? rule.where_for_loss : rule.where);
        break;
    case pm_show_path_form::SESSION: pm_show_compose_session(path, rule.where); break;
    case pm_show_path_form::FILTERED: pm_show_compose_filtered(path, rule.where); break;
    case pm_show_path_form::NAMED_PROFILE: return pm_show_compose_named_profile(path, single_path);
    case pm_show_path_form::INVALID:
    case pm_show_path_form::BY_SUBTYPE:
    case pm_show_path_form::BY_PROFILE:
        PM_ASSERT(false, "the row says what to read", "front",
                  "compose(const pm_show_path_rule &, pm_show_path &, bool *)");
    }
    return ERRCODE_SUCCESS;
}

bool is_single(pm_show_single rule, bool single_path) {
    switch (rule) {
    case pm_show_single::NEVER: return false;
    case pm_show_single::ALWAYS: return true;
    case pm_show_single::WITH_NAME: return pm_show_options.name != nullptr;
    case pm_show_single::WITH_SESSION_ID: return pm_show_options.session_id != 0;
    case pm_show_single::BY_PATH: break;
    }
    return single_path;
}

}  // namespace

pm_show_build pm_show_build_request(pm_show_request *request, pm_show_path &item_path) {
    const pm_show_command *const command = find_command();
    if (command == nullptr) {
        return pm_show_build::REFUSED;
    }
    choose_nodes(command->nodes);
    bool single_path = false;
    if (compose(command->path, item_path, &single_path) != ERRCODE_SUCCESS) {
        return pm_show_build::NOTHING;
    }
    *request = {
        .base_path = command->root,
        .item_path = item_path,
        .start_key = "",
        .display = command->display,
        .parcel_desc = command->record.descriptor(),
        .decoded_size = command->record.size,
        .batch_size = command->batch_size,
        .single_item = is_single(command->single, single_path) ? 1U : 0U,
    };
    return pm_show_build::READY;
}

int pm_show_dispatch() {
    pm_show_request request;
    pm_show_path item_path;
    switch (pm_show_build_request(&request, item_path)) {
    case pm_show_build::REFUSED: return -1;
    case pm_show_build::NOTHING: return 0;
    case pm_show_build::READY: break;
    }
    generic_show_node_walker(&request);
    return 0;
}
