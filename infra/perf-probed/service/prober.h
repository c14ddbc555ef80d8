// SPDX-License-Identifier: Apache-2.0
// The session-sender: all sessions, their timers, and the sockets that their packets leave by.
//
// Owned by one thread. Tells nobody of changes: whoever publishes looks at the entries and at `changes`.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "perf-probed/config/config.h"
#include "perf-probed/net/host_state.h"
#include "perf-probed/net/packet_batch.h"
#include "perf-probed/net/udp_socket.h"
#include "perf-probed/packet/hmac.h"
#include "perf-probed/schedule/clocks.h"
#include "perf-probed/schedule/timer_queue.h"
#include "perf-probed/service/resolve.h"
#include "perf-probed/service/session_plan.h"
#include "perf-probed/session/session.h"

namespace probed {

// A session with all that belongs to it.
struct session_entry {
    session_plan plan;
    std::unique_ptr<session> run;
    std::optional<hmac_key> key;
    std::uint32_t socket = 0;       // index of the sender's socket
    std::uint16_t source_port = 0;  // of that socket; 0: it is not open
    resolved from;                  // where it runs from, or why it does not run
    ip_address used_source;         // of the last answered packet; none: none was answered
    bool next_hop_failed = false;
    std::uint8_t request_ttl = 0;         // with which the last answered packet arrived; 0: none was answered
    std::uint64_t revision = 0;           // grows with everything that happens to it
    std::optional<mono_nsec> removed_at;  // it was removed from the configuration and is shown a little longer

    [[nodiscard]] std::uint32_t id() const { return run->id(); }
    [[nodiscard]] pm_probe_running_error_reason shown_reason() const {
        return run->is_running() && next_hop_failed ? PM_NOT_RUNNING_NO_NEXT_HOP_MAC : run->not_running_reason();
    }
};

struct prober_counters {
    std::uint64_t sent = 0;
    std::uint64_t received[2] = {};     // IPv4, IPv6: everything that arrived
    std::uint64_t errors[2] = {};       // of these: cut, too short, bad HMAC, from an address that is not allowed
    std::uint64_t invalid_session = 0;  // the SSID of no session
    std::uint64_t no_session = 0;       // without an SSID, and no session waits for it
    std::uint64_t not_allowed = 0;
    std::uint64_t too_short = 0;
    std::uint64_t bad_hmac = 0;
    std::uint64_t kernel_stamped = 0;
    std::uint64_t hardware_stamped = 0;
};

// How late packets were sent.
struct timer_drift {
    std::uint64_t packets = 0;
    std::uint64_t above_10_msec = 0;
    mono_nsec sum = 0;
    mono_nsec maximum = 0;
    std::uint64_t maximum_msec = 0;  // wall clock, of the maximum

    void add(mono_nsec lateness, const moment &now);
};

struct sender_socket {
    ip_family family = ip_family::none;
    std::uint16_t wanted_port = 0;
    std::string device;
    udp_socket socket;
    std::uint64_t opened_msec = 0;  // wall clock
    bool fresh = true;              // nobody waits for its packets yet

    // Whose packets left, by number, to tell whose time stamps come back.
    struct left_packet {
        std::uint32_t session;
        std::uint32_t sequence;
    };
    std::vector<left_packet> left;
    std::uint32_t next_number = 0;
};

class prober {
public:
    explicit prober(const clock_source_interface *clocks) : clocks_(clocks) {}

    // Makes the sessions what the configuration says; those that did not change go on. The error names the key files
    // that cannot be read; nothing has changed then.
    [[nodiscard]] pm_error apply(const config &settings, const host_state &host);
    // Interfaces, addresses or neighbours changed, or sockets are to be tried again.
    void host_changed(const host_state &host);
    // Withdraws every advertisement, as an operator asked for.
    void clear_advertisements();

    // Writes one line for each session into the log: its packets by what became of them.
    void log_statistics() const;

