// SPDX-License-Identifier: Apache-2.0
// Publishers, a loader and readers beside each other on one server, and writers that are killed at any moment. The
// record of each item tells which commit put it. PM_STRESS_SECONDS=60 makes the first test as long.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/local/codec/parcel_codec.h"
#include "platform/local/redis_store/redis_reader.h"
#include "platform/local/redis_store/redis_writer.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"
#include "tests/support/redis_server.h"

namespace {

using clock_type = std::chrono::steady_clock;

constexpr store::branch PUBLISHED[] = {{store::root::main, 1}, {store::root::main, 2}};
constexpr store::branch LOADED{store::root::receive, 3};
constexpr int PUBLISHED_ITEMS = 40;  // one page
constexpr int LOADED_ITEMS = 2500;   // many pages, staged
constexpr int KILLED_WRITERS = 36;
constexpr char LOCK[] = "ps1:{state}:lock";

// What readers saw, or writers did.
struct tally {
    long readings = 0;
    long commits = 0;
    long missed = 0;
    long doubled = 0;
    long torn = 0;
    long failed = 0;
};

struct seen_item {
    std::string path;
    std::string commit;
};

std::string path_of(int number) {
    char path[32];
    std::snprintf(path, sizeof path, "item/%06d", number);
    return path;
}

// Counts what is wrong with a listing of `items` items. Only what a call gave at once is of one commit.
void judge(const std::vector<std::vector<seen_item>> &pages, int items, tally *into) {
    std::set<std::string> paths;
    long seen = 0;
    for (const std::vector<seen_item> &page : pages) {
        bool is_torn = false;
        for (const seen_item &each : page) {
            paths.insert(each.path);
            ++seen;
            is_torn = is_torn || each.commit != page.front().commit;
        }
        into->torn += is_torn ? 1 : 0;
    }
    into->doubled += seen - static_cast<long>(paths.size());
    for (int i = 0; i < items; ++i) {
        into->missed += paths.contains(path_of(i)) ? 0 : 1;
    }
    ++into->readings;
}

std::string name_in(std::string_view parcel) {
    local_interface record{};
    if (parcel_decode(parcel.data(), static_cast<std::uint32_t>(parcel.size()), &record,
                      local_interface_descriptor()) != ERRCODE_SUCCESS) {
        return "damaged";
    }
    std::string name = record.Name;
    parcel_free_indirections(&record, local_interface_descriptor());
    return name;
}

void read_branch(store::reader *from, const store::branch &branch, int items, tally *into) {
    std::vector<std::vector<seen_item>> pages;
    store::batch batch;
    std::string after;
    do {
        if (pm_error error = from->list(branch, {"item/", after, 200, {}}, nullptr, &batch)) {
            std::fprintf(stderr, "reader: %s\n", error.text().c_str());
            ++into->failed;
            return;
        }
        std::vector<seen_item> &page = pages.emplace_back();
        for (const store::item &each : batch.items()) {
            page.push_back({std::string(each.path), name_in(each.parcel)});
        }
        after = page.empty() ? "" : page.back().path;
    } while (batch.more());
    judge(pages, items, into);
}

pm_error put_all(store::writer *into, const store::branch &branch, int first, int last, const std::string &commit) {
    for (int i = first; i < last; ++i) {
        if (pm_error error = put_named(into, path_of(i), commit, branch)) {
            return error;
        }
    }
    return {};
}

// One commit; what `fill` puts.
void commit(const std::string &url, store::missing_store missing, tally *into,
            const std::function<pm_error(store::writer *)> &fill) {
    std::unique_ptr<store::writer> writer;
    pm_error error = redis_store::open_writer(url, missing, &writer);
    error = error ? error : fill(writer.get());
    error = error ? error : writer->commit();
    if (error) {
        std::fprintf(stderr, "writer: %s\n", error.text().c_str());
    }
    (error ? into->failed : into->commits) += 1;
}

void publish(const std::string &url, const store::branch &branch, const std::string &name, tally *into) {
    commit(url, store::missing_store::make, into, [&](store::writer *writer) {
        pm_error error = writer->put_leased_publisher(branch, 60'000);
        return error ? error : put_all(writer, branch, 0, PUBLISHED_ITEMS, name);
    });
}

void load_all(const std::string &url, const std::string &name, tally *into) {
    commit(url, store::missing_store::replace, into, [&](store::writer *writer) {
        pm_error error = put_all(writer, LOADED, 0, LOADED_ITEMS, name);
        for (const store::branch &each : PUBLISHED) {
            error = error ? error : put_all(writer, each, 0, PUBLISHED_ITEMS, name);
        }
        return error;
    });
}

// Runs functions in processes of their own until the time is over; each is called again and again with the number of
// its call. Sums up what they counted.
tally run_together(double seconds, const std::vector<std::function<void(int, tally *)>> &all) {
    int results[2];
    EXPECT_EQ(::pipe(results), 0);
    std::vector<pid_t> children;
    for (const auto &each : all) {
        children.push_back(fork());
        if (children.back() == 0) {
            tally own;
            const auto end = clock_type::now() + std::chrono::duration<double>(seconds);
            for (int i = 0; clock_type::now() < end; ++i) {
                each(i, &own);
            }
            const bool told = ::write(results[1], &own, sizeof own) == sizeof own;
            std::_Exit(told ? 0 : 1);
        }
    }
    ::close(results[1]);
    tally sum;
    tally part;
    while (::read(results[0], &part, sizeof part) == sizeof part) {
        sum.readings += part.readings;
        sum.commits += part.commits;
        sum.missed += part.missed;
        sum.doubled += part.doubled;
        sum.torn += part.torn;
        sum.failed += part.failed;
    }
    ::close(results[0]);
    for (const pid_t each : children) {
        int status = 0;
        ::waitpid(each, &status, 0);
        EXPECT_EQ(status, 0);
    }
    return sum;
}

// A reader whose connection is kept.
std::function<void(int, tally *)> reader_of(const std::string &url) {
    return [url, reader = std::shared_ptr<store::reader>()](int, tally *into) mutable {
        if (reader == nullptr) {
            reader = read_store(url);
        }
        for (const store::branch &each : PUBLISHED) {
            read_branch(reader.get(), each, PUBLISHED_ITEMS, into);
        }
        read_branch(reader.get(), LOADED, LOADED_ITEMS, into);
    };
}

std::function<void(int, tally *)> publisher_of(const std::string &url, const store::branch &branch) {
    return [=](int call, tally *into) {
        publish(url, branch, std::to_string(branch.node) + "/" + std::to_string(call), into);
    };
}

double stress_seconds() {
    const char *const given = std::getenv("PM_STRESS_SECONDS");
    return given != nullptr ? std::atof(given) : 4;
}

TEST(BesideEachOther, NothingIsMissedDoubledOrTorn) {
    const redis_server server;
    const std::string url = server.url("&timeout=20000");
    tally begun;
    load_all(url, "first", &begun);
    ASSERT_EQ(begun.commits, 1);
    const tally sum = run_together(stress_seconds(),
                                   {publisher_of(url, PUBLISHED[0]), publisher_of(url, PUBLISHED[1]),
                                    [&](int call, tally *into) { load_all(url, "load/" + std::to_string(call), into); },
                                    reader_of(url), reader_of(url)});
    std::printf("%ld commits, %ld readings\n", sum.commits, sum.readings);
    EXPECT_GT(sum.commits, 10);
    EXPECT_GT(sum.readings, 100);
    EXPECT_EQ(sum.missed, 0);
    EXPECT_EQ(sum.doubled, 0);
    EXPECT_EQ(sum.torn, 0);
    EXPECT_EQ(sum.failed, 0);
}

// The same readers beside a publisher that changes a branch in two steps, and one that takes an item away for a while.
TEST(BesideEachOther, ACarelessPublisherWouldBeSeen) {
    const redis_server server;
    const std::string url = server.url("&timeout=20000");
    tally begun;
    load_all(url, "first", &begun);
    const tally sum = run_together(
        1, {[&](int call, tally *into) {
                for (const int first : {0, PUBLISHED_ITEMS / 2}) {
                    commit(url, store::missing_store::make, into, [&](auto *writer) {
                        return put_all(writer, PUBLISHED[0], first, first + PUBLISHED_ITEMS / 2, std::to_string(call));
                    });
                }
            },
            [&](int, tally *into) {
                commit(url, store::missing_store::make, into, [&](auto *writer) {
                    std::uint64_t removed = 0;
                    return writer->remove_item(PUBLISHED[1], path_of(7), &removed);
                });
                commit(url, store::missing_store::make, into,
                       [&](auto *writer) { return put_all(writer, PUBLISHED[1], 7, 8, "first"); });
            },
            reader_of(url)});
    EXPECT_GT(sum.torn, 0);
    EXPECT_GT(sum.missed, 0);
    EXPECT_EQ(sum.doubled, 0);
    tally doubled;
    judge({{{path_of(0), "a"}, {path_of(1), "a"}}, {{path_of(1), "b"}}}, 2, &doubled);
    EXPECT_EQ(doubled.doubled, 1);
    EXPECT_EQ(doubled.torn, 0);
    EXPECT_EQ(doubled.missed, 0);
}

// Its set is gone while it has none, and the directory is asked whether that is right.
TEST(BesideEachOther, ABranchThatLosesItsItemsAndGetsOthersIsNotDamaged) {
    const redis_server server;
    const std::string url = server.url("&timeout=20000");
    tally begun;
    load_all(url, "first", &begun);
    const auto empty_and_fill = [&](int call, tally *into) {
        commit(url, store::missing_store::make, into, [&](store::writer *writer) {
            std::uint64_t removed = 0;
            return call % 2 == 0 ? writer->remove_below(PUBLISHED[0], "item", &removed)
                                 : put_all(writer, PUBLISHED[0], 0, PUBLISHED_ITEMS, "again");
        });
    };
    const auto read = [reader = std::shared_ptr<store::reader>(read_store(url))](int, tally *into) {
        store::batch batch;
        const pm_error error = reader->list(PUBLISHED[0], {"item/", "", 200, {}}, nullptr, &batch);
        into->failed += error ? 1 : 0;
        into->torn += batch.items().empty() || batch.items().size() == PUBLISHED_ITEMS ? 0 : 1;
        into->missed += batch.items().empty() ? 1 : 0;
        ++into->readings;
    };
    const tally sum = run_together(2, {empty_and_fill, read});
    EXPECT_GT(sum.commits, 10);
    EXPECT_GT(sum.missed, 10);  // so it was seen empty
    EXPECT_GT(sum.readings, sum.missed);
    EXPECT_EQ(sum.torn, 0);
    EXPECT_EQ(sum.failed, 0);
}

std::vector<std::string> keys_of(const redis_server &server) {
    std::vector<std::string> keys;
    const std::string together = server.run({"EVAL", "return table.concat(redis.call('KEYS', '*'), '\\n')", "0"});
    for (std::size_t begin = 0; begin < together.size();) {
        const std::size_t end = std::min(together.find('\n', begin), together.size());
        keys.push_back(together.substr(begin, end - begin));
        begin = end + 1;
    }
    std::sort(keys.begin(), keys.end());
    return keys;
}

// Brings the expiries of what killed writers left to their end; everything of the kind must have one.
void let_expire(const redis_server &server, const std::vector<std::string> &known) {
    for (const std::string &key : keys_of(server)) {
        if (!std::binary_search(known.begin(), known.end(), key)) {
            const long left = std::stol(server.run({"PTTL", key}));
            EXPECT_GT(left, 0) << key;
            EXPECT_LE(left, 60'000) << key;
            server.run({"PEXPIRE", key, "0"});
        }
    }
}

TEST(KilledWriters, LeaveTheOldOrTheNewStateAndNothingElse) {
    const redis_server server;
    const std::string url = server.url("&timeout=20000");
    tally counted;
    load_all(url, "first", &counted);
    const std::vector<std::string> known = keys_of(server);
    const auto begin = clock_type::now();
    load_all(url, "second", &counted);
    const auto usual = std::chrono::duration_cast<std::chrono::microseconds>(clock_type::now() - begin);
    ASSERT_EQ(counted.commits, 2);

    std::mt19937 random(7);
    std::uniform_int_distribution<long> delay(0, usual.count() * 5 / 4);
    int leftovers = 0;
    for (int i = 0; i < KILLED_WRITERS; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            tally ignored;
            load_all(url, "writer/" + std::to_string(i), &ignored);
            std::_Exit(0);
        }
        ::usleep(static_cast<useconds_t>(delay(random)));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
        leftovers += server.run({"EXISTS", LOCK}) == "1" ? 1 : 0;
        let_expire(server, known);
        EXPECT_EQ(keys_of(server), known);
        const auto reader = read_store(url);
        tally seen;
        for (const store::branch &each : PUBLISHED) {
            read_branch(reader.get(), each, PUBLISHED_ITEMS, &seen);
        }
        read_branch(reader.get(), LOADED, LOADED_ITEMS, &seen);
        EXPECT_EQ(seen.missed + seen.doubled + seen.torn + seen.failed, 0) << i;
    }
    EXPECT_GT(leftovers, 0);  // else none was killed at work
}

}  // namespace
