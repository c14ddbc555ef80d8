// SPDX-License-Identifier: Apache-2.0
// The running service: sessions, responder, publishing, and the signals that it obeys.
#pragma once

#include <csignal>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/pm_error.h"
#include "perf-probed/config/config.h"
#include "perf-probed/daemon/event_loop.h"
#include "perf-probed/daemon/listeners.h"
#include "perf-probed/daemon/service_manager.h"
#include "perf-probed/net/host_state.h"
#include "perf-probed/publish/publisher.h"
#include "perf-probed/reflector/reflector.h"
#include "perf-probed/service/prober.h"
#include "perf-probed/state/change_tracker.h"
#include "perf-probed/state/node_records.h"

namespace probed {

class daemon {
public:
    // `path` is the configuration's file, read again upon SIGHUP.
    daemon(std::string path, config settings);
    ~daemon();
    daemon(const daemon &) = delete;
    daemon &operator=(const daemon &) = delete;

    // Opens sockets, tells the service manager, and runs until SIGTERM or SIGINT. SIGHUP reads the configuration again,
    // SIGUSR1 withdraws all advertisements, SIGUSR2 logs what became of the packets. The error is why it cannot start.
    [[nodiscard]] pm_error run();

private:
    [[nodiscard]] pm_error start();
    void loop();
    void end();
    void take_signals();
    void reload();
    [[nodiscard]] pm_error apply(const config &settings);
    void watch_senders();
    void host_changed();
    void every_second(const moment &now);
    void publish(const moment &now);
    void continue_snapshot(const moment &now);
    void hand_in(const moment &now);
    void note_report(const publishing_report &report);
    void fill_node_items(const node_view &view, const moment &now, bool everything, snapshot *out);
    void enter(process_state state, std::uint16_t event);
    void connect(std::size_t collaborator, bool connected, std::uint16_t number);
    void log(int priority, const std::string &text) const;

    std::string path_;
    config settings_;
    system_clocks clocks_;
    event_loop loop_;
    host_watch watch_;
    prober sender_;
    reflector responder_;
    listeners listeners_{&loop_, &responder_, &clocks_};
    std::unique_ptr<publisher> publisher_;
    change_tracker tracker_;
    process_history process_;
    int signals_ = -1;
    bool ending_ = false;
    bool host_is_stale_ = false;
    bool settings_changed_ = true;
    mono_nsec next_second_ = 0;
    mono_nsec watchdog_ = watchdog_interval();
    mono_nsec next_sign_of_life_ = 0;
    mono_nsec next_publication_ = 0;
    mono_nsec last_publication_ = 0;
    mono_nsec next_sessions_ = 0;     // when sessions are published again; the rest, and the lease, go more often
    std::int64_t sessions_cost_ = 0;  // nanoseconds of the processor, for building and writing them once
    bool sessions_are_out_ = false;   // the last snapshot had sessions
    bool sessions_are_due_ = false;   // and are to be added to the one that is being built
    std::unique_ptr<snapshot> building_;
    mono_nsec host_read_at_ = 0;
    std::string last_store_error_;
};

}  // namespace probed
