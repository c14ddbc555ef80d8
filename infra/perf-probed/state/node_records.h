// SPDX-License-Identifier: Apache-2.0
// The items of the host as a whole: summaries, profiles, rates, capabilities, the process, and the responder's.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "perf-probed/config/config.h"
#include "perf-probed/reflector/reflector.h"
#include "perf-probed/service/prober.h"
#include "perf-probed/state/snapshot.h"

namespace probed {

// The states of the process, in the numbering of the shows.
enum class process_state : std::uint8_t { start, init, role_init, wait_for_others, run };
inline constexpr std::size_t PROCESS_STATES = 5;

struct process_event {
    std::uint8_t from = 0;
    std::uint8_t to = 0;
    std::uint16_t what = 0;  // pm_utils/process_names.cc
    std::uint16_t collaborator = 0;
    mono_nsec time = 0;
};

// What the process depends on.
struct collaborator {
    const char *name;
    bool connected = false;
    mono_nsec changed = 0;  // 0: it never was connected
};

struct process_history {
    std::array<mono_nsec, PROCESS_STATES> entered{};
    process_state state = process_state::start;
    std::vector<collaborator> collaborators;
    std::vector<process_event> events;  // oldest first
};

// A port where probes are answered, and when it was opened.
struct open_listener {
    std::uint16_t port = 0;
    ip_family family = ip_family::none;
    bool by_default = false;  // nobody configured it
    std::uint64_t opened_msec = 0;
};

// What there is to be told, all of it owned by the thread that measures.
struct node_view {
    const config &settings;
    const prober &sender;
    const reflector &responder;
    const std::vector<open_listener> &listeners;
    const process_history &process;
};

void add_summary(const node_view &of, snapshot *out);
void add_packet_rates(const node_view &of, snapshot *out);
void add_capability(const node_view &of, snapshot *out);
void add_process(const node_view &of, const moment &now, snapshot *out);
void add_responder(const node_view &of, const moment &now, snapshot *out);
void add_receive_path(const node_view &of, snapshot *out);
// These change with the configuration and the sockets only.
void add_profiles(const node_view &of, snapshot *out);
void add_prefixes(const node_view &of, snapshot *out);

}  // namespace probed
