// SPDX-License-Identifier: Apache-2.0
// Readers and writers that are killed or stopped at any moment.
#include <algorithm>
#include <gtest/gtest.h>
#include <lmdb.h>
#include <random>
#include <sys/ioctl.h>

#include "tests/stress/stress_support.h"

namespace {

constexpr unsigned READER_KILLS = 300 / STRESS_SCALE;
constexpr unsigned WRITER_KILLS = 200 / STRESS_SCALE;
constexpr unsigned LOADS_BESIDE_A_STOPPED_READER = 120 / STRESS_SCALE;
constexpr unsigned ITEMS = 6000;
constexpr unsigned CHANGED_ITEMS = 40;  // by each load; together, so that a load changes a few pages
constexpr unsigned SUMMARIES = 400;     // whose output fills a pipe many times
constexpr double TOLERANCE = 0.05;
constexpr double LONGEST_RUN_SECONDS = 8;

int discard(const void * /*decoded_parcel*/) { return PM_SHOW_NOTHING; }

class KilledProcesses : public testing::Test {
protected:
    // Two equal stores, and loads that change some items of them.
    void SetUp() override {
        std::string set;
        for (unsigned i = 0; i < ITEMS; ++i) {
            set += interface_line(padded("eth", i), 1, 60);
        }
        for (unsigned node = 1; node <= SUMMARIES; ++node) {
            const std::string id = std::to_string(node);
            set += R"({"node":{"id":)" + id + R"(,"name":"lc)" + id + "\"}}\n" + R"({"item":{"root":"main","node":)" +
                   id + R"(,"path":"summary","type":"pm_summary_parcel","record":{"TotalInterfaces":)" + id + "}}}\n";
        }
        write_file(folder_.path() + "/all", set);
        for (unsigned generation = 0; generation < 4; ++generation) {
            std::string change;
            for (unsigned i = 0; i < CHANGED_ITEMS; ++i) {
                change += interface_line(padded("eth", ITEMS / 2 + i), generation + 2, 60);
            }
            write_file(change_set(generation), change);
        }
        ASSERT_TRUE(load(store(), folder_.path() + "/all"));
        ASSERT_TRUE(load(quiet_store(), folder_.path() + "/all"));
    }

    [[nodiscard]] std::string store() const { return folder_.path() + "/store"; }
    [[nodiscard]] std::string quiet_store() const { return folder_.path() + "/quiet"; }
    [[nodiscard]] std::string change_set(unsigned round) const {
        return folder_.path() + "/change" + std::to_string(round % 4);
    }
    [[nodiscard]] static std::vector<std::string> writer_of(const std::string &set) {
        return {PERF_STORE, "load", set};
    }

    // The store is hardly larger than the one on which a writer alone did the same loads.
    void expect_no_growth(unsigned loads) const {
        for (unsigned i = 0; i < loads; ++i) {
            ASSERT_TRUE(load(quiet_store(), change_set(i)));
        }
        const auto alone = static_cast<double>(size_of(quiet_store()));
        EXPECT_LE(static_cast<double>(size_of(store())), alone * (1 + TOLERANCE));
    }

    // In a child: lists everything of this store.
    [[nodiscard]] bool list(pm_show_display display) const {
        setenv("OPSTORE_URL", ("lmdb:" + store()).c_str(), 1);
        return list_interfaces(display) == ERRCODE_SUCCESS;
    }

    // Whether a listing shows everything.
    [[nodiscard]] bool all_is_listed() const {
        running_process reader([&] {
            static_cast<void>(!std::freopen("/dev/null", "w", stdout));
            return list(count_item) && shown == ITEMS;
        });
        return reader.wait(LONGEST_RUN_SECONDS);
    }

    // Opens this store as LMDB does and begins `count` transactions that stay.
    [[nodiscard]] bool hold_transactions(unsigned count) const {
        MDB_env *env = nullptr;
        bool good = mdb_env_create(&env) == 0 && mdb_env_set_maxreaders(env, lmdb_store::MAX_READERS) == 0 &&
                    mdb_env_open(env, store().c_str(), MDB_RDONLY | MDB_NOTLS, 0) == 0;
        for (unsigned i = 0; good && i < count; ++i) {
            MDB_txn *txn = nullptr;
            good = mdb_txn_begin(env, nullptr, MDB_RDONLY, &txn) == 0;
        }
        return good;
    }

    // A child that holds transactions until it is killed.
    [[nodiscard]] running_process holder(unsigned count) const {
        int ready[2];
        if (pipe(ready) != 0) {
            return {};
        }
        running_process child([&] {
            const char done = hold_transactions(count) ? '+' : '-';
            static_cast<void>(!write(ready[1], &done, 1));
            pause();
            return true;
        });
        char done = 0;
        EXPECT_EQ(read(ready[0], &done, 1), 1);
        EXPECT_EQ(done, '+');
        close(ready[0]);
        close(ready[1]);
        return child;
    }

