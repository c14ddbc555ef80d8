// SPDX-License-Identifier: Apache-2.0
// The reflector beside a bare echo loop, and thousands of sessions: ratios and shares of one core, in one run.
//
//   probed_bench reflector          packets a second: reflector / bare recvmmsg-sendmmsg echo (at least 0.7)
//   probed_bench sessions COUNT     processor share of COUNT sessions at one packet a second each (at most 60 %), how
//                                   many of their packets are late (at most 1 % by 10 ms), memory of one (16 KB)
//   probed_bench publishing COUNT   processor share of publishing COUNT sessions (at most 10 %)
//
// Prints what it measures, and lines "target", what, most or least, the target and what was measured, with tabs between
// them. Exit status 1 when it cannot measure.
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <functional>
#include <memory>
#include <poll.h>
#include <sched.h>
#include <string>
#include <thread>
#include <vector>

#include "perf-probed/publish/publisher.h"
#include "perf-probed/reflector/reflector.h"
#include "perf-probed/service/prober.h"
#include "perf-probed/state/change_tracker.h"
#include "perf-probed/state/node_records.h"

namespace {

using namespace probed;

constexpr double SECONDS = 3;

void print_target(const char *what, const char *bound, double limit, double measured) {
    std::printf("target\tperf-probed: %s\t%s\t%g\t%.2f\n", what, bound, limit, measured);
}

double seconds_of(clockid_t clock) {
    std::timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void stay_on(unsigned core) {
    cpu_set_t cores;
    CPU_ZERO(&cores);
    CPU_SET(core % std::max(1U, std::thread::hardware_concurrency()), &cores);
    sched_setaffinity(0, sizeof cores, &cores);
}

ip_address loopback() {
    ip_address address;
    static_cast<void>(parse_address("127.0.0.1", &address));
    return address;
}

// Sends a batch of requests to a port, and takes the answers away.
class client {
public:
    client() : request_(BASE_SIZE) {
        static_cast<void>(socket_.open({loopback(), 0, "", false}));
        static_cast<void>(write_request(packet_mode::unauthenticated, {1, 1, 1, 1}, request_));
    }
    void ask(std::uint16_t port) {
        for (std::size_t index = 0; index < BATCH_PACKETS; ++index) {
            out_.add({request_, {loopback(), port, 0}, {}, 0, 0, 0});
        }
        out_.flush(socket_, [](std::size_t, int) {});
    }
    std::size_t answers() { return in_.receive(socket_, 0); }

private:
    udp_socket socket_;
    send_batch out_;
    receive_batch in_;
    std::vector<std::uint8_t> request_;
};

// The plainest server there can be: what comes in goes out as it is.
class bare_echo {
public:
    bare_echo() : messages_(BATCH_PACKETS), vectors_(BATCH_PACKETS), from_(BATCH_PACKETS), data_(BATCH_PACKETS * 2048) {
        for (std::size_t index = 0; index < BATCH_PACKETS; ++index) {
            vectors_[index] = {&data_[index * 2048], 2048};
            messages_[index].msg_hdr.msg_iov = &vectors_[index];
            messages_[index].msg_hdr.msg_iovlen = 1;
            messages_[index].msg_hdr.msg_name = &from_[index];
        }
    }
    // Returns how many packets were answered.
    std::size_t serve(int fd) {
        for (std::size_t index = 0; index < BATCH_PACKETS; ++index) {
            messages_[index].msg_hdr.msg_namelen = sizeof(sockaddr_storage);
            vectors_[index].iov_len = 2048;
        }
        const int count = recvmmsg(fd, messages_.data(), BATCH_PACKETS, MSG_DONTWAIT, nullptr);
        for (int index = 0; index < count; ++index) {
            vectors_[static_cast<std::size_t>(index)].iov_len = messages_[static_cast<std::size_t>(index)].msg_len;
        }
        return count > 0 ? static_cast<std::size_t>(
                               std::max(sendmmsg(fd, messages_.data(), static_cast<unsigned>(count), 0), 0))
                         : 0;
    }

private:
    std::vector<mmsghdr> messages_;
    std::vector<iovec> vectors_;
    std::vector<sockaddr_storage> from_;
    std::vector<char> data_;
};

// Packets a second that `serve` answers, by the processor time of serving alone: the requests are there before.
double rate_of(client *asking, std::uint16_t port, double seconds, const std::function<void()> &serve) {
    std::size_t packets = 0;
    double worked = 0;
    const double begin = seconds_of(CLOCK_MONOTONIC);
    while (seconds_of(CLOCK_MONOTONIC) - begin < seconds) {
        asking->ask(port);
        const double before = seconds_of(CLOCK_THREAD_CPUTIME_ID);
        serve();
        worked += seconds_of(CLOCK_THREAD_CPUTIME_ID) - before;
        packets += asking->answers();
    }
    return static_cast<double>(packets) / worked;
}

// A socket without any option, at a port of the system's choice.
int open_bare(std::uint16_t *port) {
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_storage address{};
    socklen_t length = to_system({loopback(), 0, 0}, &address);
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr *>(&address), length) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr *>(&address), &length) != 0) {
        std::perror("socket");
        std::exit(1);
    }
    *port = from_system(address).port;
    return fd;
}

