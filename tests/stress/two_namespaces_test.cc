// SPDX-License-Identifier: Apache-2.0
// Readers with the same process id, as programs of two containers that share a store have. Making a
// namespace of process ids takes root.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/ioctl.h>

#include "tests/stress/stress_support.h"

namespace {

constexpr unsigned ROUNDS = 30 / STRESS_SCALE;
constexpr unsigned ITEMS = 3000;
constexpr double LONGEST_RUN_SECONDS = 8;

bool namespaces_are_permitted() {
    return in_child([] { return unshare(CLONE_NEWPID) == 0; });
}

// A child that runs `body` as process 1 of a new namespace.
template <class Body>
running_process first_of_namespace(Body body) {
    return running_process([body] {
        return unshare(CLONE_NEWPID) == 0 && in_child([&] {
                   end_with_parent();
                   return getpid() == 1 && body();
               });
    });
}

class TwoNamespaces : public testing::Test {
protected:
    void SetUp() override {
        if (!namespaces_are_permitted()) {
            GTEST_SKIP() << "no namespace of process ids can be made";
        }
        for (std::uint32_t generation = 1; generation <= 2; ++generation) {
            std::string content;
            for (unsigned i = 0; i < ITEMS; ++i) {
                content += interface_line(padded("eth", i), generation, 100);
            }
            write_file(set(generation), content);
        }
        ASSERT_TRUE(load(store(), set(1)));
    }

    [[nodiscard]] std::string store() const { return folder_.path() + "/store"; }
    [[nodiscard]] std::string set(std::uint32_t number) const {
        return folder_.path() + "/set" + std::to_string(number);
    }

    // In a child: lists everything to `display`.
    [[nodiscard]] bool list(pm_show_display display) const {
        setenv("OPSTORE_URL", ("lmdb:" + store()).c_str(), 1);
        return list_interfaces(display) == ERRCODE_SUCCESS;
    }

    // Whether process 1 of a new namespace can list everything.
    [[nodiscard]] bool all_is_listed() const {
        running_process reader = first_of_namespace([this] {
            static_cast<void>(!std::freopen("/dev/null", "w", stdout));
            return list(count_item) && shown == ITEMS;
        });
        return reader.wait(LONGEST_RUN_SECONDS);
    }

    temporary_folder folder_;
};

TEST_F(TwoNamespaces, BothReadAtOnceBesideAWriter) {
    looping_writer writer(store(), {set(1), set(2)});
    for (unsigned round = 0; round < ROUNDS; ++round) {
        std::vector<running_process> readers;
        for (unsigned i = 0; i < 2; ++i) {
            readers.push_back(first_of_namespace([this] {
                static_cast<void>(!std::freopen("/dev/null", "w", stdout));
                bool good = true;
                for (unsigned listing = 0; good && listing < 5; ++listing) {
                    shown = 0;
                    good = list(count_item) && shown == ITEMS;
                }
                return good;
            }));
        }
        for (running_process &reader : readers) {
            ASSERT_TRUE(reader.wait(LONGEST_RUN_SECONDS)) << "in round " << round;
        }
    }
    EXPECT_TRUE(writer.stop());
}

TEST_F(TwoNamespaces, AReaderWhoseOutputWaitsDoesNotKeepTheOtherOut) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    running_process waiting = first_of_namespace([&] {
        close(ends[0]);
        dup2(ends[1], STDOUT_FILENO);
        close(ends[1]);
        return list(print_item);
    });
    close(ends[1]);
    int bytes_waiting = 0;
    const auto start = stress_clock::now();
    while (bytes_waiting < 32'768 && seconds_since(start) < LONGEST_RUN_SECONDS) {
        usleep(20'000);
        ASSERT_EQ(ioctl(ends[0], FIONREAD, &bytes_waiting), 0);
    }
    ASSERT_GE(bytes_waiting, 32'768) << "the pipe does not fill";
    EXPECT_TRUE(all_is_listed());
    char bytes[65536];
    while (read(ends[0], bytes, sizeof bytes) > 0) {
    }
    close(ends[0]);
    EXPECT_TRUE(waiting.wait(LONGEST_RUN_SECONDS));
}

TEST_F(TwoNamespaces, AReaderThatWasKilledDoesNotKeepTheOtherOut) {
    for (unsigned i = 0; i < ROUNDS; ++i) {
        running_process reader = first_of_namespace([this] {
            static_cast<void>(!std::freopen("/dev/null", "w", stdout));
            const auto start = stress_clock::now();
            while (list(count_item) && seconds_since(start) < LONGEST_RUN_SECONDS) {
            }
            return false;
        });
        usleep(2000 + i * 500);
        reader.kill(SIGKILL);  // and process 1 with it
        static_cast<void>(reader.wait(1));
    }
    usleep(100'000);  // until the last of them has ended
    EXPECT_TRUE(all_is_listed());
    EXPECT_TRUE(load(store(), set(2)));
}

}  // namespace
