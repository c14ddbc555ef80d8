// SPDX-License-Identifier: Apache-2.0
// The data set as a whole, and the inventory that it begins with.
#include "perf-store/generator/generator.h"

#include <algorithm>
#include <charconv>

#include "paths/item_paths.h"
#include "perf-store/datasets/dataset_names.h"
#include "perf-store/generator/generate.h"
#include "platform/inventory.h"
#include "schema/pm_descriptors.h"

namespace perf_store {

using path_grammar::place;

namespace {

constexpr std::uint32_t ROUTE_PROCESSOR = 0x100;  // node id, the standby's is next
constexpr std::uint32_t LEAST_PROCESSOR_SLOT = 20;
constexpr std::uint32_t HANDLE_STEP = 8;

// Card ids keep clear of those of the route processors.
std::uint32_t card_id(std::uint32_t card) {
    constexpr std::uint32_t MANY_CARDS = 0x1000;
    const std::uint32_t id = (card + 1) << 4U;
    return id < ROUTE_PROCESSOR ? id : MANY_CARDS + id;
}

gen_node node_of(std::uint32_t id, std::string name, std::uint32_t slot) {
    gen_node node;
    node.id = id;
    node.name = std::move(name);
    node.slot = slot;
    return node;
}

std::vector<gen_node> inventory(std::uint32_t count) {
    const std::uint32_t processors = std::min(count, 2U);
    const std::uint32_t cards = count - processors;
    const std::uint32_t processor_slot = std::max(LEAST_PROCESSOR_SLOT, cards);
    std::vector<gen_node> nodes;
    for (std::uint32_t i = 0; i < processors; ++i) {
        nodes.push_back(node_of(ROUTE_PROCESSOR + i, gen_text("rp", i), processor_slot + i));
    }
    for (std::uint32_t card = 0; card < cards; ++card) {
        nodes.push_back(node_of(card_id(card), gen_text("lc", card), card));
    }
    return nodes;
}

void write_platform(generation *set) {
    constexpr std::uint32_t ROUTER_TYPE = 9;
    std::uint32_t active = set->route_processor().id;
    local_partner partner{CENTRAL_SERVICES, 0};
    local_platform record{&active, ROUTER_TYPE, set->first_card == 0 ? 1U : 0U, &active, {}};
    if (set->nodes.size() > 1) {
        partner.Node = set->nodes[1].id;
        record.Partners = {1, &partner};
    }
    set->lines.platform(record);
    for (const gen_node &node : set->nodes) {
        local_location location{{0, node.slot, 0}};
        set->lines.node({node.id, node.name.c_str(), INVD_SW_STATE_UP, &location, node.id});
    }
}

void write_interface(generation *set, std::uint32_t handle, const std::string &name) {
    set->lines.interface(handle, name.c_str());
}

void write_interface_names(generation *set) {
    for (std::uint32_t i = 0; i < set->options.interfaces && set->lines.good(); ++i) {
        write_interface(set, gen_interface_handle(i), set->interface_name(i));
    }
    for (std::uint32_t i = 0; i < set->options.tunnels && set->lines.good(); ++i) {
        write_interface(set, gen_tunnel_handle(i), gen_tunnel_name(i));
    }
    for (std::uint32_t i = 0; i < set->options.policies && set->lines.good(); ++i) {
        write_interface(set, gen_policy_handle(i), gen_text("sr-policy", i + 1));
    }
}

}  // namespace

void session_totals::add(const session_state &session) {
    ++sessions;
    named_profile += session.named_profile ? 1 : 0;
    gen_add(&sum.counters, session.counters);
    gen_add(&sum.interface_errors, session.interface_errors);
    sum.label_missing += session.label_missing;
    sum.missed += session.missed;
    if (!session.running()) {
        return;
    }
    ++running;
    switch (session.family) {
    case session_family::ipv4: ++running_ipv4; break;
    case session_family::ipv6: ++running_ipv6; break;
    case session_family::mpls: ++running_mpls; break;
    case session_family::srv6: ++running_srv6; break;
    }
}

gen_node &generation::card_of(std::uint32_t interface) {
    const auto cards = static_cast<std::uint32_t>(nodes.size()) - first_card;
    return first_card == 0 ? nodes.front() : nodes[first_card + interface % cards];
}

std::string generation::interface_name(std::uint32_t interface) {
    const auto cards = first_card == 0 ? 1 : static_cast<std::uint32_t>(nodes.size()) - first_card;
    return gen_text("eth0/", card_of(interface).slot, "/0/", interface / cards);
}

void generation::run(gen_node *node, random_source *random, session_state *session) {
    session->id = ++node->last_session;
    gen_run_session(random, session);
    node->of(session->kind, session->transport).add(*session);
}

void generation::write_session(const gen_node &node, const session_state &session, const pm_session_parcel &record) {
    lines.item(node.id, gen_text(path_of(place::session), gen_hexadecimal(session.id)), pm_session_parcel_descriptor(),
               &record);
}

std::uint32_t gen_interface_handle(std::uint32_t interface) { return 0x08000010 + interface * HANDLE_STEP; }
std::uint32_t gen_tunnel_handle(std::uint32_t tunnel) { return 0x18000010 + tunnel * HANDLE_STEP; }
std::uint32_t gen_policy_handle(std::uint32_t policy) { return 0x28000010 + policy * HANDLE_STEP; }
std::string gen_tunnel_name(std::uint32_t tunnel) { return gen_text("tunnel-te", tunnel + 1); }
std::string gen_policy_name(std::uint32_t policy) { return gen_text("policy-c", policy + 1); }

std::string gen_hexadecimal(std::uint32_t number) {
    char digits[8];
    const char *const end = std::to_chars(digits, digits + sizeof digits, number, 16).ptr;
    return std::string(static_cast<const char *>(digits), end);
}

bool within_limits(const gen_options &options) {
    return options.nodes >= GEN_MIN_NODES && options.nodes <= GEN_MAX_NODES && options.paths <= GEN_MAX_PATHS &&
           std::max({options.interfaces, options.policies, options.endpoints, options.tunnels}) <= GEN_MAX_OBJECTS;
}

pm_error generate(const gen_options &options, output_file *out) {
    generation set(options, out);
    set.nodes = inventory(options.nodes);
    set.first_card = options.nodes > 2 ? 2 : 0;
    set.lines.version();
    write_platform(&set);
    write_interface_names(&set);
    gen_interfaces(&set);
    gen_policies(&set);
    gen_endpoints(&set);
    gen_tunnels(&set);
    gen_profiles(&set);
    gen_summaries(&set);
    return set.lines.finish();
}

}  // namespace perf_store