    // Loads while a reader that fills a pipe nobody reads is stopped, then lets it go on.
    template <class Body>
    void expect_no_growth_beside_stopped(Body body) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        running_process reader([&] {
            close(ends[0]);
            return body(ends[1]);
        });
        close(ends[1]);
        int waiting = 0;
        int before = -1;
        const auto start = stress_clock::now();
        while ((waiting == 0 || waiting != before) && seconds_since(start) < LONGEST_RUN_SECONDS) {
            before = waiting;
            usleep(100'000);
            ASSERT_EQ(ioctl(ends[0], FIONREAD, &waiting), 0);
        }
        ASSERT_GE(waiting, 32'768) << "the pipe does not fill";
        reader.kill(SIGSTOP);
        for (unsigned i = 0; i < LOADS_BESIDE_A_STOPPED_READER; ++i) {
            ASSERT_TRUE(load(store(), change_set(i)));
        }
        expect_no_growth(LOADS_BESIDE_A_STOPPED_READER);
        reader.kill(SIGCONT);
        char bytes[65536];
        std::size_t total = 0;
        for (ssize_t got = 0; (got = read(ends[0], bytes, sizeof bytes)) > 0;) {
            total += static_cast<std::size_t>(got);
        }
        close(ends[0]);
        EXPECT_TRUE(reader.wait(LONGEST_RUN_SECONDS));
        EXPECT_GT(total, static_cast<std::size_t>(waiting));  // it went on where it stood
    }

    temporary_folder folder_;
    std::mt19937 random_{17};
};

TEST_F(KilledProcesses, ReadersLeaveNothingBehind) {
    for (unsigned i = 0; i < READER_KILLS; ++i) {
        running_process show([&] { return become({PERF_SHOW, "-c", "9"}, store()); });
        running_process lister([&] {
            static_cast<void>(!std::freopen("/dev/null", "w", stdout));
            const auto start = stress_clock::now();
            while (list(discard) && seconds_since(start) < LONGEST_RUN_SECONDS) {
            }
            return false;
        });
        running_process writer([&] { return become(writer_of(change_set(i)), store()); });
        usleep(static_cast<unsigned>(random_() % (8000 * STRESS_SCALE)));
        show.kill(SIGKILL);
        lister.kill(SIGKILL);
        ASSERT_TRUE(writer.wait(LONGEST_RUN_SECONDS)) << "the load after " << i << " killed readers fails";
    }
    EXPECT_TRUE(all_is_listed());
    expect_no_growth(READER_KILLS);
}

TEST_F(KilledProcesses, ATransactionOfAKilledReaderKeepsNoPages) {
    running_process reader = holder(1);
    reader.kill(SIGKILL);
    static_cast<void>(reader.wait(LONGEST_RUN_SECONDS));
    for (unsigned i = 0; i < LOADS_BESIDE_A_STOPPED_READER; ++i) {
        ASSERT_TRUE(load(store(), change_set(i)));
    }
    expect_no_growth(LOADS_BESIDE_A_STOPPED_READER);
}

TEST_F(KilledProcesses, SlotsOfReadersAreUsedAgain) {
    // Some killed readers at a time, until there were more than there are slots.
    constexpr unsigned AT_ONCE = 170;
    for (unsigned killed = 0; killed <= lmdb_store::MAX_READERS; killed += AT_ONCE) {
        running_process reader = holder(AT_ONCE);
        reader.kill(SIGKILL);
        static_cast<void>(reader.wait(LONGEST_RUN_SECONDS));
        EXPECT_TRUE(all_is_listed()) << killed + AT_ONCE;
        if (killed + 2 * AT_ONCE > lmdb_store::MAX_READERS) {
            break;  // no slot is free any more, and no writer has cleared them
        }
    }
    const command_result show = run_command("perf-show -c 9 | grep -c lc", store());
    EXPECT_EQ(show.err, "");
    EXPECT_EQ(show.out, std::to_string(SUMMARIES) + "\n");
}

TEST_F(KilledProcesses, ReadersAtWorkInEverySlotAreReported) {
    const running_process reader = holder(lmdb_store::MAX_READERS);
    const command_result show = run_command("perf-show -c 9", store());
    EXPECT_EQ(show.status, 0);
    EXPECT_NE(show.err.find("(0x8081c600)"), std::string::npos) << show.err;
    EXPECT_TRUE(load(store(), change_set(0)));  // a writer needs none
}

TEST_F(KilledProcesses, AStoppedShowDoesNotKeepPages) {
    expect_no_growth_beside_stopped([&](int out) { return become({PERF_SHOW, "-c", "9"}, store(), out); });
}

TEST_F(KilledProcesses, AStoppedListingDoesNotKeepPages) {
    expect_no_growth_beside_stopped([&](int out) {
        dup2(out, STDOUT_FILENO);
        close(out);
        return list(print_item);
    });
}

// The state that a set leaves in an empty store.
class KilledWriter : public testing::Test {
protected:
    static constexpr unsigned SET_ITEMS = 1500;
    static constexpr std::uint32_t SETS = 2;

