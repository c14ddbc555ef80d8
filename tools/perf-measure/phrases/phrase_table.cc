// SPDX-License-Identifier: Apache-2.0
// The table itself: choices, options, groups, phrases.
#include "perf-measure/phrases/phrase_table.h"

#include <initializer_list>
#include <iterator>

namespace perf_measure {

namespace {

constexpr std::uint32_t LARGEST = 0xFFFFFFFF;
constexpr std::uint32_t LARGEST_NPU = 0xFFFE;       // 0xFFFF is none
constexpr std::uint32_t LARGEST_LABEL = 0xFFFFF;    // of 20 bits
constexpr std::uint32_t LARGEST_NODE = 0xFFFFFFFE;  // 0xFFFFFFFF is all

// clang-format off

// Values ------------------------------------------------------------------------------------------

constexpr choice ORIGINS[] = {
    {"pce", "-o 10", "from a path computation element"},
    {"bgp", "-o 20", "from BGP"},
    {"configured", "-o 30", "from the configuration"},
};

constexpr choice POLICY_KINDS[] = {
    {"delay", "-h 0", "any candidate path without liveness detection"},
    {"liveness", "-h 2", "any candidate path with liveness detection"},
    {"all", "-h 4", "every kind"},
};

constexpr choice ENDPOINT_KINDS[] = {
    {"delay", "-h 0", "endpoints with delay sessions, and these only"},
    {"liveness", "-h 2", "endpoints with liveness sessions, and these only"},
    {"probe", "-h 3", "endpoints with probe sessions, and these only"},
    {"all", "-h 4", "every kind"},
};

constexpr choice HOSTS[] = {
    {"npu", "-j", "any candidate path that is offloaded to an NPU"},
    {"cpu", "-r", "any candidate path that runs on the route processor"},
};

constexpr choice PROFILE_KINDS[] = {
    {"delay", "-D 0", "delay profiles"},
    {"loss", "-L 1", "loss profiles; there is no default one"},
    {"liveness", "-W 2", "liveness profiles"},
    {"probe", "-M 3", "probe profiles"},
};

constexpr choice TRANSPORTS[] = {
    {"interface", "-T 0", "profiles of interfaces"},
    {"rsvp-te", "-T 1", "profiles of RSVP-TE tunnels"},
    {"sr-policy", "-T 2", "profiles of SR policies"},
    {"endpoint", "-T 3", "profiles of endpoints"},
    {"generic", "-T 4", "generic profiles; say their kind too", "kind"},
};

// Groups of options that exclude each other.
enum : std::uint8_t { NO_GROUP, MEASUREMENT, HISTORY, NODES };

// Options, in the order of option_id -------------------------------------------------------------

constexpr option OPTIONS[] = {
    {"name", "-i", "one item only, by its name", value_kind::name, "NAME"},
    {"name", "-Q", "the profiles of this name", value_kind::name, "NAME"},
    {"id", "-s", "one session only, by its number", value_kind::number, "NUMBER", 1, LARGEST},
    {"brief", "-b", "a table with one line an item"},
    {"detail", "-d", "more: probe samples, segments, each reason of an error"},
    {"verbose", "-d -v", "as detail, with the atomic paths of segment lists"},
    {"verbose", "-v", "with the counters of atomic paths"},
    {"internal", "-p", "state of the service itself: handles, trace numbers, reference counters"},
    {"loss", "-L 1", "the loss session instead of the delay session"},
    {"bare", "-L 1", "the lines of the endpoint itself, without its sessions"},
    {"delay", "", "the history of delays, as when nothing is said", value_kind::nothing, nullptr, 0, 0, {}, MEASUREMENT},
    {"loss", "-L 1", "the history of losses instead of delays", value_kind::nothing, nullptr, 0, 0, {}, MEASUREMENT},
    {"delay", "-D 0", "delay sessions; without liveness, these only"},
    {"liveness", "-W 2", "liveness sessions; without delay, these only"},
    {"probe", "-c 4", "the results of past probes, as when nothing is said", value_kind::nothing, nullptr, 0, 0, {}, HISTORY},
    {"aggregated", "-c 5", "the results of past aggregations", value_kind::nothing, nullptr, 0, 0, {}, HISTORY},
    {"advertised", "-c 20", "what was advertised", value_kind::nothing, nullptr, 0, 0, {}, HISTORY},
    {"limit", "-l", "at most so many rows of each history", value_kind::number, "NUMBER", 1, LARGEST},
    {"color", "-f", "policies of this color", value_kind::number, "NUMBER", 0, LARGEST},
    {"endpoint", "-e", "policies to this endpoint address", value_kind::address, "ADDRESS"},
    {"endpoint", "-e", "endpoints of this address", value_kind::address, "ADDRESS"},
    {"destination", "-e", "tunnels to this address", value_kind::address, "ADDRESS"},
    {"origin", "", "any candidate path of this origin", value_kind::choice, "ORIGIN", 0, 0, ORIGINS},
    {"preference", "-m", "any candidate path of this preference", value_kind::number, "NUMBER", 0, LARGEST},
    {"discriminator", "-g", "any candidate path of this discriminator", value_kind::number, "NUMBER", 0, LARGEST},
    {"segment-list", "-n", "any segment list of this name", value_kind::text, "NAME"},
    {"kind", "", "kind of measurement", value_kind::choice, "KIND", 0, 0, POLICY_KINDS},
    {"kind", "", "kind of measurement", value_kind::choice, "KIND", 0, 0, ENDPOINT_KINDS},
    {"host", "", "where sessions run", value_kind::choice, "HOST", 0, 0, HOSTS},
    {"npu", "-u", "any atomic path on this NPU", value_kind::number, "NUMBER", 0, LARGEST_NPU},
    {"label", "-k", "any candidate path of this local label", value_kind::number, "NUMBER", 0, LARGEST_LABEL},
    {"true-flag", "-O", "the component TRUE of the filter, which is compared with nothing here"},
    {"vrf", "-V", "endpoints of this VRF", value_kind::text, "NAME"},
    {"lsp", "-a", "tunnels with an LSP of this id", value_kind::number, "NUMBER", 0, LARGEST},
    {"kind", "", "kind of measurement", value_kind::choice, "KIND", 0, 0, PROFILE_KINDS},
    {"transport", "", "what the profiles are for", value_kind::choice, "TRANSPORT", 0, 0, TRANSPORTS},
    {"node", "-N", "this node only, by its name or id", value_kind::node, "NODE", 0, LARGEST_NODE, {}, NODES},
    {"all-nodes", "-A", "every node, also the partner of this process group", value_kind::nothing, nullptr, 0, 0, {}, NODES},
};
static_assert(std::size(OPTIONS) == static_cast<std::size_t>(option_id::count) && std::size(OPTIONS) <= 64);

// Phrases -----------------------------------------------------------------------------------------

using enum option_id;

constexpr option_set of(std::initializer_list<option_id> ids) {
    option_set set = 0;
    for (const option_id id : ids) {
        set |= bit(id);
    }
    return set;
}

constexpr option_set EVERY_NODE = of({node, all_nodes});
constexpr option_set LOCAL_NODE = of({node});  // read on the local node unless another is named
constexpr option_set POLICIES = of({color, policy_endpoint, origin, preference, discriminator, segment_list, policy_kind, host, npu, label, true_flag});
constexpr option_set ENDPOINTS = of({vrf, endpoint_address, segment_list, endpoint_kind});
constexpr option_set TUNNELS = of({lsp, destination});
constexpr option_set ROWS = of({name, limit});
constexpr option_set DELAY_OR_LOSS = of({history_delay, history_loss});
constexpr option_set PLOT = of({plot_probe, plot_aggregated, plot_advertised, limit});

constexpr name_source INTERFACE_NAMES = {"main", "intf/detail/"};
constexpr name_source RESPONDER_NAMES = {"resp", "intf/"};
constexpr name_source POLICY_NAMES = {"main", "srpolicy/detail/"};
constexpr name_source TUNNEL_NAMES = {"main", "rsvpte/detail/"};
constexpr name_source ENDPOINT_NAMES = {"main", "endpoint/detail/"};
constexpr name_source PROFILE_NAMES = {"main", "name-profile/"};

constexpr phrase_group GROUPS[] = {
    {"show", "show the state of the measurement service"},
    {"show checkpoint", "what is kept for a restart"},
    {"show history", "what was measured in the past"},
    {"show history probe", "the results of past probes"},
    {"show history aggregated", "the results of past aggregations"},
    {"show history advertised", "what was advertised, and why"},
    {"show history liveness", "changes of the liveness state"},
    {"show history loss-packets", "the packets of loss measurement"},
    {"show receiver", "the receive path"},
    {"show responder", "the side that answers queries"},
    {"plot", "draw the history of one item"},
    {"plot delay", "draw minimum, average and maximum delay over time"},
};

constexpr phrase PHRASES[] = {
    {"show interfaces", "-c 1", "interfaces: addresses, state, delay or loss sessions", of({name, brief, detail, internal, loss_session}) | EVERY_NODE, INTERFACE_NAMES},
    {"show interfaces counters", "-c 2", "interfaces: packet, error and probe counters", of({name, detail}) | EVERY_NODE, INTERFACE_NAMES},
    {"show sr-policies", "-c 17", "SR policies and their candidate paths", of({name, brief, detail, verbose_policies, internal}) | POLICIES | EVERY_NODE, POLICY_NAMES},
    {"show sr-policies counters", "-c 18", "SR policies: counters of their sessions", of({name, detail, verbose_counters, internal}) | POLICIES | EVERY_NODE, POLICY_NAMES},
    {"show endpoints", "-c 26", "endpoints: delay, liveness and probe sessions", of({name, brief, detail, internal, own_lines}) | ENDPOINTS | LOCAL_NODE, ENDPOINT_NAMES},
    {"show endpoints counters", "-c 28", "endpoints: delay and liveness counters", of({name, detail, internal}) | ENDPOINTS | LOCAL_NODE, ENDPOINT_NAMES},
    {"show rsvp-te", "-c 15", "RSVP-TE tunnels and their LSPs", of({name, brief, detail, internal}) | TUNNELS | LOCAL_NODE, TUNNEL_NAMES},
    {"show rsvp-te counters", "-c 16", "RSVP-TE tunnels: counters", of({name, detail}) | LOCAL_NODE, TUNNEL_NAMES},
    {"show sessions", "-c 6", "sessions: results, current computation, errors, liveness", of({session, detail, internal}) | EVERY_NODE},
    {"show probe-sessions", "-c 35", "probe sessions", of({session, internal}) | EVERY_NODE},

    {"show history probe interfaces", "-c 4 -t 3", "past probes of interfaces", ROWS | DELAY_OR_LOSS | EVERY_NODE, INTERFACE_NAMES},
    {"show history probe sr-policies", "-c 4 -t 19", "past probes of SR policies", ROWS | POLICIES | EVERY_NODE, POLICY_NAMES},
    {"show history probe rsvp-te", "-c 4 -t 21", "past probes of RSVP-TE tunnels", ROWS | TUNNELS | LOCAL_NODE, TUNNEL_NAMES},
    {"show history probe endpoints", "-c 4 -t 29", "past probes of endpoints", ROWS | ENDPOINTS | EVERY_NODE, ENDPOINT_NAMES},
    {"show history aggregated interfaces", "-c 5 -t 3", "past aggregations of interfaces", ROWS | DELAY_OR_LOSS | EVERY_NODE, INTERFACE_NAMES},
    {"show history aggregated sr-policies", "-c 5 -t 19", "past aggregations of SR policies", ROWS | POLICIES | EVERY_NODE, POLICY_NAMES},
    {"show history aggregated rsvp-te", "-c 5 -t 21", "past aggregations of RSVP-TE tunnels", ROWS | TUNNELS | LOCAL_NODE, TUNNEL_NAMES},
    {"show history aggregated endpoints", "-c 5 -t 29", "past aggregations of endpoints", ROWS | ENDPOINTS | EVERY_NODE, ENDPOINT_NAMES},
    {"show history advertised interfaces", "-c 20 -t 3", "past advertisements of interfaces", ROWS | DELAY_OR_LOSS | EVERY_NODE, INTERFACE_NAMES},
    {"show history advertised sr-policies", "-c 20 -t 19", "past advertisements of SR policies", ROWS | POLICIES | EVERY_NODE, POLICY_NAMES},
    {"show history advertised rsvp-te", "-c 20 -t 21", "past advertisements of RSVP-TE tunnels", ROWS | TUNNELS | LOCAL_NODE, TUNNEL_NAMES},
    {"show history advertised endpoints", "-c 20 -t 29", "past advertisements of endpoints", ROWS | ENDPOINTS | EVERY_NODE, ENDPOINT_NAMES},
    {"show history liveness sr-policies", "-c 27 -t 19", "changes of the liveness of SR policies", ROWS | POLICIES | EVERY_NODE, POLICY_NAMES},
    {"show history liveness endpoints", "-c 27 -t 29", "changes of the liveness of endpoints", ROWS | ENDPOINTS | EVERY_NODE, ENDPOINT_NAMES},
    {"show history loss-packets interfaces", "-c 22 -t 3", "past loss measurement packets of interfaces", ROWS | EVERY_NODE, INTERFACE_NAMES},

    {"show summary", "-c 9", "the service at a glance: sessions and packets of each kind", of({summary_delay, summary_liveness, detail, internal}) | EVERY_NODE},
    {"show profiles", "-c 23", "measurement profiles: every one", EVERY_NODE},
    {"show profiles named", "-c 23 -P", "measurement profiles that have a name", of({profile_name, profile_kind, transport}) | EVERY_NODE, PROFILE_NAMES},
    {"show profiles defaults", "-c 23 -S", "the default profiles of each transport and kind", of({profile_kind, transport}) | EVERY_NODE},
    {"show distribution", "-c 24", "distribution of the sessions of SR policies to nodes and NPUs", of({internal}) | LOCAL_NODE},
    {"show distribution retries", "-c 34", "distribution records that wait for another try", LOCAL_NODE},
    {"show responder interfaces", "-c 7", "interfaces of the responder: attributes and rate", of({name, internal}) | EVERY_NODE, RESPONDER_NAMES},
    {"show responder counters", "-c 8", "interfaces of the responder: counters of replies", of({name}) | EVERY_NODE, RESPONDER_NAMES},
    {"show responder summary", "-c 10", "the responder at a glance", EVERY_NODE},
    {"show receiver summary", "-c 11", "the receive path: packets, errors, rates, queues, ports", EVERY_NODE},
    {"show checkpoint sessions", "-c 12", "checkpointed sessions of interfaces", of({name}) | EVERY_NODE, INTERFACE_NAMES},
    {"show checkpoint distribution", "-c 25", "checkpointed distribution records", LOCAL_NODE},
    {"show checkpoint distributed-sessions", "-c 33", "checkpointed distributed sessions", LOCAL_NODE},
    {"show packet-rates", "-c 30", "packets per second: limits, budgets and requests", of({detail}) | EVERY_NODE},
    {"show allowed-queriers", "-c 36", "prefixes of the queriers that are answered", of({internal}) | EVERY_NODE},
    {"show allowed-responders", "-c 37", "prefixes of the responders that are asked", of({internal}) | EVERY_NODE},
    {"show capabilities", "-c 31", "what the platform supports", EVERY_NODE},
    {"show line-cards", "-c 32", "line cards and their NPUs", LOCAL_NODE},
    {"show batches", "-c 14", "batched messages: counts, sizes and latencies", EVERY_NODE},
    {"show process", "-c 13", "state machine of the process", EVERY_NODE},

    {"plot delay interface", "-c 4 -t 3", "the delays of an interface", PLOT | EVERY_NODE, INTERFACE_NAMES, true},
    {"plot delay sr-policy", "-c 4 -t 19", "the delays of an SR policy, each candidate path or one segment list", PLOT | of({segment_list}) | EVERY_NODE, POLICY_NAMES, true},
    {"plot delay rsvp-te", "-c 4 -t 21", "the delays of an RSVP-TE tunnel, each LSP", PLOT | LOCAL_NODE, TUNNEL_NAMES, true},
    {"plot delay endpoint", "-c 4 -t 29", "the delays of an endpoint, each segment list", PLOT | of({segment_list}) | EVERY_NODE, ENDPOINT_NAMES, true},

    {"metrics", "", "metrics for Prometheus: all nodes and what they measure", EVERY_NODE, {}, false, true},
    {"metrics interfaces", "-c 1", "metrics of interfaces", of({name}) | EVERY_NODE, INTERFACE_NAMES, false, true},
    {"metrics sr-policies", "-c 17", "metrics of SR policies", of({name}) | POLICIES | EVERY_NODE, POLICY_NAMES, false, true},
    {"metrics rsvp-te", "-c 15", "metrics of RSVP-TE tunnels", of({name}) | TUNNELS | EVERY_NODE, TUNNEL_NAMES, false, true},
    {"metrics endpoints", "-c 26", "metrics of endpoints", of({name}) | ENDPOINTS | EVERY_NODE, ENDPOINT_NAMES, false, true},
    {"metrics summary", "-c 9", "metrics of whole nodes only", EVERY_NODE, {}, false, true},
};

constexpr synonym SYNONYMS[] = {
    {"tunnels", "rsvp-te"}, {"tunnel", "rsvp-te"}, {"rsvp", "rsvp-te"}, {"te", "rsvp-te"},
    {"policies", "sr-policies"}, {"policy", "sr-policies"}, {"policies", "sr-policy"}, {"policy", "sr-policy"}, {"srte", "sr-policies"},
    {"ports", "interfaces"}, {"links", "interfaces"}, {"colour", "color"}, {"table", "brief"},
    {"address", "endpoint"}, {"address", "destination"}, {"endpoint", "destination"}, {"dest", "endpoint"},
    {"statistics", "counters"}, {"stats", "counters"}, {"queriers", "allowed-queriers"}, {"responders", "allowed-responders"},
    {"pps", "packet-rates"}, {"rates", "packet-rates"}, {"npus", "line-cards"}, {"cards", "line-cards"}, {"fsm", "process"},
    {"overview", "summary"}, {"status", "summary"}, {"count", "limit"}, {"max", "limit"}, {"rp", "cpu"}, {"route-processor", "cpu"},
    {"graph", "plot"}, {"draw", "plot"}, {"list", "show"}, {"display", "show"}, {"get", "show"}, {"past", "history"}, {"all", "all-nodes"},
    {"session", "id"}, {"static", "configured"}, {"default", "defaults"}, {"retry-queue", "retries"}, {"tunnel", "lsp"}, {"offloaded", "host"},
};
// clang-format on

}  // namespace

std::span<const phrase> phrases() { return PHRASES; }
std::span<const phrase_group> phrase_groups() { return GROUPS; }
std::span<const synonym> synonyms() { return SYNONYMS; }
const option &option_of(option_id id) { return OPTIONS[static_cast<std::size_t>(id)]; }

}  // namespace perf_measure
