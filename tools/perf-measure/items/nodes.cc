// SPDX-License-Identifier: Apache-2.0
// The inventory's names.
#include "perf-measure/items/nodes.h"

#include <string_view>

#include "perf-measure/phrases/word_match.h"
#include "platform/inventory.h"
#include "platform/node.h"

namespace perf_measure {

namespace {

constexpr std::size_t NODE_NAME_SIZE = 32;    // as in the headers of shows
constexpr std::size_t MOST_NODES_NAMED = 20;  // in a message

}  // namespace

std::string name_of_node(std::uint32_t id) {
    char name[NODE_NAME_SIZE] = "";
    static_cast<void>(nodeid_to_str_external(id, name, sizeof name));
    return name;
}

std::vector<named_node> inventory_nodes() {
    const invd_inventory *inventory = nullptr;
    std::int32_t count = 0;
    std::vector<named_node> nodes;
    if (invd_get_inventory(INVD_ALL_NODES, &inventory) != ERRCODE_SUCCESS ||
        invd_inventory_get_node_count(inventory, &count) != ERRCODE_SUCCESS) {
        return nodes;
    }
    for (std::int32_t i = 0; i < count; ++i) {
        std::uint32_t id = NODEID_NONE;
        if (invd_inventory_get_nodeid(inventory, i, &id) == ERRCODE_SUCCESS) {
            std::uint32_t state = 0;
            const bool is_up = invd_inventory_get_sw_state(inventory, i, &state) == ERRCODE_SUCCESS;
            nodes.push_back({id, name_of_node(id), is_up && state == INVD_SW_STATE_UP});
        }
    }
    return nodes;
}

std::string find_node(const std::string &name, std::uint32_t *id) {
    const std::vector<named_node> nodes = inventory_nodes();
    std::vector<fitting_word> words;
    std::vector<std::string_view> first;
    for (const named_node &each : nodes) {
        if (each.name == name) {
            *id = each.id;
            return {};
        }
        words.push_back({each.name, {}});
        if (first.size() < MOST_NODES_NAMED) {
            first.push_back(each.name);
        }
    }
    std::string problem = "there is no node " + in_quotes(name);
    if (const std::vector<std::string_view> near = near_words(words, name); !near.empty() && near.size() <= 3) {
        problem += "; did you mean " + join_words(near, " or ") + "?";
    }
    return nodes.empty() ? problem + "; the inventory is empty"
                         : problem + "\n  nodes: " + join_words(first) + (nodes.size() > first.size() ? ", ..." : "");
}

}  // namespace perf_measure
