// SPDX-License-Identifier: Apache-2.0
// The sections of the file.
#include "perf-probed/config/config.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

#include "perf-probed/config/profiles.h"
#include "perf-probed/config/section.h"
#include "perf-probed/session/session.h"

namespace probed {
namespace {

constexpr std::size_t MOST_SESSIONS = 60'000;  // their identifiers are 16 bits in the packets
constexpr std::size_t LONGEST_NAME = 64;

constexpr named_value<stamp_format> FORMATS[] = {
    {"ntp", stamp_format::ntp},
    {"ptp", stamp_format::ptp},
};
constexpr named_value<session_kind> KINDS[] = {
    {"delay", session_kind::delay},
    {"liveness", session_kind::liveness},
    {"probe", session_kind::probe},
    {"loss", session_kind::loss},
};

void read_clock(section &from, clock_quality *clock) {
    from.read("synchronised", &clock->synchronised);
    from.read_choice("format", std::span<const named_value<stamp_format>>(FORMATS), &clock->format);
    from.read_time("error", 1, 1, 3'600'000'000'000, &clock->error_nsec);
}

void read_reflector(section &from, reflector_config *reflector) {
    reflector->enabled = true;
    from.read("enabled", &reflector->enabled);
    from.read("allowed-queriers", &reflector->allowed_queriers);
    from.read("answer-short-requests", &reflector->answer_short);
    from.read_list("listen", [reflector](section &each) {
        listen_config listen;
        each.read("address", &listen.address);
        each.read_number("port", 1, 65535, &listen.port);
        each.read("key-file", &listen.key_file);
        reflector->listen.push_back(listen);
    });
    if (reflector->listen.empty()) {
        reflector->listen.emplace_back();
    }
}

void read_name(section &from, std::set<std::string> *names, std::string *name) {
    from.require("name");
    from.read("name", name);
    if (name->size() > LONGEST_NAME || name->find('/') != std::string::npos) {
        from.error("name", "is longer than " + std::to_string(LONGEST_NAME) + " bytes or has a slash");
    }
    if (!names->insert(*name).second) {
        from.error("name", "'" + *name + "' is used twice");
    }
}

void read_named_profile(section &from, config *to, std::set<std::string> *names) {
    session_kind kind = session_kind::delay;
    from.require("kind");
    from.read_choice("kind", std::span<const named_value<session_kind>>(KINDS), &kind);
    std::string name;
    from.require("name");
    from.read("name", &name);
    if (!names->insert(std::to_string(static_cast<int>(kind)) + name).second) {
        from.error("name", "'" + name + "' is used twice for profiles of this kind");
    }
    switch (kind) {
    case session_kind::delay:
        to->delay_profiles.emplace_back().name = name;
        read_profile(from, to->clock, &to->delay_profiles.back());
        break;
    case session_kind::liveness:
        to->liveness_profiles.emplace_back().name = name;
        read_profile(from, &to->liveness_profiles.back());
        break;
    case session_kind::loss:
        to->loss_profiles.emplace_back().name = name;
        read_profile(from, &to->loss_profiles.back());
        break;
    case session_kind::probe:
        to->probe_profiles.emplace_back().name = name;
        read_profile(from, &to->probe_profiles.back());
        break;
    }
}

void read_static_delay(section &from, std::optional<std::uint32_t> *out) {
    std::uint32_t delay = 0;
    if (from.has("advertise-delay")) {
        from.read_time("advertise-delay", NSEC_PER_USEC, 0, 0xFFFFFF, &delay);
        *out = delay;
    }
}

void warn_of_missing_profile(section &from, const char *key, const measured &what, bool found) {
    if (what && !found) {
        from.warning(key, "there is no profile '" + *what + "'; the session will not run");
    }
}

void read_endpoint(section &from, config *to, std::set<std::string> *names) {
    endpoint_config endpoint;
    read_name(from, names, &endpoint.name);
    from.require("address");
    from.read("address", &endpoint.address);
    if (endpoint.address.is_multicast() || endpoint.address.is_any()) {
        from.error("address", "is not the address of one host");
    }
    from.read("description", &endpoint.description);
    from.read_number("port", 1, 65535, &endpoint.port);
    from.read("source", &endpoint.source);
    from.read_number("source-port", 1, 65535, &endpoint.source_port);
    from.read("vrf", &endpoint.vrf);
    from.read("key-file", &endpoint.key_file);
    from.read("suspended", &endpoint.suspended);
    read_static_delay(from, &endpoint.static_delay_usec);
    from.read_measured("delay", &endpoint.delay);
    from.read_measured("liveness", &endpoint.liveness);
    from.read_measured("probe", &endpoint.probe);
    warn_of_missing_profile(from, "delay", endpoint.delay,
                            endpoint.delay && to->find_delay(*endpoint.delay, to->endpoint_delay) != nullptr);
    warn_of_missing_profile(from, "liveness", endpoint.liveness,
                            endpoint.liveness && to->find_liveness(*endpoint.liveness) != nullptr);
    warn_of_missing_profile(from, "probe", endpoint.probe,
                            endpoint.probe && to->find_probe(*endpoint.probe) != nullptr);
    to->endpoints.push_back(endpoint);
}

void read_interface(section &from, config *to, std::set<std::string> *names) {
    interface_config interface;
    read_name(from, names, &interface.name);
    from.read("next-hop", &interface.next_hop);
    from.read_number("port", 1, 65535, &interface.port);
    from.read("source", &interface.source);
    from.read("key-file", &interface.key_file);
    from.read("suspended", &interface.suspended);
    read_static_delay(from, &interface.static_delay_usec);
    from.read_measured("delay", &interface.delay);
    warn_of_missing_profile(from, "delay", interface.delay,
                            interface.delay && to->find_delay(*interface.delay, to->interface_delay) != nullptr);
    from.read_measured("loss", &interface.loss);
    warn_of_missing_profile(from, "loss", interface.loss, interface.loss && to->find_loss(*interface.loss) != nullptr);
    to->interfaces.push_back(interface);
}

void read_defaults(section &from, config *to) {
    from.read_section("interface-delay",
                      [to](section &inside) { read_profile(inside, to->clock, &to->interface_delay); });
    from.read_section("interface-loss", [to](section &inside) { read_profile(inside, &to->interface_loss); });
    from.read_section("endpoint-delay",
                      [to](section &inside) { read_profile(inside, to->clock, &to->endpoint_delay); });
    from.read_section("endpoint-liveness", [to](section &inside) { read_profile(inside, &to->endpoint_liveness); });
    from.read_section("endpoint-probe", [to](section &inside) { read_profile(inside, &to->endpoint_probe); });
}

void read_measurements(section &root, config *to) {
    std::set<std::string> names;
    root.read_list("profiles", [&](section &each) { read_named_profile(each, to, &names); });
    names.clear();
    root.read_list("endpoints", [&](section &each) { read_endpoint(each, to, &names); });
    names.clear();
    root.read_list("interfaces", [&](section &each) { read_interface(each, to, &names); });
    std::size_t sessions = 0;
    for (const interface_config &each : to->interfaces) {
        sessions += (each.delay ? 1U : 0U) + (each.loss ? 1U : 0U);
    }
    for (const endpoint_config &each : to->endpoints) {
        sessions += (each.delay ? 1U : 0U) + (each.liveness ? 1U : 0U) + (each.probe ? 1U : 0U);
    }
    if (sessions > MOST_SESSIONS) {
        root.error("endpoints", "there are more than " + std::to_string(MOST_SESSIONS) + " sessions");
    }
}

void read_all(section &root, config *to) {
    root.read_section("node", [to](section &node) {
        node.read("name", &to->node.name);
        node.read_number("id", 0, 0xFFFFFFFE, &to->node.id);
    });
    root.read("store", &to->store);
    root.read_section("clock", [to](section &clock) { read_clock(clock, &to->clock); });
    root.read_number("packet-rate", 1, 10'000'000, &to->packet_rate);
    root.read_section("reflector", [to](section &reflector) { read_reflector(reflector, &to->reflector); });
    root.read("allowed-responders", &to->allowed_responders);
    root.read_section("history", [to](section &history) {
        history.read_number("probe", 0, 1000, &to->histories.probe);
        history.read_number("aggregated", 0, 1000, &to->histories.aggregated);
        history.read_number("advertisement", 0, 1000, &to->histories.advertisement);
        history.read_number("liveness", 0, 1000, &to->histories.liveness);
    });
    root.read_section("defaults", [to](section &defaults) { read_defaults(defaults, to); });
    read_measurements(root, to);
}

template <class Profile>
const Profile *find(const std::vector<Profile> &named, const Profile &otherwise, const std::string &name) {
    if (name.empty()) {
        return &otherwise;
    }
    const auto found = std::ranges::find(named, name, &Profile::name);
    return found == named.end() ? nullptr : &*found;
}

}  // namespace

const delay_profile *config::find_delay(const std::string &name, const delay_profile &otherwise) const {
    return find(delay_profiles, otherwise, name);
}

const loss_profile *config::find_loss(const std::string &name) const {
    return find(loss_profiles, interface_loss, name);
}

const liveness_profile *config::find_liveness(const std::string &name) const {
    return find(liveness_profiles, endpoint_liveness, name);
}

const probe_profile *config::find_probe(const std::string &name) const {
    return find(probe_profiles, endpoint_probe, name);
}

config_report parse_config(const std::string &name, const std::string &text, config *out) {
    config_messages messages(name);
    *out = {};
    try {
        const YAML::Node root = YAML::Load(text);
        if (root.IsMap()) {
            section whole(root, "", &messages);
            read_all(whole, out);
        } else if (!root.IsNull()) {
            messages.error(root.Mark(), "", "is not a mapping");
        }
    } catch (const YAML::Exception &failure) {
        messages.error(failure.mark, "", failure.msg);
    }
    return messages.report;
}

config_report load_config(const std::string &path, config *out) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    if (!in) {
        return {{path + ": cannot be read"}, {}};
    }
    return parse_config(path, text.str(), out);
}

bool read_key(const std::string &path, std::string *key) {
    std::ifstream in(path, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(in), {});
    constexpr char WHITE[] = " \t\r\n";
    const std::size_t first = text.find_first_not_of(WHITE);
    if (first == std::string::npos) {
        return false;
    }
    *key = text.substr(first, text.find_last_not_of(WHITE) - first + 1);
    return true;
}

}  // namespace probed
