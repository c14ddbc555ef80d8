// SPDX-License-Identifier: Apache-2.0
// The ports where probes are answered: opened, kept and closed as the configuration says.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/pm_error.h"
#include "perf-probed/config/config.h"
#include "perf-probed/daemon/event_loop.h"
#include "perf-probed/reflector/reflector.h"
#include "perf-probed/state/node_records.h"

namespace probed {

class listeners {
public:
    // All must outlive this.
    listeners(event_loop *loop, reflector *responder, const clock_source_interface *clocks)
        : loop_(*loop), responder_(*responder), clocks_(*clocks) {}

    // Closes what is not wanted any more, opens what is new, and reads all keys again; a port that stays is not closed.
    // `note` is told of what the host does not have. The error is the first port that cannot be opened or key that
    // cannot be read; what comes after it has not been done.
    [[nodiscard]] pm_error apply(const reflector_config &settings, const clock_quality &clock,
                                 const std::function<void(const std::string &)> &note);

    [[nodiscard]] const std::vector<open_listener> &open() const { return open_; }

private:
    struct listener {
        udp_socket socket;
        listen_config settings;
        ip_address address;  // where it is open: one of a family when the configuration says all
        std::optional<hmac_key> key;
        reply_settings replies;
        std::uint64_t opened_msec = 0;
    };

    void close_unwanted(const reflector_config &settings);
    [[nodiscard]] pm_error keep_or_open(const listen_config &settings, const ip_address &address);
    void list_open();

    event_loop &loop_;
    reflector &responder_;
    const clock_source_interface &clocks_;
    std::vector<std::unique_ptr<listener>> listeners_;
    std::vector<open_listener> open_;
};

}  // namespace probed
