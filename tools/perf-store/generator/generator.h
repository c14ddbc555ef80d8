// SPDX-License-Identifier: Apache-2.0
// The parts of a synthetic data set, one routine a family, each in a file of its own
// (generator_interfaces.cc and so on). They share the lines, the memory and the nodes' totals.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "perf-store/generator/gen_options.h"
#include "perf-store/generator/generator_lines.h"
#include "perf-store/generator/generator_random.h"
#include "perf-store/generator/generator_record.h"
#include "perf-store/generator/generator_session.h"

namespace perf_store {

// What the sessions of one kind and transport on one node add up to.
struct session_totals {
    std::uint32_t sessions = 0;
    std::uint32_t running = 0;
    std::uint32_t running_ipv4 = 0;
    std::uint32_t running_ipv6 = 0;
    std::uint32_t running_mpls = 0;
    std::uint32_t running_srv6 = 0;
    std::uint32_t named_profile = 0;
    session_state sum;  // its counters only

    void add(const session_state &session);
    [[nodiscard]] std::uint32_t not_running() const { return sessions - running; }
};

inline constexpr std::size_t GEN_KINDS = 3;       // delay, loss, liveness
inline constexpr std::size_t GEN_TRANSPORTS = 4;  // interface, RSVP-TE, SR policy, endpoint

struct gen_node {
    std::uint32_t id = 0;
    std::string name;
    std::uint32_t slot = 0;
    std::uint32_t last_session = 0;
    std::uint32_t interfaces = 0;
    std::uint32_t policies = 0;
    std::uint32_t endpoints = 0;
    std::uint32_t tunnels = 0;
    session_totals totals[GEN_KINDS][GEN_TRANSPORTS];

    [[nodiscard]] session_totals &of(pm_measurement_type_e kind, pm_transport_type_e transport) {
        return totals[kind][transport];
    }
    [[nodiscard]] const session_totals &of(pm_measurement_type_e kind, pm_transport_type_e transport) const {
        return totals[kind][transport];
    }
};

// One data set under way. The first node is the active route processor.
struct generation {
    generation(const gen_options &wanted, output_file *out) : options(wanted), lines(out) {}

    const gen_options options;
    std::vector<gen_node> nodes;
    std::uint32_t first_card = 0;  // where the interfaces are: on the route processor without a card
    generated_lines lines;
    item_memory memory;

    [[nodiscard]] gen_node &route_processor() { return nodes.front(); }
    // The node of an interface, its name and its handle.
    [[nodiscard]] gen_node &card_of(std::uint32_t interface);
    [[nodiscard]] std::string interface_name(std::uint32_t interface);

    // Gives a session its number, lets it run and counts it on the node.
    void run(gen_node *node, random_source *random, session_state *session);
    void write_session(const gen_node &node, const session_state &session, const pm_session_parcel &record);
};

// Handles of interfaces, tunnels and policies.
[[nodiscard]] std::uint32_t gen_interface_handle(std::uint32_t interface);
[[nodiscard]] std::uint32_t gen_tunnel_handle(std::uint32_t tunnel);
[[nodiscard]] std::uint32_t gen_policy_handle(std::uint32_t policy);
[[nodiscard]] std::string gen_tunnel_name(std::uint32_t tunnel);
[[nodiscard]] std::string gen_policy_name(std::uint32_t policy);
[[nodiscard]] std::string gen_hexadecimal(std::uint32_t number);

inline constexpr std::uint32_t GEN_ROUTER_IPV4 = 0xC0000201;             // 192.0.2.1
inline constexpr std::uint64_t GEN_ROUTER_NETWORK = 0x20010DB800000000;  // 2001:db8::/64
inline constexpr std::uint64_t GEN_SID_BLOCK = 0xFC00000000000000;       // fc00::
inline constexpr std::uint8_t GEN_SID_LENGTH = 48;

void gen_interfaces(generation *set);
void gen_policies(generation *set);
void gen_endpoints(generation *set);
void gen_tunnels(generation *set);
void gen_profiles(generation *set);
void gen_summaries(generation *set);

}  // namespace perf_store
