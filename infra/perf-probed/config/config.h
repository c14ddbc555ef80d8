// SPDX-License-Identifier: Apache-2.0
// The configuration of perf-probed: what docs/man/perf-probed.yaml.5 describes, read and checked.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "perf-probed/net/address.h"
#include "perf-probed/reflector/reply_builder.h"
#include "perf-probed/session/profile.h"

namespace probed {

struct node_config {
    std::string name;      // empty: the host's
    std::uint32_t id = 1;  // in the store
};

// One UDP port where probes are answered.
struct listen_config {
    ip_address address;  // none: every address of both families
    std::uint16_t port = STAMP_PORT;
    std::string key_file;  // authenticated mode; empty: unauthenticated

    bool operator==(const listen_config &) const = default;
};

struct reflector_config {
    bool enabled = false;
    std::vector<listen_config> listen;
    std::vector<ip_prefix> allowed_queriers;
    bool answer_short = false;

    bool operator==(const reflector_config &) const = default;
};

// What is measured towards something: a profile's name, empty for the default one; absent: it is not measured.
using measured = std::optional<std::string>;

struct endpoint_config {
    std::string name;
    std::string description;
    ip_address address;
    std::uint16_t port = STAMP_PORT;
    ip_address source;              // none: the system chooses
    std::uint16_t source_port = 0;  // 0: one that the system chooses
    std::string vrf;                // empty: none
    std::string key_file;           // authenticated mode; empty: unauthenticated
    bool suspended = false;
    std::optional<std::uint32_t> static_delay_usec;  // advertised in place of the measured one
    measured delay;
    measured liveness;
    measured probe;

    bool operator==(const endpoint_config &) const = default;
};

struct interface_config {
    std::string name;
    ip_address next_hop;  // none: there is none
    std::uint16_t port = STAMP_PORT;
    ip_address source;  // none: the interface's
    std::string key_file;
    bool suspended = false;
    std::optional<std::uint32_t> static_delay_usec;
    measured delay;
    measured loss;

    bool operator==(const interface_config &) const = default;
};

struct config {
    node_config node;
    std::string store;  // URL; empty: OPSTORE_URL or the default store
    clock_quality clock;
    std::uint32_t packet_rate = 10'000;  // packets a second of all sessions together
    reflector_config reflector;
    std::vector<ip_prefix> allowed_responders;
    history_sizes histories;

    delay_profile interface_delay;  // the defaults
    loss_profile interface_loss;
    delay_profile endpoint_delay;
    liveness_profile endpoint_liveness;
    probe_profile endpoint_probe;
    std::vector<delay_profile> delay_profiles;  // the named ones
    std::vector<loss_profile> loss_profiles;
    std::vector<liveness_profile> liveness_profiles;
    std::vector<probe_profile> probe_profiles;

    std::vector<endpoint_config> endpoints;
    std::vector<interface_config> interfaces;

    // The named profile, or `otherwise` for an empty name. Null when nobody defined it.
    [[nodiscard]] const delay_profile *find_delay(const std::string &name, const delay_profile &otherwise) const;
    [[nodiscard]] const loss_profile *find_loss(const std::string &name) const;
    [[nodiscard]] const liveness_profile *find_liveness(const std::string &name) const;
    [[nodiscard]] const probe_profile *find_probe(const std::string &name) const;
};

struct config_report {
    std::vector<std::string> errors;    // each "FILE:LINE: key: what is wrong"
    std::vector<std::string> warnings;  // the same form; the configuration may be used

    [[nodiscard]] bool ok() const { return errors.empty(); }
};

// Reads a file, or a text that is called `name` in messages. With errors `*out` is not to be used.
[[nodiscard]] config_report load_config(const std::string &path, config *out);
[[nodiscard]] config_report parse_config(const std::string &name, const std::string &text, config *out);

// The key in a key file: its text without white space around it. False when it cannot be read or is empty.
[[nodiscard]] bool read_key(const std::string &path, std::string *key);

}  // namespace probed