    // The earliest timer; none: nothing is due ever.
    [[nodiscard]] std::optional<mono_nsec> next() const { return timers_.next(); }
    // How long whoever waits for the next timer and for packets may sleep whatever comes: with thousands of packets a
    // second, those of a millisecond are handled together. What is measured does not change, as the kernel stamps
    // packets.
    [[nodiscard]] mono_nsec rest() const {
        constexpr double MANY_PACKETS = 1000;  // a second
        return budget_.interface.effective + budget_.endpoint.effective > MANY_PACKETS ? NSEC_PER_MSEC : 0;
    }
    // Sends what is due, a limited number of packets.
    void run_due();
    // Reads what arrived at a socket.
    void receive(std::size_t socket);
    // Forgets sessions that were removed long enough ago.
    void forget_removed();

    // Null where there is none; the index is not the session's number.
    [[nodiscard]] const std::vector<std::unique_ptr<session_entry>> &entries() const { return entries_; }
    // Changes with every session that comes or goes.
    [[nodiscard]] std::uint64_t table_revision() const { return table_revision_; }
    [[nodiscard]] std::vector<sender_socket> &sockets() { return sockets_; }
    [[nodiscard]] const std::vector<sender_socket> &sockets() const { return sockets_; }
    [[nodiscard]] const prober_counters &counters() const { return counters_; }
    [[nodiscard]] const timer_drift &drift() const { return drift_; }
    [[nodiscard]] const rate_budget &budget() const { return budget_; }
    [[nodiscard]] const host_state &host() const { return host_; }
    [[nodiscard]] std::uint32_t queue_high() const { return queue_high_; }

    // Called for each change of a session's liveness or advertisement, to log it.
    std::function<void(const std::string &)> log;

    static constexpr mono_nsec SHOW_REMOVED_FOR = 5 * NSEC_PER_SEC;

private:
    // What is worth a line in the log when it changes.
    struct change_watch {
        explicit change_watch(const session_entry &entry);
        bool is_up;
        std::uint64_t advertisements;
    };
    [[nodiscard]] std::vector<const session_plan *> keep_or_remove(const std::vector<session_plan> &plans,
                                                                   const moment &now);
    void keep(session_entry *entry, const session_plan &plan, const moment &now);
    [[nodiscard]] std::unique_ptr<session_entry> make(const session_plan &plan, const history_sizes &sizes,
                                                      std::optional<hmac_key> key);
    [[nodiscard]] std::uint32_t free_id();
    session_entry *insert(std::unique_ptr<session_entry> entry);
    void remove(session_entry *entry, const moment &now);
    void resolve_all(const moment &now);
    void resolve_one(session_entry *entry, const moment &now);
    [[nodiscard]] bool socket_for(const session_plan &plan, std::uint32_t *index);
    void index_peers();
    void schedule(session_entry *entry);
    void on_timer(session_entry *entry, const moment &now);
    void touched(session_entry *entry, const change_watch &before);

    void queue_packet(session_entry *entry, const moment &now);
    void flush();
    void take_packet(std::size_t socket, const received_packet &packet, const moment &now);
    void take_reply(session_entry *entry, const received_packet &packet, const moment &now);
    [[nodiscard]] session_entry *find(std::uint32_t id) const {
        return id < entries_.size() ? entries_[id].get() : nullptr;
    }
    [[nodiscard]] session_entry *find_by_ssid(std::size_t socket, const received_packet &packet, std::uint16_t ssid,
                                              packet_mode mode) const;
    [[nodiscard]] session_entry *find_without_ssid(std::size_t socket, const received_packet &packet,
                                                   const reflector_fields &fields) const;

    const clock_source_interface *clocks_;
    clock_quality clock_;
    std::uint16_t estimate_ = 0;
    std::vector<ip_prefix> allowed_;
    host_state host_;
    rate_budget budget_;
    std::vector<std::unique_ptr<session_entry>> entries_;  // by session number
    std::unordered_multimap<ip_address, std::uint32_t> peers_;
    std::uint64_t table_revision_ = 1;
    std::uint32_t last_id_ = 0;
    timer_queue timers_;
    std::vector<sender_socket> sockets_;
    prober_counters counters_;
    timer_drift drift_;
    std::uint32_t queue_high_ = 0;

    send_batch outgoing_;
    std::uint32_t outgoing_socket_ = 0;
    sender_socket::left_packet queued_[BATCH_PACKETS] = {};
    receive_batch received_;
    transmit_stamps stamps_;
};

}  // namespace probed
