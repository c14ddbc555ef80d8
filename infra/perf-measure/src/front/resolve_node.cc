// SPDX-License-Identifier: Apache-2.0
// The node of an interface: its card where that keeps measurements, else the active route processor.
#include "front/resolve_node.h"

#include <cstdint>

#include "platform/ifnx.h"
#include "platform/inventory.h"
#include "platform/node.h"
#include "pm_show_client/pm_show_options.h"

namespace {

// Whether the measurements of a node card's interface are kept on the card rather than on the
// active route processor.
bool card_keeps_measurements() {
    return platform_get_router_type() == ROUTER_TYPE_DISTRIBUTED || platform_am_i_rp_plus_datapath() == 0;
}

errcode node_of_card(const ifnx_parsed_name &interface, std::uint32_t *node) {
    std::uint32_t card = NODEID_NONE;
    const errcode code = nodeid_create(interface.location[0], interface.location[1], interface.location[2], &card);
    return code != ERRCODE_SUCCESS ? code : nodeid_processor_nodeid_for_nodeid(card, node);
}

}  // namespace

errcode pm_show_resolve_node() {
    if (pm_show_options.node_id != PM_SHOW_ALL_NODES || pm_show_options.all_nodes) {
        return ERRCODE_SUCCESS;
    }
    if (pm_show_options.name == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    ifnx_parsed_name interface {};
    errcode code = ifnx_ifname_parse(pm_show_options.name, 0, &interface);
    if (code != ERRCODE_SUCCESS) {
        return code;
    }
    std::uint32_t node = NODEID_NONE;
    if (interface.kind == IFNX_KIND_NODE_CARD && card_keeps_measurements()) {
        code = node_of_card(interface, &node);
    } else {
        code = platform_get_active_standby_rps_in_rack(&node, 0);
    }
    if (code == ERRCODE_SUCCESS && node != NODEID_NONE) {
        pm_show_options.node_id = node;
    }
    return code;
}
