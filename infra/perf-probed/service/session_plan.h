// SPDX-License-Identifier: Apache-2.0
// Which sessions a configuration asks for, and how their packets share the allowed rate.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "perf-probed/config/config.h"
#include "perf-probed/session/session.h"
#include "schema/pm_enums.h"

namespace probed {

// One session as it is configured. Either `endpoint` or `interface` is set.
struct session_plan {
    session_kind kind = session_kind::delay;
    std::shared_ptr<const endpoint_config> endpoint;
    std::shared_ptr<const interface_config> interface;
    std::string profile_name;  // empty: the default one
    bool has_profile = true;   // else the settings below are those of the default one
    delay_profile delay;       // the settings of the session's kind
    loss_profile loss;
    liveness_profile liveness;
    probe_profile probe;
    std::uint32_t tx_interval_usec = 0;  // effective
    bool stretched = false;              // it is longer than the profile's, to keep within the rate

    [[nodiscard]] bool of_interface() const { return interface != nullptr; }
    [[nodiscard]] pm_transport_type_e transport() const {
        return of_interface() ? PM_TRANSPORT_INTERFACE : PM_TRANSPORT_ENDPOINT;
    }
    [[nodiscard]] const std::string &name() const { return of_interface() ? interface->name : endpoint->name; }
    [[nodiscard]] ip_address address() const { return of_interface() ? interface->next_hop : endpoint->address; }
    [[nodiscard]] std::uint16_t port() const { return of_interface() ? interface->port : endpoint->port; }
    [[nodiscard]] const std::string &key_file() const {
        return of_interface() ? interface->key_file : endpoint->key_file;
    }
    [[nodiscard]] std::uint8_t traffic_class() const;
    // The settings of a session that measures in computations; null for others.
    [[nodiscard]] const computing_profile *computing() const {
        const computing_profile *const loss_or_none = kind == session_kind::loss ? &loss : nullptr;
        return kind == session_kind::delay ? &delay : loss_or_none;
    }
    [[nodiscard]] std::uint32_t profile_tx_interval_usec() const;

    // Whether another plan is for the same session, which then goes on with other settings: the same kind of
    // measurement, by the same packets from and to the same addresses.
    [[nodiscard]] bool same_session(const session_plan &other) const;
};

// Packets a second, of one kind of sessions or of all.
struct packet_rates {
    double requested = 0;
    double effective = 0;
};

struct rate_budget {
    std::uint32_t limit = 0;
    packet_rates interface;
    packet_rates endpoint;
    std::uint32_t stretch_percent = 100;  // of the tx intervals

    [[nodiscard]] double requested() const { return interface.requested + endpoint.requested; }
};

// The sessions in the order of the configuration: endpoints with delay, liveness, probe, then interfaces with delay,
// loss.
[[nodiscard]] std::vector<session_plan> plan_sessions(const config &from, rate_budget *budget);

}  // namespace probed