int bench_reflector() {
    stay_on(0);
    udp_socket stamped;
    std::uint16_t bare_port = 0;
    const int bare = open_bare(&bare_port);
    if (stamped.open({loopback(), 0, "", false})) {
        return 1;
    }
    client asking;
    bare_echo echo;
    reflector responder;
    system_clocks clocks;
    double bare_rate = 0;
    double reflector_rate = 0;
    // Turn by turn, so that both see the same machine.
    constexpr int ROUNDS = 10;
    for (int round = 0; round < ROUNDS; ++round) {
        bare_rate += rate_of(&asking, bare_port, SECONDS / ROUNDS, [&] { echo.serve(bare); }) / ROUNDS;
        reflector_rate +=
            rate_of(&asking, stamped.port(), SECONDS / ROUNDS, [&] { responder.serve(stamped, {}, clocks); }) / ROUNDS;
    }
    const double ratio = reflector_rate / bare_rate;
    std::printf("reflector %.0f packets/s, bare echo %.0f packets/s, ratio %.2f\n", reflector_rate, bare_rate, ratio);
    print_target("reflector beside a bare echo loop", "least", 0.7, ratio);
    return 0;
}

config many_sessions(unsigned count, std::uint16_t port) {
    config settings;
    settings.packet_rate = 10'000'000;
    settings.histories = {0, 0, 0, 0};
    settings.endpoint_delay.tx_interval_usec = 1'000'000;
    for (unsigned index = 0; index < count; ++index) {
        endpoint_config &endpoint = settings.endpoints.emplace_back();
        endpoint.name = "endpoint-" + std::to_string(index);
        endpoint.address = loopback();
        endpoint.port = port;
        endpoint.delay = "";
    }
    return settings;
}

std::size_t resident_bytes() {
    std::ifstream in("/proc/self/statm");
    std::size_t all = 0;
    std::size_t resident = 0;
    in >> all >> resident;
    return resident * 4096;
}

// Runs sessions against a reflector on the other core; `each_second` is called beside them.
struct many_result {
    double share = 0;
    double late = 1;  // of the packets, by more than 10 ms
    double bytes = 0;
};
many_result run_sessions(unsigned count, const std::function<void(prober &, const config &)> &each_second) {
    udp_socket answering;
    static_cast<void>(answering.open({loopback(), 0, "", false}));
    std::atomic<bool> ended = false;
    std::thread responder_thread([&] {
        stay_on(1);
        reflector responder;
        system_clocks clocks;
        pollfd waited{answering.fd(), POLLIN, 0};
        while (!ended) {
            poll(&waited, 1, 10);
            responder.serve(answering, {}, clocks);
        }
    });
    stay_on(0);
    system_clocks clocks;
    const config settings = many_sessions(count, answering.port());
    auto sender = std::make_unique<prober>(&clocks);
    const std::size_t before = resident_bytes();
    static_cast<void>(sender->apply(settings, read_host_state()));
    many_result result;
    const double begin = seconds_of(CLOCK_MONOTONIC);
    const double worked = seconds_of(CLOCK_THREAD_CPUTIME_ID);
    double next = begin + 1;
    while (seconds_of(CLOCK_MONOTONIC) - begin < 2 * SECONDS) {
        pollfd waited{sender->sockets().front().socket.fd(), POLLIN, 0};
        const moment now = clocks.now();
        const std::timespec rest{0, sender->rest()};
        nanosleep(&rest, nullptr);
        const mono_nsec left = sender->next().value_or(now.mono) - now.mono - sender->rest();
        const std::timespec timeout{0, std::clamp<mono_nsec>(left, 0, NSEC_PER_MSEC)};
        ppoll(&waited, 1, &timeout, nullptr);
        sender->run_due();
        if (waited.revents != 0) {
            sender->receive(0);
        }
        if (seconds_of(CLOCK_MONOTONIC) >= next) {
            next += 1;
            each_second(*sender, settings);
        }
    }
    result.share = (seconds_of(CLOCK_THREAD_CPUTIME_ID) - worked) / (seconds_of(CLOCK_MONOTONIC) - begin);
    result.bytes = static_cast<double>(resident_bytes() - before) / count;
    const timer_drift &drift = sender->drift();
    std::printf(
        "%u sessions: %.1f %% of a core, %llu packets, %llu answered, %.2f %% later than 10 ms, worst %.2f ms, "
        "%.0f bytes a session\n",
        count, result.share * 100, static_cast<unsigned long long>(drift.packets),
        static_cast<unsigned long long>(sender->counters().received[0]),
        drift.packets == 0 ? 0.0 : static_cast<double>(drift.above_10_msec) * 100 / static_cast<double>(drift.packets),
        static_cast<double>(drift.maximum) / 1e6, result.bytes);
    if (drift.packets != 0) {
        result.late = static_cast<double>(drift.above_10_msec) / static_cast<double>(drift.packets);
    }
    ended = true;
    responder_thread.join();
    return result;
}

