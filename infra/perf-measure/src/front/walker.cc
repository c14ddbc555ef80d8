// SPDX-License-Identifier: Apache-2.0
// Which nodes a show reads, in which order, and what is printed between them.
#include "front/walker.h"

#include <cstdint>

#include "base/pm_output.h"
#include "platform/inventory.h"
#include "platform/node.h"
#include "pm_show_client/pm_show_headers.h"
#include "pm_show_client/pm_show_options.h"

namespace {

void report_failure(const char *what, errcode code) {
    pm_print_error<" %s: %s: %s (0x%x)\n">("generic_show_node_walker", what, errcode_strerror(code), code);
    if (pm_show_on_failure != nullptr) {
        pm_show_on_failure(NODEID_NONE, code);
    }
}

// The node that this process runs on; false when it is not known, reported.
bool find_local_node(std::uint32_t *node) {
    const errcode code = platform_get_my_nodeid(node);
    if (code != ERRCODE_SUCCESS) {
        report_failure("platform_get_my_nodeid failed", code);
    }
    return code == ERRCODE_SUCCESS;
}

// The node whose items its active partner already shows; NODEID_NONE when no node is left out.
std::uint32_t node_to_leave_out() {
    std::uint32_t partner = NODEID_NONE;
    if (pm_show_options.all_nodes ||
        redund_get_proc_group_partner_node("central-services", &partner) != ERRCODE_SUCCESS) {
        return NODEID_NONE;
    }
    return partner;
}

void visit_inventory_node(const pm_show_node_visit &visit, const invd_inventory *inventory, std::int32_t index,
                          std::uint32_t left_out) {
    std::uint32_t node = NODEID_NONE;
    const errcode code = invd_inventory_get_nodeid(inventory, index, &node);
    if (code != ERRCODE_SUCCESS) {
        report_failure("failed to get node id from invd", code);
        return;
    }
    if (left_out != NODEID_NONE && node == left_out) {
        return;
    }
    std::uint32_t state = 0;
    if (invd_inventory_get_sw_state(inventory, index, &state) != ERRCODE_SUCCESS || state != INVD_SW_STATE_UP) {
        return;  // a node that is not up has nothing to show
    }
    visit(node);
}

// False when the inventory cannot be read, reported.
bool visit_inventory(const pm_show_node_visit &visit) {
    const invd_inventory *inventory = nullptr;
    errcode code = invd_get_inventory(INVD_ALL_NODES, &inventory);
    if (code != ERRCODE_SUCCESS) {
        report_failure("invd_get_inventory failed", code);
        return false;
    }
    std::int32_t count = 0;
    code = invd_inventory_get_node_count(inventory, &count);
    if (code != ERRCODE_SUCCESS) {
        report_failure("failed to get node count from invd", code);
        return false;
    }
    const std::uint32_t left_out = node_to_leave_out();
    for (std::int32_t index = 0; index < count; ++index) {
        visit_inventory_node(visit, inventory, index, left_out);
    }
    return true;
}

void show_inventory(const pm_show_request *request) {
    const bool is_read = visit_inventory([request](std::uint32_t node) {
        pm_show_header_pending = true;
        static_cast<void>(generic_show(request, node));  // has printed what failed; the next node is read all the same
    });
    if (!is_read) {
        return;
    }
    if (pm_show_options.brief) {  // the last row of a table has no line end of its own
        pm_print<"\n\n">();
    } else {
        pm_print<"\n">();
    }
}

void show_one_node(const pm_show_request *request, std::uint32_t node) {
    if (generic_show(request, node) == ERRCODE_SUCCESS) {
        pm_print<"\n\n">();
    }
}

}  // namespace

bool pm_show_visit_nodes(const pm_show_node_visit &visit) {
    std::uint32_t node = pm_show_options.node_id;
    if (node == PM_SHOW_ALL_NODES && !pm_show_options.local_node_only) {
        return visit_inventory(visit);
    }
    if (node == PM_SHOW_ALL_NODES && !find_local_node(&node)) {
        return false;
    }
    visit(node);
    return true;
}

void generic_show_node_walker(const pm_show_request *request) {
    if (request->legend != nullptr) {
        request->legend();
    }
    pm_show_header_pending = true;
    std::uint32_t node = pm_show_options.node_id;
    if (node == PM_SHOW_ALL_NODES && !pm_show_options.local_node_only) {
        show_inventory(request);
    } else if (node != PM_SHOW_ALL_NODES || find_local_node(&node)) {
        show_one_node(request, node);
    }
}
