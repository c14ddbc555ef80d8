// SPDX-License-Identifier: Apache-2.0
// Inventory, redundancy and node identity, from the store.
#include "platform/node.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "platform/bounded.h"
#include "platform/inventory.h"
#include "platform/local/answers/router.h"
#include "platform/local/answers/store_client.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"

namespace {

errcode read_nodes(std::vector<router::node> *nodes) {
    store::reader *reader = nullptr;
    std::vector<std::string> parcels;
    if (const errcode code = store_client::open(&reader); code != ERRCODE_SUCCESS) {
        return code;
    }
    if (const pm_error error = reader->nodes(&parcels)) {
        return error.code();
    }
    for (const std::string &parcel : parcels) {
        local_node record{};
        if (const errcode code = store_client::decode(parcel, &record, local_node_descriptor());
            code != ERRCODE_SUCCESS) {
            return code;
        }
        router::node next;
        next.id = record.Id;
        next.name = record.Name != nullptr ? record.Name : "";
        next.sw_state = record.SwState;
        if (record.Location != nullptr) {
            next.location = record.Location->Numbers;
        }
        next.processor = record.Processor;
        nodes->push_back(std::move(next));
        parcel_free_indirections(&record, local_node_descriptor());
    }
    return ERRCODE_SUCCESS;
}

errcode read_platform(local_platform *record) {
    store::reader *reader = nullptr;
    std::string parcel;
    if (const errcode code = store_client::open(&reader); code != ERRCODE_SUCCESS) {
        return code;
    }
    if (const pm_error error = reader->platform(&parcel)) {
        return error.code();
    }
    return store_client::decode(parcel, record, local_platform_descriptor());
}

// The platform record of the store; a store without one gives a record of zeroes. Lives until the
// process ends.
errcode platform_record(const local_platform **out) {
    static local_platform the_record{};
    static bool known = false;
    *out = &the_record;
    if (known) {
        return ERRCODE_SUCCESS;
    }
    const errcode code = read_platform(&the_record);
    known = code == ERRCODE_SUCCESS || code == ERRCODE_NOT_FOUND;
    store_client::report_unreadable("the router's record cannot be read", code);
    return known ? ERRCODE_SUCCESS : code;
}

// An optional number of the platform record.
errcode platform_number(std::uint32_t *local_platform::*member, std::uint32_t *number) {
    const local_platform *record = nullptr;
    if (const errcode code = platform_record(&record); code != ERRCODE_SUCCESS) {
        return code;
    }
    if (record->*member == nullptr) {
        return ERRCODE_NOT_FOUND;
    }
    *number = *(record->*member);
    return ERRCODE_SUCCESS;
}

}  // namespace

namespace router {

errcode nodes(const std::vector<node> **out) {
    static std::vector<node> the_nodes;
    static bool read = false;
    if (!read) {
        the_nodes.clear();
        if (const errcode code = read_nodes(&the_nodes); code != ERRCODE_SUCCESS) {
            return code;
        }
        read = true;
    }
    *out = &the_nodes;
    return ERRCODE_SUCCESS;
}

const node *find_node(std::uint32_t id) {
    const std::vector<node> *all = nullptr;
    if (const errcode code = nodes(&all); code != ERRCODE_SUCCESS) {
        store_client::report_unreadable("the inventory cannot be read", code);
        return nullptr;
    }
    const auto found = std::find_if(all->begin(), all->end(), [&](const node &each) { return each.id == id; });
    return found != all->end() ? &*found : nullptr;
}

}  // namespace router

// Snapshots of the inventory are all the same one.
struct invd_inventory {
    const std::vector<router::node> *nodes = nullptr;
};

namespace {

const router::node *node_at(const invd_inventory *inventory, std::int32_t index) {
    if (inventory == nullptr || index < 0 || static_cast<std::size_t>(index) >= inventory->nodes->size()) {
        return nullptr;
    }
    return &(*inventory->nodes)[static_cast<std::size_t>(index)];
}

}  // namespace

errcode invd_get_inventory(std::uint32_t kind, const invd_inventory **inventory) {
    static invd_inventory the_inventory;
    if (kind != INVD_ALL_NODES) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    *inventory = &the_inventory;
    return router::nodes(&the_inventory.nodes);
}

errcode invd_inventory_get_node_count(const invd_inventory *inventory, std::int32_t *count) {
    *count = static_cast<std::int32_t>(inventory->nodes->size());
    return ERRCODE_SUCCESS;
}

errcode invd_inventory_get_nodeid(const invd_inventory *inventory, std::int32_t index, std::uint32_t *node) {
    const router::node *found = node_at(inventory, index);
    if (found == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    *node = found->id;
    return ERRCODE_SUCCESS;
}

errcode invd_inventory_get_sw_state(const invd_inventory *inventory, std::int32_t index, std::uint32_t *state) {
    const router::node *found = node_at(inventory, index);
    if (found == nullptr) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    *state = found->sw_state;
    return ERRCODE_SUCCESS;
}

errcode redund_get_proc_group_partner_node(const char *process_group, std::uint32_t *node) {
    const local_platform *record = nullptr;
    if (const errcode code = platform_record(&record); code != ERRCODE_SUCCESS) {
        return code;
    }
    *node = NODEID_NONE;
    for (const local_partner &each : record->Partners) {
        if (each.Group != nullptr && std::strcmp(each.Group, process_group) == 0) {
            *node = each.Node;
        }
    }
    return ERRCODE_SUCCESS;
}

errcode platform_get_my_nodeid(std::uint32_t *node) { return platform_number(&local_platform::MyNode, node); }

std::uint32_t platform_get_router_type() {
    const local_platform *record = nullptr;
    return platform_record(&record) == ERRCODE_SUCCESS ? record->RouterType : 0;
}

int platform_am_i_rp_plus_datapath() {
    const local_platform *record = nullptr;
    return platform_record(&record) == ERRCODE_SUCCESS && record->RpPlusDatapath != 0 ? 1 : 0;
}

errcode platform_get_active_standby_rps_in_rack(std::uint32_t *active, std::uint32_t /*rack*/) {
    return platform_number(&local_platform::ActiveRp, active);
}

errcode nodeid_create(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t *node) {
    const std::vector<router::node> *all = nullptr;
    if (const errcode code = router::nodes(&all); code != ERRCODE_SUCCESS) {
        return code;
    }
    for (const router::node &each : *all) {
        if (each.location == std::array{a, b, c}) {
            *node = each.id;
            return ERRCODE_SUCCESS;
        }
    }
    return ERRCODE_NOT_FOUND;
}

errcode nodeid_processor_nodeid_for_nodeid(std::uint32_t node, std::uint32_t *processor) {
    const router::node *found = router::find_node(node);
    if (found == nullptr) {
        return ERRCODE_NOT_FOUND;
    }
    *processor = found->processor;
    return ERRCODE_SUCCESS;
}

errcode nodeid_to_str_external(std::uint32_t node, char *buffer, std::size_t size) {
    if (buffer == nullptr || size == 0) {
        return ERRCODE_INVALID_ARGUMENT;
    }
    if (const router::node *found = router::find_node(node); found != nullptr) {
        safe_strncpy(buffer, found->name.c_str(), size);
    } else {
        std::snprintf(buffer, size, "0x%x", node);
    }
    return ERRCODE_SUCCESS;
}
