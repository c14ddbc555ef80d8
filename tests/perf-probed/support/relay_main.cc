// SPDX-License-Identifier: Apache-2.0
// A relay between a session-sender and a session-reflector, for tests: it holds requests for a while, and loses,
// duplicates and delays some of them, by their number.
//
//   relay LISTEN-ADDRESS PORT REFLECTOR-ADDRESS PORT HOLD-USEC LOSE-EVERY DUPLICATE-EVERY LATER-EVERY LATER-USEC
//
// Of each N packets the last is lost, answered twice, or held for LATER-USEC more; 0: none is. At SIGTERM it prints how
// many it forwarded, lost, answered twice and held longer, and the nanoseconds that it added on average to those of the
// first hundred packets that were answered: between the kernel's stamp of what it received and the moment when it
// passed it on, both ways.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <poll.h>
#include <vector>

#include "perf-probed/net/packet_batch.h"
#include "perf-probed/packet/byte_order.h"
#include "perf-probed/schedule/clocks.h"

namespace {

using namespace probed;

volatile std::sig_atomic_t ended = 0;

struct held_packet {
    std::vector<std::uint8_t> data;
    wall_nsec received;
};

struct settings {
    std::int64_t hold, later;
    std::uint32_t lose, duplicate, delay;
};

constexpr std::uint32_t MEASURED = 100;

struct totals {
    std::uint64_t forwarded = 0, lost = 0, duplicated = 0, delayed = 0;
    std::int64_t added[MEASURED] = {};
    bool answered[MEASURED] = {};
};

bool is_one(std::uint32_t number, std::uint32_t every) { return every != 0 && number % every == every - 1; }

class relay {
public:
    relay(udp_socket *client_side, udp_socket *reflector_side, udp_endpoint reflector, settings wanted)
        : client_side_(client_side), reflector_side_(reflector_side), reflector_(reflector), wanted_(wanted) {}

    void run() {
        while (ended == 0) {
            const wall_nsec now = clocks_.now().wall;
            pass_on(now);
            const std::int64_t left = held_.empty() ? NSEC_PER_SEC / 10 : held_.begin()->first - now;
            pollfd sockets[] = {{client_side_->fd(), POLLIN, 0}, {reflector_side_->fd(), POLLIN, 0}};
            // The last 200 microseconds are waited for by looking at the clock.
            poll(sockets, 2, static_cast<int>(std::max<std::int64_t>(left - 200'000, 0) / NSEC_PER_MSEC));
            take_requests();
            take_answers();
        }
    }
    [[nodiscard]] const totals &result() const { return totals_; }

private:
    void send(udp_socket *socket, const udp_endpoint &to, std::span<const std::uint8_t> data) {
        outgoing_.add({data, to, {}, 0, 0, 0});
        outgoing_.flush(*socket, [](std::size_t, int) {});
    }
    void take_requests() {
        const std::size_t count = batch_.receive(*client_side_, clocks_.now().wall);
        for (std::size_t index = 0; index < count; ++index) {
            const received_packet &packet = batch_[index];
            client_ = packet.from;
            const std::uint32_t number = get_u32(packet.data.data());
            if (is_one(number, wanted_.lose)) {
                ++totals_.lost;
                continue;
            }
            const bool later = is_one(number, wanted_.delay);
            totals_.delayed += later ? 1 : 0;
            ++totals_.forwarded;
            held_.emplace(packet.time + wanted_.hold + (later ? wanted_.later : 0),
                          held_packet{{packet.data.begin(), packet.data.end()}, packet.time});
        }
    }
    void pass_on(wall_nsec now) {
        while (!held_.empty() && held_.begin()->first <= now) {
            const held_packet &packet = held_.begin()->second;
            if (const std::uint32_t number = get_u32(packet.data.data()); number < MEASURED) {
                totals_.added[number] += clocks_.now().wall - packet.received;
            }
            send(reflector_side_, reflector_, packet.data);
            held_.erase(held_.begin());
        }
    }
    void take_answers() {
        const std::size_t count = batch_.receive(*reflector_side_, clocks_.now().wall);
        for (std::size_t index = 0; index < count; ++index) {
            const received_packet &packet = batch_[index];
            const bool twice = is_one(get_u32(packet.data.data()), wanted_.duplicate);
            if (const std::uint32_t number = get_u32(packet.data.data()); number < MEASURED) {
                totals_.added[number] += clocks_.now().wall - packet.time;
                totals_.answered[number] = true;
            }
            totals_.duplicated += twice ? 1 : 0;
            send(client_side_, client_, packet.data);
            if (twice) {
                send(client_side_, client_, packet.data);
            }
        }
    }

    udp_socket *client_side_;
    udp_socket *reflector_side_;
    udp_endpoint reflector_;
    udp_endpoint client_;
    settings wanted_;
    system_clocks clocks_;
    receive_batch batch_;
    send_batch outgoing_;
    std::multimap<wall_nsec, held_packet> held_;
    totals totals_;
};

}  // namespace

int main(int, char **argv) {
    std::signal(SIGTERM, [](int) { ended = 1; });
    const auto number = [&](int index) { return std::strtoll(argv[index], nullptr, 10); };
    ip_address here;
    udp_endpoint reflector;
    if (!parse_address(argv[1], &here) || !parse_address(argv[3], &reflector.address)) {
        return 2;
    }
    reflector.port = static_cast<std::uint16_t>(number(4));
    udp_socket client_side;
    udp_socket reflector_side;
    ip_address any;
    any.family = here.family;
    if (client_side.open({here, static_cast<std::uint16_t>(number(2)), "", false}) ||
        reflector_side.open({any, 0, "", false})) {
        return 1;
    }
    relay between(&client_side, &reflector_side, reflector,
                  {number(5) * 1000, number(9) * 1000, static_cast<std::uint32_t>(number(6)),
                   static_cast<std::uint32_t>(number(7)), static_cast<std::uint32_t>(number(8))});
    std::puts("ready");
    std::fflush(stdout);
    between.run();
    const totals &done = between.result();
    long long added = 0;
    long long answered = 0;
    for (std::uint32_t packet = 0; packet < MEASURED; ++packet) {
        added += done.answered[packet] ? done.added[packet] : 0;
        answered += done.answered[packet] ? 1 : 0;
    }
    std::printf("%llu %llu %llu %llu %lld\n", static_cast<unsigned long long>(done.forwarded),
                static_cast<unsigned long long>(done.lost), static_cast<unsigned long long>(done.duplicated),
                static_cast<unsigned long long>(done.delayed), answered > 0 ? added / answered : 0);
    return 0;
}
