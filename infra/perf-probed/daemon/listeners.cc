// SPDX-License-Identifier: Apache-2.0
// A listener is known by its address and port; its key may change while it stays open.
#include "perf-probed/daemon/listeners.h"

#include <algorithm>

namespace probed {
namespace {

bool same_place(const listen_config &one, const listen_config &other) {
    return one.address == other.address && one.port == other.port;
}

pm_error read_optional_key(const std::string &file, std::optional<hmac_key> *out) {
    std::string key;
    out->reset();
    if (file.empty()) {
        return {};
    }
    if (!read_key(file, &key)) {
        return pm_error("no key can be read from " + file);
    }
    out->emplace(key);
    return {};
}

ip_address all_of(ip_family family) {
    ip_address address;
    address.family = family;
    return address;
}

}  // namespace

pm_error listeners::apply(const reflector_config &settings, const clock_quality &clock,
                          const std::function<void(const std::string &)> &note) {
    close_unwanted(settings);
    for (const listen_config &each : settings.listen) {
        if (!settings.enabled) {
            break;
        }
        if (pm_error error = keep_or_open(each, each.address ? each.address : all_of(ip_family::ipv4))) {
            return error;
        }
        if (each.address) {
            continue;
        }
        if (const pm_error error = keep_or_open(each, all_of(ip_family::ipv6))) {  // a host may have no IPv6
            note(error.text());
        }
    }
    const clock_source source = clock.format == stamp_format::ptp ? clock_source::ptp : clock_source::ntp;
    for (const auto &each : listeners_) {
        each->replies = {each->key ? &*each->key : nullptr, settings.answer_short, clock.estimate_bits(), clock.format,
                         clock.synchronised ? source : clock_source::free_running};
    }
    list_open();
    return {};
}

void listeners::close_unwanted(const reflector_config &settings) {
    std::erase_if(listeners_, [&](const std::unique_ptr<listener> &open) {
        const bool wanted = settings.enabled && std::ranges::any_of(settings.listen, [&](const listen_config &each) {
                                return same_place(each, open->settings);
                            });
        if (!wanted) {
            loop_.forget(open->socket.fd());
        }
        return !wanted;
    });
}

pm_error listeners::keep_or_open(const listen_config &settings, const ip_address &address) {
    std::optional<hmac_key> key;
    if (pm_error error = read_optional_key(settings.key_file, &key)) {
        return error;
    }
    const auto found = std::ranges::find_if(listeners_, [&](const std::unique_ptr<listener> &open) {
        return same_place(open->settings, settings) && open->address == address;
    });
    if (found != listeners_.end()) {
        (*found)->settings = settings;
        (*found)->key = std::move(key);
        return {};
    }
    auto added = std::make_unique<listener>();
    added->settings = settings;
    added->address = address;
    added->key = std::move(key);
    if (pm_error error = added->socket.open({address, settings.port, "", false})) {
        return error;
    }
    added->opened_msec = clocks_.now().wall_msec();
    listener *const kept = added.get();
    loop_.watch(kept->socket.fd(), [this, kept] { responder_.serve(kept->socket, kept->replies, clocks_); });
    listeners_.push_back(std::move(added));
    return {};
}

void listeners::list_open() {
    open_.clear();
    for (const auto &each : listeners_) {
        open_.push_back(
            {each->socket.port(), each->socket.family(), each->settings == listen_config{}, each->opened_msec});
    }
}

}  // namespace probed
