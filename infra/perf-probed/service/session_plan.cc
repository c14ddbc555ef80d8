// SPDX-License-Identifier: Apache-2.0
// From the configuration to sessions.
#include "perf-probed/service/session_plan.h"

#include <cmath>

namespace probed {
namespace {

template <class Profile>
void take_profile(session_plan *plan, const Profile *found, const Profile &otherwise, Profile session_plan::*to) {
    plan->has_profile = found != nullptr;
    plan->*to = found != nullptr ? *found : otherwise;
}

session_plan *add_plan(session_kind kind, const measured &what, std::vector<session_plan> *plans) {
    session_plan &plan = plans->emplace_back();
    plan.kind = kind;
    plan.profile_name = *what;
    return &plan;
}

void plan_endpoint(const config &from, const endpoint_config &endpoint, std::vector<session_plan> *plans) {
    const auto shared = std::make_shared<const endpoint_config>(endpoint);
    const auto add = [&](session_kind kind, const measured &what) {
        session_plan *const plan = add_plan(kind, what, plans);
        plan->endpoint = shared;
        return plan;
    };
    if (endpoint.delay) {
        take_profile(add(session_kind::delay, endpoint.delay), from.find_delay(*endpoint.delay, from.endpoint_delay),
                     from.endpoint_delay, &session_plan::delay);
    }
    if (endpoint.liveness) {
        take_profile(add(session_kind::liveness, endpoint.liveness), from.find_liveness(*endpoint.liveness),
                     from.endpoint_liveness, &session_plan::liveness);
    }
    if (endpoint.probe) {
        take_profile(add(session_kind::probe, endpoint.probe), from.find_probe(*endpoint.probe), from.endpoint_probe,
                     &session_plan::probe);
    }
}

void plan_interface(const config &from, const interface_config &interface, std::vector<session_plan> *plans) {
    const auto shared = std::make_shared<const interface_config>(interface);
    const auto add = [&](session_kind kind, const measured &what) {
        session_plan *const plan = add_plan(kind, what, plans);
        plan->interface = shared;
        return plan;
    };
    if (interface.delay) {
        take_profile(add(session_kind::delay, interface.delay), from.find_delay(*interface.delay, from.interface_delay),
                     from.interface_delay, &session_plan::delay);
    }
    if (interface.loss) {
        take_profile(add(session_kind::loss, interface.loss), from.find_loss(*interface.loss), from.interface_loss,
                     &session_plan::loss);
    }
}

// Packets a second of a session whose packets are `interval_usec` apart; bursts leave a part of the time without any.
double rate_of(const session_plan &plan, std::uint32_t interval_usec) {
    const computing_profile *const computing = plan.computing();
    return computing == nullptr ? static_cast<double>(USEC_PER_SEC) / interval_usec
                                : static_cast<double>(computing->packets_per_computation(interval_usec)) /
                                      computing->computation_interval_sec;
}

void stretch(std::vector<session_plan> *plans, rate_budget *budget) {
    if (budget->requested() > budget->limit) {
        budget->stretch_percent = static_cast<std::uint32_t>(std::ceil(budget->requested() * 100 / budget->limit));
    }
    for (session_plan &plan : *plans) {
        const std::uint64_t wanted = plan.profile_tx_interval_usec();
        const computing_profile *const computing = plan.computing();
        const std::uint64_t longest =
            computing != nullptr ? std::uint64_t{computing->computation_interval_sec} * USEC_PER_SEC : 0xFFFFFFFFU;
        const std::uint64_t stretched = std::min(wanted * budget->stretch_percent / 100, longest);
        plan.tx_interval_usec = static_cast<std::uint32_t>(std::max(wanted, stretched));
        plan.stretched = plan.tx_interval_usec > wanted;
        packet_rates &rates = plan.of_interface() ? budget->interface : budget->endpoint;
        rates.effective += rate_of(plan, plan.tx_interval_usec);
    }
}

}  // namespace

std::uint8_t session_plan::traffic_class() const {
    switch (kind) {
    case session_kind::delay: return static_cast<std::uint8_t>(delay.dscp << 2);
    case session_kind::loss: return static_cast<std::uint8_t>(loss.dscp << 2);
    case session_kind::liveness: return static_cast<std::uint8_t>(liveness.dscp << 2);
    case session_kind::probe: return probe.traffic_classes.empty() ? std::uint8_t{0} : probe.traffic_classes.front();
    }
    return 0;
}

std::uint32_t session_plan::profile_tx_interval_usec() const {
    switch (kind) {
    case session_kind::delay: return delay.tx_interval_usec;
    case session_kind::loss: return loss.tx_interval_usec;
    case session_kind::liveness: return liveness.tx_interval_usec;
    case session_kind::probe: return probe.tx_interval_usec;
    }
    return USEC_PER_SEC;
}

bool session_plan::same_session(const session_plan &other) const {
    if (kind != other.kind || of_interface() != other.of_interface() || name() != other.name() ||
        address() != other.address() || port() != other.port() || key_file() != other.key_file()) {
        return false;
    }
    if (of_interface()) {
        return interface->source == other.interface->source;
    }
    return endpoint->source == other.endpoint->source && endpoint->source_port == other.endpoint->source_port &&
           endpoint->vrf == other.endpoint->vrf;
}

std::vector<session_plan> plan_sessions(const config &from, rate_budget *budget) {
    std::vector<session_plan> plans;
    for (const endpoint_config &endpoint : from.endpoints) {
        plan_endpoint(from, endpoint, &plans);
    }
    for (const interface_config &interface : from.interfaces) {
        plan_interface(from, interface, &plans);
    }
    *budget = {};
    budget->limit = from.packet_rate;
    for (const session_plan &plan : plans) {
        packet_rates &rates = plan.of_interface() ? budget->interface : budget->endpoint;
        rates.requested += rate_of(plan, plan.profile_tx_interval_usec());
    }
    stretch(&plans, budget);
    return plans;
}

}  // namespace probed
