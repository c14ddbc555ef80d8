// SPDX-License-Identifier: Apache-2.0
// A listing over a server's socket beside a transfer of the same bytes and beside the same commands through a client
// library's ordinary replies, in turns.
//
//   redis_bench SOCKET [ITEMS]      (a server that may be filled)
//   redis_bench SOCKET ITEMS load   only fills it, and prints at which rate
//
// Prints medians, and lines "target", what, most or least, the target and what was measured, with tabs between them.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <hiredis/hiredis.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/socket.h>
#include <vector>

#include "platform/local/back_ends/writers.h"
#include "platform/local/redis_store/redis_reader.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"

namespace {

constexpr int ROUNDS = 7;
constexpr int AT_ONCE = 200;
constexpr std::size_t ITEM_BYTES = 1300;
constexpr store::branch BRANCH{store::root::main, 1};
constexpr char KEY[] = "bench:{m00000001}:i";

[[noreturn]] void fail(const std::string &what) {
    std::fprintf(stderr, "redis_bench: %s\n", what.c_str());
    std::exit(1);
}

using server = std::unique_ptr<redisContext, decltype([](redisContext *context) { redisFree(context); })>;
using reply = std::unique_ptr<redisReply, decltype([](redisReply *tree) { freeReplyObject(tree); })>;

server connect_to(const char *socket) {
    server connected(redisConnectUnix(socket));
    if (connected == nullptr || connected->err != 0) {
        fail(std::string(socket) + ": cannot connect");
    }
    return connected;
}

reply next_reply(redisContext *from) {
    void *tree = nullptr;
    if (redisGetReply(from, &tree) != REDIS_OK) {
        fail(from->errstr);
    }
    return reply(static_cast<redisReply *>(tree));
}

void load(const std::string &url, int items) {
    std::unique_ptr<store::writer> writer;
    pm_error error = store::open_writer(url.c_str(), store::missing_store::replace, &writer);
    const std::string text(ITEM_BYTES, 'x');
    for (int i = 0; i < items && !error; ++i) {
        char path[32];
        std::snprintf(path, sizeof path, "item/%06d", i);
        const local_interface record{text.c_str()};
        error = writer->put_item(BRANCH, path, &record, local_interface_descriptor());
    }
    error = error ? error : writer->commit();
    if (error) {
        fail(error.text());
    }
}

// The members of a page, and that after it: "[FIRST", or after a last one.
void ask_page(redisContext *from, const std::string &last) {
    const std::string first = "(" + last + "\x01";
    redisAppendCommand(from, "GET bench:{m00000001}:u");
    redisAppendCommand(from, "EXISTS bench:{m00000001}:l");
    redisAppendCommand(from, "EXISTS %s", KEY);
    redisAppendCommand(from, "ZRANGE %s %b + BYLEX LIMIT 0 %d", KEY, first.data(), first.size(), AT_ONCE + 1);
}

// Calls with every page of members, of which the last one belongs to the next page; one page is asked for ahead.
std::size_t each_page(const char *socket, const std::function<void(const redisReply *)> &take) {
    const server from = connect_to(socket);
    std::size_t bytes = 0;
    ask_page(from.get(), "");
    for (bool more = true; more;) {
        for (int i = 0; i < 3; ++i) {
            static_cast<void>(next_reply(from.get()));
        }
        const reply page = next_reply(from.get());
        more = page->elements > AT_ONCE;
        if (more) {
            const redisReply *last = page->element[AT_ONCE - 1];
            ask_page(from.get(), std::string(last->str));
        }
        for (std::size_t i = 0; i < std::min<std::size_t>(page->elements, AT_ONCE); ++i) {
            bytes += page->element[i]->len;
        }
        take(page.get());
    }
    return bytes;
}

// The same members, 200 in each value.
int store_values(const char *socket) {
    const server to = connect_to(socket);
    int values = 0;
    each_page(socket, [&](const redisReply *page) {
        std::string value;
        for (std::size_t i = 0; i < std::min<std::size_t>(page->elements, AT_ONCE); ++i) {
            value.append(page->element[i]->str, page->element[i]->len);
        }
        redisAppendCommand(to.get(), "SET raw:%d %b", values++, value.data(), value.size());
        static_cast<void>(next_reply(to.get()));
    });
    return values;
}

void send_get(int to, int value) {
    const std::string number = "raw:" + std::to_string(value);
    const std::string command = "*2\r\n$3\r\nGET\r\n$" + std::to_string(number.size()) + "\r\n" + number + "\r\n";
    if (send(to, command.data(), command.size(), 0) < 0) {
        fail("cannot send");
    }
}

// Receives values into one buffer, one asked for ahead.
std::size_t transfer(const char *socket, int values) {
    const server from = connect_to(socket);
    const int descriptor = from->fd;
    static char buffer[1 << 20];
    std::size_t bytes = 0;
    send_get(descriptor, 0);
    for (int i = 0; i < values; ++i) {
        std::size_t have = 0;
        std::size_t whole = 0;
        while (whole == 0 || have < whole) {
            const ssize_t got = recv(descriptor, buffer + have, sizeof buffer - have, 0);
            if (got <= 0) {
                fail("the transfer ended early");
            }
            have += static_cast<std::size_t>(got);
            const char *end = static_cast<const char *>(std::memchr(buffer, '\n', have));
            if (whole == 0 && end != nullptr) {
                const std::size_t length = std::strtoull(buffer + 1, nullptr, 10);
                whole = static_cast<std::size_t>(end - buffer) + 1 + length + 2;
                bytes += length;
            }
        }
        if (i + 1 < values) {
            send_get(descriptor, i + 1);
        }
    }
    return bytes;
}

// The paths and parcels of a whole listing.
std::size_t list(const std::string &url) {
    std::unique_ptr<store::reader> reader;
    if (pm_error error = redis_store::open_reader(url, &reader)) {
        fail(error.text());
    }
    store::batch batch;
    std::string after;
    std::size_t bytes = 0;
    do {
        store::known_state state;
        if (pm_error error = reader->list(BRANCH, {"", after, AT_ONCE, {}}, &state, &batch)) {
            fail(error.text());
        }
        for (const store::item &each : batch.items()) {
            bytes += each.path.size() + each.parcel.size();
        }
        after = batch.items().back().path;
    } while (batch.more());
    return bytes;
}

double seconds_of(const std::function<std::size_t()> &run) {
    const auto begin = std::chrono::steady_clock::now();
    if (run() == 0) {
        fail("nothing was read");
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// A number of what the server says of itself.
double server_number(const char *socket, const char *section, const std::string &name) {
    const server asked = connect_to(socket);
    redisAppendCommand(asked.get(), "INFO %s", section);
    const reply info = next_reply(asked.get());
    const char *found = std::strstr(info->str, (name + ":").c_str());
    return found != nullptr ? std::strtod(found + name.size() + 1, nullptr) : 0;
}

double bytes_sent(const char *socket) { return server_number(socket, "stats", "total_net_output_bytes"); }

// The processor's time of the server and of this program until now.
struct processor_time {
    double server;
    double client;
};

processor_time time_used(const char *socket) {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    const auto seconds = [](const timeval &time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return {server_number(socket, "cpu", "used_cpu_sys") + server_number(socket, "cpu", "used_cpu_user"),
            seconds(used.ru_utime) + seconds(used.ru_stime)};
}

void print_target(const char *what, const char *bound, double limit, double measured) {
    std::printf("target\t%s\t%s\t%g\t%.3f\n", what, bound, limit, measured);
}

}  // namespace

int main(int argc, char **argv) {
    if (argc < 2) {
        std::fputs("usage: redis_bench SOCKET [ITEMS [load]]\n", stderr);
        return 2;
    }
    const char *const socket = argv[1];
    const std::string url = "redis+unix://" + std::string(socket) + "?prefix=bench";
    const int items = argc > 2 ? std::atoi(argv[2]) : 200'000;
    const double loading = seconds_of([&] {
        load(url, items);
        return 1;
    });
    std::printf("loaded %.0f items/s of %zu bytes\n", items / loading, ITEM_BYTES);
    if (argc > 3) {
        return 0;
    }
    const int values = store_values(socket);

    const auto payload = each_page(socket, [](const redisReply *) {});
    const double sent_before = bytes_sent(socket);
    static_cast<void>(list(url));
    const double wire = (bytes_sent(socket) - sent_before) / static_cast<double>(payload);

    struct contestant {
        const char *name;
        std::function<std::size_t()> run;
        std::vector<double> seconds;
        processor_time used{};
    };
    contestant all[] = {{"raw transfer", [&] { return transfer(socket, values); }, {}, {}},
                        {"listing", [&] { return list(url); }, {}, {}},
                        {"ordinary replies", [&] { return each_page(socket, [](const redisReply *) {}); }, {}, {}}};
    for (int round = 0; round < ROUNDS; ++round) {
        for (contestant &each : all) {
            const processor_time before = time_used(socket);
            each.seconds.push_back(seconds_of(each.run));
            const processor_time after = time_used(socket);
            each.used.server += after.server - before.server;
            each.used.client += after.client - before.client;
        }
    }
    double medians[3];
    for (int i = 0; i < 3; ++i) {
        std::sort(all[i].seconds.begin(), all[i].seconds.end());
        medians[i] = all[i].seconds[ROUNDS / 2];
        std::printf("%-18s %8.1f ms %8.0f MB/s, processor: server %6.1f ms, client %6.1f ms\n", all[i].name,
                    medians[i] * 1e3, static_cast<double>(payload) / medians[i] / 1e6,
                    all[i].used.server / ROUNDS * 1e3, all[i].used.client / ROUNDS * 1e3);
    }
    print_target("redis: listing, beside a raw transfer", "most", 1.7, medians[1] / medians[0]);
    print_target("redis: listing, beside ordinary replies", "most", 0.75, medians[1] / medians[2]);
    print_target("redis: bytes on the wire, beside the payload", "most", 1.015, wire);
    return 0;
}