    void SetUp() override {
        for (std::uint32_t i = 0; i < SETS; ++i) {
            std::string content;
            for (unsigned item = i * 100; item < SET_ITEMS + i * 100; ++item) {  // some names are of one set only
                content += interface_line(padded("eth", item), i + 1, item % 10 == 0 ? 5000 : 50);
            }
            write_file(set(i), content);
            ASSERT_TRUE(load(store() + std::to_string(i), set(i)));
            dumps_.push_back(dump(store() + std::to_string(i)).out);
            ASSERT_GT(dumps_[i].size(), 100'000U);
        }
    }

    [[nodiscard]] std::string store() const { return folder_.path() + "/store"; }
    [[nodiscard]] std::string set(std::uint32_t number) const {
        return folder_.path() + "/set" + std::to_string(number);
    }
    [[nodiscard]] static command_result dump(const std::string &store) { return run_command("perf-store dump", store); }

    // How long a load takes, in microseconds.
    [[nodiscard]] unsigned load_time() const {
        const auto start = stress_clock::now();
        EXPECT_TRUE(load(folder_.path() + "/timed", set(0)));
        EXPECT_TRUE(load(folder_.path() + "/timed", set(1), true));
        return static_cast<unsigned>(seconds_since(start) / 2 * 1e6);
    }

    // Runs a load and kills it within the time that one takes.
    void kill_a_load(std::uint32_t number, unsigned time) {
        running_process writer([&] { return become({PERF_STORE, "load", "--replace", set(number)}, store()); });
        usleep(static_cast<unsigned>(random_() % (time * 5 / 4 + 1)));
        writer.kill(SIGKILL);
        ended_ += writer.wait(LONGEST_RUN_SECONDS) ? 1 : 0;
    }

    temporary_folder folder_;
    std::vector<std::string> dumps_;
    std::mt19937 random_{23};
    unsigned ended_ = 0;  // loads that were done before the signal
};

TEST_F(KilledWriter, LeavesTheOldOrTheNewState) {
    const unsigned time = load_time();
    ASSERT_TRUE(load(store(), set(0)));
    std::uint32_t current = 0;
    unsigned changes = 0;
    for (unsigned i = 0; i < WRITER_KILLS; ++i) {
        kill_a_load(1 - current, time);
        const command_result found = dump(store());
        ASSERT_EQ(found.status, 0) << found.err;
        if (found.out != dumps_[current]) {
            current = 1 - current;
            ++changes;
            ASSERT_TRUE(found.out == dumps_[current]) << "after " << i << " loads the store is neither old nor new";
        }
    }
    EXPECT_LT(changes, WRITER_KILLS);  // else no load was interrupted
    EXPECT_GE(changes, ended_);
    EXPECT_TRUE(load(store(), set(0), true));
    EXPECT_TRUE(dump(store()).out == dumps_[0]);
    EXPECT_LE(size_of(store()), 2 * size_of(folder_.path() + "/timed"));
}

TEST_F(KilledWriter, OfAStoreThatDoesNotExistYetLeavesNothingOrAll) {
    const unsigned time = load_time();
    unsigned interrupted = 0;
    for (unsigned i = 0; i < WRITER_KILLS / 2; ++i) {
        kill_a_load(0, time);
        const command_result show = run_command("perf-show -c 9", store());
        EXPECT_EQ(show.err.find("damaged"), std::string::npos) << show.err;
        const command_result found = dump(store());
        if (found.out != dumps_[0]) {
            ++interrupted;
            EXPECT_EQ(found.out.find("item"), std::string::npos) << "a part of the set";
            EXPECT_EQ(found.err.find("damaged"), std::string::npos) << found.err;
            if (i % 4 == 0) {
                ASSERT_TRUE(load(store(), set(0))) << "after " << i;
                ASSERT_TRUE(dump(store()).out == dumps_[0]);
            }
        }
        std::filesystem::remove_all(store());
    }
    EXPECT_GT(interrupted, WRITER_KILLS / 40);
}

}  // namespace