int bench_sessions(unsigned count) {
    const many_result result = run_sessions(count, [](prober &, const config &) {});
    print_target("sessions, % of a core", "most", 60, result.share * 100);
    print_target("packets later than 10 ms, %", "most", 1, std::max(result.late * 100, 0.01));  // none is no 0
    print_target("memory of a session, KB", "most", 16, result.bytes / 1024);
    return 0;
}

// As the service does it: a snapshot when the last one is written, and twelve times its cost later.
int bench_publishing(unsigned count) {
    const std::string folder = "/tmp/probed-bench-" + std::to_string(getpid());
    const reflector responder;
    const std::vector<open_listener> listeners;
    const process_history process;
    change_tracker tracker;
    double building = 0;
    double next = 0;
    std::uint64_t snapshots = 0;
    publisher writing("lmdb:" + folder);
    std::int64_t writing_cost = 0;
    std::uint64_t counted = 0;
    const many_result result = run_sessions(count, [&](prober &sender, const config &settings) {
        const publishing_report report = writing.report();
        if (report.transactions != counted) {
            counted = report.transactions;
            writing_cost += report.last_cost_nsec;
        }
        if (!writing.idle() || seconds_of(CLOCK_MONOTONIC) < next) {
            return;
        }
        const double before = seconds_of(CLOCK_THREAD_CPUTIME_ID);
        auto out = std::make_unique<snapshot>();
        out->node = 1;
        out->is_everything = snapshots == 0;
        system_clocks clocks;
        const moment now = clocks.now();
        while (!tracker.collect(sender, now, out.get())) {
        }
        const node_view view{settings, sender, responder, listeners, process};
        add_summary(view, out.get());
        if (snapshots == 0) {
            add_profiles(view, out.get());
        }
        writing.publish(std::move(out));
        const double built = seconds_of(CLOCK_THREAD_CPUTIME_ID) - before;
        building += built;
        next = seconds_of(CLOCK_MONOTONIC) + (built + static_cast<double>(report.last_cost_nsec) / 1e9) * 12;
        ++snapshots;
    });
    static_cast<void>(result);
    const publishing_report report = writing.report();
    if (report.transactions != counted) {
        writing_cost += report.last_cost_nsec;
    }
    const double share = (building + static_cast<double>(writing_cost) / 1e9) / (2 * SECONDS);
    std::printf(
        "publishing: %llu snapshots of %llu items in all, built in %.0f ms and written in %.0f ms: %.1f %% of a core\n",
        static_cast<unsigned long long>(snapshots), static_cast<unsigned long long>(report.items), building * 1e3,
        static_cast<double>(writing_cost) / 1e6, share * 100);
    static_cast<void>(std::system(("rm -rf " + folder).c_str()));
    print_target("publishing, % of a core", "most", 10, share * 100);
    return 0;
}

}  // namespace

int main(int argc, char **argv) {
    const std::string what = argc > 1 ? argv[1] : "";
    const unsigned count = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 10'000;
    if (what == "reflector") {
        return bench_reflector();
    }
    if (what == "sessions") {
        return bench_sessions(count);
    }
    if (what == "publishing") {
        return bench_publishing(count);
    }
    std::fputs("usage: probed_bench reflector | sessions COUNT | publishing COUNT\n", stderr);
    return 2;
}
