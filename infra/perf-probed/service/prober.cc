// SPDX-License-Identifier: Apache-2.0
// The table of sessions: made, kept, removed, and resolved against the host.
#include "perf-probed/service/prober.h"

#include <algorithm>

#include "perf-probed/session/delay_session.h"
#include "perf-probed/session/liveness_session.h"
#include "perf-probed/session/loss_session.h"
#include "perf-probed/session/probe_session.h"
#include "pm_utils/advert_reason.h"

namespace probed {
namespace {

constexpr std::size_t LEFT_PACKETS = 4096;
constexpr int MOST_SENDS = 512;  // before what arrived is looked at
constexpr std::uint64_t DRIFT_MUCH = 10 * NSEC_PER_MSEC;

delay_session *as_delay(const session_entry &entry) {
    return entry.plan.kind == session_kind::delay ? static_cast<delay_session *>(entry.run.get()) : nullptr;
}

loss_session *as_loss(const session_entry &entry) {
    return entry.plan.kind == session_kind::loss ? static_cast<loss_session *>(entry.run.get()) : nullptr;
}

// Null for a session that advertises nothing.
const advertiser *advertiser_of(const session_entry &entry) {
    return as_delay(entry) != nullptr  ? &as_delay(entry)->advertiser()
           : as_loss(entry) != nullptr ? &as_loss(entry)->advertiser()
                                       : nullptr;
}

void withdraw(const session_entry &entry, pm_advert_reason_e reason, const moment &now) {
    if (delay_session *const delay = as_delay(entry)) {
        delay->withdraw(reason, now);
    } else if (loss_session *const loss = as_loss(entry)) {
        loss->withdraw(reason, now);
    }
}

liveness_session *as_liveness(const session_entry &entry) {
    return entry.plan.kind == session_kind::liveness ? static_cast<liveness_session *>(entry.run.get()) : nullptr;
}

// Sessions begin at different moments of their interval, so that their packets do not all leave together. The golden
// ratio spreads any number of them evenly.
mono_nsec first_delay(std::uint32_t id, std::uint32_t tx_interval_usec) {
    const std::uint64_t part = (std::uint64_t{id} * 0x9E3779B9U) & 0xFFFFFFFFU;
    return static_cast<mono_nsec>((part * tx_interval_usec >> 32) * NSEC_PER_USEC);
}

void set_static_delay(session_entry *entry, const moment &now) {
    if (delay_session *const delay = as_delay(*entry)) {
        delay->set_static_delay(entry->plan.of_interface() ? entry->plan.interface->static_delay_usec
                                                           : entry->plan.endpoint->static_delay_usec,
                                now);
    }
}

std::string full_name(const session_plan &plan) {
    return (plan.of_interface() ? "interface " : "endpoint ") + plan.name();
}

pm_error read_keys(const std::vector<session_plan> &plans, std::unordered_map<std::string, hmac_key> *keys) {
    for (const session_plan &plan : plans) {
        std::string key;
        if (plan.key_file().empty() || keys->contains(plan.key_file())) {
            continue;
        }
        if (!read_key(plan.key_file(), &key)) {
            return pm_error("no key can be read from " + plan.key_file());
        }
        keys->emplace(plan.key_file(), hmac_key(key));
    }
    return {};
}

}  // namespace

prober::change_watch::change_watch(const session_entry &entry)
    : is_up(as_liveness(entry) != nullptr && as_liveness(entry)->is_up()),
      advertisements(advertiser_of(entry) != nullptr ? advertiser_of(entry)->advertisements() : 0) {}

void timer_drift::add(mono_nsec lateness, const moment &now) {
    ++packets;
    sum += lateness;
    above_10_msec += lateness > static_cast<mono_nsec>(DRIFT_MUCH) ? 1 : 0;
    if (lateness > maximum) {
        maximum = lateness;
        maximum_msec = now.wall_msec();
    }
}

pm_error prober::apply(const config &settings, const host_state &host) {
    const moment now = clocks_->now();
    rate_budget budget;
    const std::vector<session_plan> plans = plan_sessions(settings, &budget);
    std::unordered_map<std::string, hmac_key> keys;
    if (pm_error error = read_keys(plans, &keys)) {
        return error;
    }
    clock_ = settings.clock;
    estimate_ = clock_.estimate_bits();
    allowed_ = settings.allowed_responders;
    budget_ = budget;
    host_ = host;
    const std::vector<const session_plan *> added = keep_or_remove(plans, now);
    for (const auto &entry : entries_) {
        if (entry == nullptr || entry->removed_at) {
            continue;
        }
        entry->run->resize_histories(settings.histories);
        if (!entry->plan.key_file().empty()) {
            entry->key = keys.at(entry->plan.key_file());
        }
    }
    for (const session_plan *const plan : added) {
        const auto key = keys.find(plan->key_file());
        session_entry *const entry =
            insert(make(*plan, settings.histories, key == keys.end() ? std::nullopt : std::optional(key->second)));
        set_static_delay(entry, now);
    }
    ++table_revision_;
    index_peers();
    resolve_all(now);
    return {};
}

// Returns the plans that are new.
std::vector<const session_plan *> prober::keep_or_remove(const std::vector<session_plan> &plans, const moment &now) {
    std::unordered_map<std::string, std::vector<session_entry *>> by_name;
    for (const auto &entry : entries_) {
        if (entry != nullptr && !entry->removed_at) {
            by_name[entry->plan.name()].push_back(entry.get());
        }
    }
    std::vector<const session_plan *> added;
    for (const session_plan &plan : plans) {
        std::vector<session_entry *> &named = by_name[plan.name()];
        const auto kept =
            std::ranges::find_if(named, [&plan](const session_entry *entry) { return entry->plan.same_session(plan); });
        if (kept == named.end()) {
            added.push_back(&plan);
        } else {
            keep(*kept, plan, now);
            named.erase(kept);
        }
    }
    for (const auto &[name, left] : by_name) {
        for (session_entry *const entry : left) {
            remove(entry, now);
        }
    }
    return added;
}

void prober::keep(session_entry *entry, const session_plan &plan, const moment &now) {
    entry->plan = plan;
    ++entry->revision;
    switch (plan.kind) {
    case session_kind::delay: as_delay(*entry)->reconfigure(plan.delay, plan.tx_interval_usec, now); break;
    case session_kind::loss: as_loss(*entry)->reconfigure(plan.loss, plan.tx_interval_usec, now); break;
    case session_kind::liveness: as_liveness(*entry)->reconfigure(plan.liveness, plan.tx_interval_usec, now); break;
    case session_kind::probe:
        static_cast<probe_session *>(entry->run.get())->reconfigure(plan.probe, plan.tx_interval_usec, now);
        break;
    }
    set_static_delay(entry, now);
}

std::unique_ptr<session_entry> prober::make(const session_plan &plan, const history_sizes &sizes,
                                            std::optional<hmac_key> key) {
    auto entry = std::make_unique<session_entry>();
    entry->plan = plan;
    entry->key = std::move(key);
    const std::uint32_t id = free_id();
    switch (plan.kind) {
    case session_kind::delay:
        entry->run = std::make_unique<delay_session>(id, plan.delay, plan.tx_interval_usec, sizes);
        break;
    case session_kind::loss:
        entry->run = std::make_unique<loss_session>(id, plan.loss, plan.tx_interval_usec, sizes);
        break;
    case session_kind::liveness:
        entry->run = std::make_unique<liveness_session>(id, plan.liveness, plan.tx_interval_usec, sizes);
        break;
    case session_kind::probe:
        entry->run = std::make_unique<probe_session>(id, plan.probe, plan.tx_interval_usec);
        break;
    }
    return entry;
}

// Numbers of sessions that went are used again only when there are no others: an answer to the old one may be on its
// way.
std::uint32_t prober::free_id() {
    constexpr std::uint32_t MOST = 0xFFFF;
    for (std::uint32_t tries = 0; tries < MOST; ++tries) {
        last_id_ = last_id_ % MOST + 1;
        if (find(last_id_) == nullptr) {
            break;
        }
    }
    return last_id_;
}

session_entry *prober::insert(std::unique_ptr<session_entry> entry) {
    const std::uint32_t id = entry->id();
    if (id >= entries_.size()) {
        entries_.resize(id + std::size_t{1});
    }
    entries_[id] = std::move(entry);
    return entries_[id].get();
}

void prober::remove(session_entry *entry, const moment &now) {
    withdraw(*entry, PM_ADVERT_REASON_SESSION_DELETED, now);
    entry->run->set_reason(PM_NOT_RUNNING_UNKNOWN, now);
    entry->removed_at = now.mono;
    ++entry->revision;
    timers_.cancel(entry->id());
}

void prober::forget_removed() {
    const mono_nsec now = clocks_->now().mono;
    for (auto &entry : entries_) {
        if (entry != nullptr && entry->removed_at && now - *entry->removed_at >= SHOW_REMOVED_FOR) {
            entry.reset();
            ++table_revision_;
        }
    }
}

void prober::host_changed(const host_state &host) {
    host_ = host;
    resolve_all(clocks_->now());
}

void prober::resolve_all(const moment &now) {
    for (const auto &entry : entries_) {
        if (entry != nullptr && !entry->removed_at) {
            resolve_one(entry.get(), now);
        }
    }
}

void prober::resolve_one(session_entry *entry, const moment &now) {
    const change_watch before(*entry);
    const session_plan &plan = entry->plan;
    const pm_delay_mode_e mode = plan.kind == session_kind::delay ? plan.delay.mode : PM_DELAY_MODE_TWO_WAY;
    resolved from = plan.of_interface() ? resolve(*plan.interface, plan.has_profile, mode, host_)
                                        : resolve(*plan.endpoint, plan.has_profile, mode, host_);
    if (from.reason == PM_NOT_RUNNING_NONE && !socket_for(plan, &entry->socket)) {
        from.reason = PM_NOT_RUNNING_SRC_PORT_FAILED;
    }
    entry->source_port = from.reason == PM_NOT_RUNNING_NONE ? sockets_[entry->socket].socket.port() : std::uint16_t{0};
    const host_neighbour *const neighbour =
        plan.of_interface() ? host_.find_neighbour(from.interface, plan.address()) : nullptr;
    const bool failed = neighbour != nullptr && neighbour->failed;
    if (from.reason != entry->run->not_running_reason() || failed != entry->next_hop_failed) {
        ++entry->revision;
    }
    entry->from = from;
    entry->next_hop_failed = failed;
    entry->run->set_reason(from.reason, now, first_delay(entry->id(), plan.tx_interval_usec));
    touched(entry, before);
    schedule(entry);
}

bool prober::socket_for(const session_plan &plan, std::uint32_t *index) {
    const ip_family family = plan.address().family;
    const std::uint16_t port = plan.of_interface() ? std::uint16_t{0} : plan.endpoint->source_port;
    const std::string device = plan.of_interface() ? std::string() : plan.endpoint->vrf;
    const auto found = std::ranges::find_if(sockets_, [&](const sender_socket &each) {
        return each.family == family && each.wanted_port == port && each.device == device;
    });
    *index = static_cast<std::uint32_t>(found - sockets_.begin());
    if (found != sockets_.end() && found->socket.is_open()) {
        return true;
    }
    sender_socket &each = found != sockets_.end() ? *found : sockets_.emplace_back();
    each.family = family;
    each.wanted_port = port;
    each.device = device;
    each.left.resize(LEFT_PACKETS);
    ip_address any;
    any.family = family;
    if (each.socket.open({any, port, device, true})) {
        return false;
    }
    each.fresh = true;
    each.next_number = 0;
    each.opened_msec = clocks_->now().wall_msec();
    return true;
}

void prober::index_peers() {
    peers_.clear();
    for (const auto &entry : entries_) {
        if (entry != nullptr && !entry->removed_at) {
            peers_.emplace(entry->plan.address(), entry->id());
        }
    }
}

void prober::clear_advertisements() {
    const moment now = clocks_->now();
    for (const auto &entry : entries_) {
        if (entry == nullptr || entry->removed_at) {
            continue;
        }
        const change_watch before(*entry);
        withdraw(*entry, PM_ADVERT_REASON_EXEC_CLEAR, now);
        touched(entry.get(), before);
    }
}

void prober::log_statistics() const {
    for (const auto &entry : entries_) {
        if (entry == nullptr || !log) {
            continue;
        }
        const session_counters &counters = entry->run->counters();
        std::uint64_t failed = 0;
        for (const std::uint64_t errors : counters.send_errors) {
            failed += errors;
        }
        log("session " + std::to_string(entry->id()) + " of " + full_name(entry->plan) + ": " +
            std::to_string(counters.sent) + " sent, " + std::to_string(failed) + " not sent, " +
            std::to_string(counters.received) + " answered, " + std::to_string(counters.lost) + " lost, " +
            std::to_string(counters.late) + " late, " + std::to_string(counters.duplicate) + " duplicate, " +
            std::to_string(counters.reordered) + " reordered, " + std::to_string(counters.unknown) + " unknown, " +
            std::to_string(counters.kernel_stamped) + " with the kernel's time stamps");
    }
}

void prober::schedule(session_entry *entry) {
    const mono_nsec deadline = entry->run->deadline();
    if (deadline == NEVER) {
        timers_.cancel(entry->id());
    } else {
        timers_.set(entry->id(), deadline);
    }
}

void prober::run_due() {
    const moment now = clocks_->now();
    for (int sends = 0; sends < MOST_SENDS; ++sends) {
        const std::optional<timer_queue::owner> who = timers_.take_due(now.mono);
        if (!who) {
            break;
        }
        on_timer(find(*who), now);
    }
    flush();
}

void prober::on_timer(session_entry *entry, const moment &now) {
    const change_watch before(*entry);
    if (entry->run->on_timer(now)) {
        const moment sending = clocks_->now();
        drift_.add(entry->run->lateness() + (sending.mono - now.mono), sending);
        queue_packet(entry, sending);
    }
    touched(entry, before);
    schedule(entry);
}

void prober::touched(session_entry *entry, const change_watch &before) {
    ++entry->revision;
    const change_watch after(*entry);
    if (after.is_up != before.is_up && log && entry->plan.liveness.log_state_change) {
        log(full_name(entry->plan) + ": liveness session is " + (after.is_up ? "up" : "down"));
    }
    if (after.advertisements != before.advertisements && log && as_delay(*entry) != nullptr &&
        entry->plan.delay.advertisement.log_exceeded) {
        const advertisement &last = as_delay(*entry)->advertiser().last();
        log(full_name(entry->plan) + ": " + pm_advert_reason_str(last.reason) + ", average " +
            std::to_string(last.values.average) + " us, minimum " + std::to_string(last.values.minimum) +
            " us, maximum " + std::to_string(last.values.maximum) + " us");
    }
}

}  // namespace probed
