// SPDX-License-Identifier: Apache-2.0
// Start, loop and end of the service.
#include "perf-probed/daemon/daemon.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <sys/signalfd.h>
#include <unistd.h>

#include "platform/local/store/store_url.h"

namespace probed {
namespace {

constexpr int LOG_ERROR = 3;  // priorities of syslog, which the journal reads at the start of a line
constexpr int LOG_NOTICE = 5;
constexpr int LOG_INFORMATION = 6;

// Numbers of pm_utils/process_names.cc.
constexpr std::uint16_t EVENT_INIT = 0;
constexpr std::uint16_t EVENT_ROLE = 1;
constexpr std::uint16_t EVENT_WAIT = 5;
constexpr std::uint16_t EVENT_CONNECTED = 6;
constexpr std::uint16_t EVENT_DISCONNECTED = 7;
constexpr std::uint16_t EVENT_RUN = 10;
constexpr std::uint16_t NOBODY = 0;

// Whom the process works with, and their numbers there.
enum collaborator_index : std::size_t { interfaces_index, ipv4_index, ipv6_index, store_index };
constexpr std::uint16_t COLLABORATOR_NUMBERS[] = {1, 2, 3, 4};
constexpr const char *COLLABORATOR_NAMES[] = {"IM", "UDP V4 SOCKET", "UDP V6 SOCKET", "OPSTORE"};
constexpr std::size_t MOST_EVENTS = 50;

// A little over a second, so that publishing does not keep step with computations of whole seconds.
constexpr mono_nsec PUBLISH_INTERVAL = 1037 * NSEC_PER_MSEC;
constexpr std::int64_t PUBLISHING_PART = 12;  // of the time, at most one part in so many is spent on publishing
constexpr mono_nsec RETRY_INTERVAL = 5 * NSEC_PER_SEC;      // of a store that failed, and of sockets
constexpr mono_nsec HOST_READ_INTERVAL = NSEC_PER_SEC / 2;  // interfaces that change all the time

std::int64_t thread_time() {
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return time.tv_sec * NSEC_PER_SEC + time.tv_nsec;
}

std::string host_name() {
    char name[256] = "";
    gethostname(name, sizeof name - 1);
    return name;
}

}  // namespace

daemon::daemon(std::string path, config settings)
    : path_(std::move(path)), settings_(std::move(settings)), sender_(&clocks_) {
    for (std::size_t index = 0; index < std::size(COLLABORATOR_NAMES); ++index) {
        process_.collaborators.push_back({COLLABORATOR_NAMES[index], false, 0});
    }
    sender_.log = [this](const std::string &text) { log(LOG_NOTICE, text); };
}

daemon::~daemon() {
    if (signals_ >= 0) {
        close(signals_);
    }
}

void daemon::log(int priority, const std::string &text) const {
    // The journal says that it reads; a person, or a file, has no use for the number.
    if (std::getenv("JOURNAL_STREAM") != nullptr) {
        std::fprintf(stderr, "<%d>", priority);
    }
    std::fprintf(stderr, "perf-probed: %s\n", text.c_str());
}

pm_error daemon::run() {
    if (pm_error error = start()) {
        return error;
    }
    notify_manager("READY=1");
    loop();
    end();
    return {};
}

pm_error daemon::start() {
    const mono_nsec now = clocks_.now().mono;
    process_.entered[0] = now;
    enter(process_state::init, EVENT_INIT);
    sigset_t mask;
    sigemptyset(&mask);
    for (const int number : {SIGTERM, SIGINT, SIGHUP, SIGUSR1, SIGUSR2}) {
        sigaddset(&mask, number);
    }
    sigprocmask(SIG_BLOCK, &mask, nullptr);
    signals_ = signalfd(-1, &mask, SFD_CLOEXEC | SFD_NONBLOCK);
    loop_.watch(signals_, [this] { take_signals(); });
    enter(process_state::role_init, EVENT_ROLE);
    publisher_ = std::make_unique<publisher>(settings_.store.empty() ? store::configured_url() : settings_.store);
    const std::string name = settings_.node.name.empty() ? host_name() : settings_.node.name;
    if (const pm_error error = publisher_->announce(settings_.node.id, name)) {
        last_store_error_ = error.text();
        log(LOG_ERROR, "the store cannot be written: " + error.text());
    }
    enter(process_state::wait_for_others, EVENT_WAIT);
    if (watch_.fd() >= 0) {
        loop_.watch(watch_.fd(), [this] {
            watch_.drain();
            host_is_stale_ = true;
        });
    }
    connect(interfaces_index, watch_.fd() >= 0, COLLABORATOR_NUMBERS[interfaces_index]);
    if (pm_error error = apply(settings_)) {
        return error;
    }
    enter(process_state::run, EVENT_RUN);
    next_second_ = now + NSEC_PER_SEC;
    next_publication_ = now;
    return {};
}

void daemon::loop() {
    while (!ending_) {
        moment now = clocks_.now();
        if (host_is_stale_ && now.mono - host_read_at_ >= HOST_READ_INTERVAL) {
            host_changed();
        }
        if (now.mono >= next_second_) {
            every_second(now);
        }
        if (building_ != nullptr) {
            continue_snapshot(now);
        } else if (now.mono >= next_publication_) {
            publish(now);
        }
        sender_.run_due();
        mono_nsec until = std::min(next_second_, std::max(next_publication_, now.mono + NSEC_PER_MSEC));
        until = building_ != nullptr ? now.mono : std::min(until, sender_.next().value_or(until));
        loop_.wait(until, clocks_.now().mono, building_ != nullptr ? 0 : sender_.rest());
    }
}

void daemon::end() {
    notify_manager("STOPPING=1");
    if (const pm_error error = publisher_->retire(settings_.node.id)) {
        log(LOG_ERROR, "the end cannot be written into the store: " + error.text());
    }
}

void daemon::take_signals() {
    signalfd_siginfo signal{};
    while (read(signals_, &signal, sizeof signal) == static_cast<ssize_t>(sizeof signal)) {
        switch (signal.ssi_signo) {
        case SIGHUP: reload(); break;
        case SIGUSR1: sender_.clear_advertisements(); break;
        case SIGUSR2: sender_.log_statistics(); break;
        default: ending_ = true;
        }
    }
}

void daemon::reload() {
    notify_manager("RELOADING=1\nMONOTONIC_USEC=" + std::to_string(clocks_.now().mono / NSEC_PER_USEC));
    config settings;
    const config_report report = load_config(path_, &settings);
    for (const std::string &text : report.errors) {
        log(LOG_ERROR, text);
    }
    for (const std::string &text : report.warnings) {
        log(LOG_NOTICE, text);
    }
    if (!report.ok()) {
        log(LOG_ERROR, "the configuration stays as it was");
    } else if (settings.node.id != settings_.node.id || settings.store != settings_.store) {
        log(LOG_ERROR, "another node or store needs a restart; the configuration stays as it was");
    } else if (const pm_error error = apply(settings)) {
        log(LOG_ERROR, error.text() + "; the configuration stays as it was");
        if (const pm_error left = apply(config(settings_))) {
            log(LOG_ERROR, left.text());
        }
    } else {
        log(LOG_INFORMATION, "the configuration was read again");
    }
    notify_manager("READY=1");
}

pm_error daemon::apply(const config &settings) {
    const host_state host = read_host_state();
    const auto note = [this](const std::string &text) { log(LOG_NOTICE, text); };
    if (pm_error error = listeners_.apply(settings.reflector, settings.clock, note)) {
        return error;
    }
    responder_.allow(settings.reflector.allowed_queriers);
    if (pm_error error = sender_.apply(settings, host)) {
        return error;
    }
    settings_ = settings;
    settings_changed_ = true;
    host_read_at_ = clocks_.now().mono;
    watch_senders();
    return {};
}

void daemon::watch_senders() {
    bool open[2] = {};
    std::vector<sender_socket> &sockets = sender_.sockets();
    for (std::size_t index = 0; index < sockets.size(); ++index) {
        sender_socket &each = sockets[index];
        open[each.family == ip_family::ipv6] |= each.socket.is_open();
        if (each.socket.is_open() && each.fresh) {
            each.fresh = false;
            loop_.watch(each.socket.fd(), [this, index] { sender_.receive(index); });
        }
    }
    connect(ipv4_index, open[0], COLLABORATOR_NUMBERS[ipv4_index]);
    connect(ipv6_index, open[1], COLLABORATOR_NUMBERS[ipv6_index]);
}

void daemon::host_changed() {
    host_is_stale_ = false;
    host_read_at_ = clocks_.now().mono;
    sender_.host_changed(read_host_state());
    watch_senders();
}

void daemon::every_second(const moment &now) {
    next_second_ = std::max(next_second_ + NSEC_PER_SEC, now.mono + NSEC_PER_SEC / 2);
    responder_.tick(now.mono);
    if (watchdog_ != 0 && now.mono >= next_sign_of_life_) {
        notify_manager("WATCHDOG=1");
        next_sign_of_life_ = now.mono + watchdog_ / 3;
    }
    sender_.forget_removed();
    if (now.mono - host_read_at_ >= RETRY_INTERVAL) {  // ports that were taken may be free again
        host_is_stale_ = true;
    }
}

void daemon::enter(process_state state, std::uint16_t event) {
    const mono_nsec now = clocks_.now().mono;
    process_.events.push_back(
        {static_cast<std::uint8_t>(process_.state), static_cast<std::uint8_t>(state), event, NOBODY, now});
    process_.state = state;
    process_.entered[static_cast<std::size_t>(state)] = now;
}

void daemon::connect(std::size_t collaborator, bool connected, std::uint16_t number) {
    probed::collaborator &whom = process_.collaborators[collaborator];
    if (whom.connected == connected) {
        return;
    }
    const mono_nsec now = clocks_.now().mono;
    const auto state = static_cast<std::uint8_t>(process_.state);
    whom.connected = connected;
    whom.changed = now;
    process_.events.push_back({state, state, connected ? EVENT_CONNECTED : EVENT_DISCONNECTED, number, now});
    if (process_.events.size() > MOST_EVENTS) {
        process_.events.erase(process_.events.begin());
    }
}

void daemon::note_report(const publishing_report &report) {
    if (sessions_are_out_) {
        sessions_are_out_ = false;
        sessions_cost_ += report.last_cost_nsec;
        next_sessions_ = last_publication_ + std::max(PUBLISH_INTERVAL, sessions_cost_ * PUBLISHING_PART);
    }
    if (report.transactions + report.failures == 0) {
        return;
    }
    connect(store_index, report.error.empty(), COLLABORATOR_NUMBERS[store_index]);
    if (report.error != last_store_error_) {
        last_store_error_ = report.error;
        log(report.error.empty() ? LOG_NOTICE : LOG_ERROR,
            report.error.empty() ? "the store is written again" : "the store cannot be written: " + report.error);
    }
}

void daemon::publish(const moment &now) {
    if (!publisher_->idle()) {
        next_publication_ = now.mono + NSEC_PER_SEC / 20;
        return;
    }
    note_report(publisher_->report());
    if (last_publication_ != 0 && now.mono - last_publication_ < PUBLISH_INTERVAL) {
        next_publication_ = last_publication_ + PUBLISH_INTERVAL;
        return;
    }
    next_publication_ = now.mono + PUBLISH_INTERVAL;
    last_publication_ = now.mono;
    const bool everything = publisher_->needs_everything();
    building_ = std::make_unique<snapshot>();
    building_->node = settings_.node.id;
    if (everything) {
        tracker_.forget();
        building_->is_everything = true;
        building_->node_name = settings_.node.name.empty() ? host_name() : settings_.node.name;
    }
    sessions_are_due_ = everything || now.mono >= next_sessions_;
    sessions_are_out_ = sessions_are_due_;
    sessions_cost_ = sessions_are_due_ ? 0 : sessions_cost_;
    continue_snapshot(now);
}

// Adds some of the sessions that are due; the last ones, and what is not about sessions, go into the store.
void daemon::continue_snapshot(const moment &now) {
    if (sessions_are_due_) {
        const std::int64_t before = thread_time();
        sessions_are_due_ = !tracker_.collect(sender_, now, building_.get());
        sessions_cost_ += thread_time() - before;
    }
    if (!sessions_are_due_) {
        hand_in(now);
    }
}

void daemon::hand_in(const moment &now) {
    const node_view view{settings_, sender_, responder_, listeners_.open(), process_};
    fill_node_items(view, now, building_->is_everything || settings_changed_, building_.get());
    settings_changed_ = false;
    publisher_->publish(std::move(building_));
}

void daemon::fill_node_items(const node_view &view, const moment &now, bool everything, snapshot *out) {
    add_summary(view, out);
    add_process(view, now, out);
    add_receive_path(view, out);
    add_responder(view, now, out);
    add_capability(view, out);
    if (everything) {
        add_packet_rates(view, out);
        add_profiles(view, out);
        add_prefixes(view, out);
        for (const host_interface &each : sender_.host().interfaces) {
            out->interfaces.push_back({each.index, each.name});
        }
    }
}

}  // namespace probed
