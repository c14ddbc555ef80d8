// SPDX-License-Identifier: Apache-2.0
// Listings while a writer changes what is listed.
#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>

#include "tests/stress/stress_support.h"

namespace {

constexpr double LOADING_SECONDS = 3;
constexpr double LONGEST_LISTING_SECONDS = 5;
constexpr unsigned SHORT_NAMES = 450;
constexpr unsigned LONG_NAMES = 450;
constexpr unsigned PASSING_NAMES = 150;  // of every other load
constexpr unsigned READERS = 4;

const std::string LONG_START(200, 'n');  // names that a caller cannot tell apart by their first 127 bytes

// What a listing showed.
struct seen {
    std::vector<std::string> names;
    std::uint32_t first_generation = 0;
    std::uint32_t last_generation = 0;
    std::string problem;
};
seen now;
std::function<void(std::size_t)> after_item;  // called with the number of items shown

// Notes an item, which must come after the one before and be no older.
void record_shown(const std::string &name, std::uint32_t generation) {
    if (!now.names.empty() && now.names.back() >= name) {
        now.problem += name + " comes after " + now.names.back() + "; ";
    }
    if (now.names.empty()) {
        now.first_generation = generation;
    } else if (generation < now.last_generation) {
        now.problem += name + " is older than the one before; ";
    }
    now.last_generation = generation;
    now.names.push_back(name);
}

void record_item(const pm_intf_parcel &record) {
    std::uint32_t generation = 0;
    const std::string name = record.InterfaceName != nullptr ? record.InterfaceName : "";
    if (!whole_generation(record, &generation)) {
        now.problem += name + " is of several loads; ";
    }
    record_shown(name, generation);
}

int show_item(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        now.problem += "nothing is listed; ";
        return PM_SHOW_NOTHING;
    }
    record_item(*static_cast<const pm_intf_parcel *>(decoded_parcel));
    if (after_item) {
        after_item(now.names.size());
    }
    return PM_SHOW_NOTHING;
}

// Lists without the walker, and sees that each batch is of one load.
void list_by_batches() {
    opstore_handle handle = nullptr;
    char key[OPSTORE_KEY_SIZE] = "";
    std::uint32_t flags = 0;
    std::uint32_t more = 1;
    if (_opstore_bind(&handle, "/oper/perf_meas/main/node/1/", OPSTORE_BIND_READ) != ERRCODE_SUCCESS) {
        now.problem += "cannot bind; ";
        return;
    }
    while (more != 0 && now.problem.empty()) {
        opstore_list *batch = nullptr;
        std::uint32_t count = STRESS_BATCH;
        const errcode code = opstore_datalist(handle, STRESS_LISTED, key, &count, &batch, flags);
        if (code != ERRCODE_SUCCESS) {
            now.problem += std::string("cannot list: ") + errcode_strerror(code);
            break;
        }
        std::uint32_t generation = 0;
        for (std::uint32_t i = 0; i < count; ++i) {
            const char *name = nullptr;
            const void *data = nullptr;
            std::uint32_t type = 0;
            std::uint32_t length = 0;
            std::uint32_t extra = 0;
            pm_intf_parcel record{};
            if (opstore_datalist_next(batch, &name, &type, &data, &length, &extra) != ERRCODE_SUCCESS ||
                parcel_decode(data, length, &record, pm_intf_parcel_descriptor()) != ERRCODE_SUCCESS) {
                now.problem += "cannot decode; ";
                break;
            }
            if (std::string(name) != record.InterfaceName) {
                now.problem += std::string(name) + " stands at the record of another; ";
            }
            if (i != 0 && record.InterfaceHandle != generation) {
                now.problem += std::string(name) + " is not of its batch's load; ";
            }
            generation = record.InterfaceHandle;
            record_item(record);
            std::snprintf(key, sizeof key, "%s", name);
            parcel_free_indirections(&record, pm_intf_parcel_descriptor());
        }
        static_cast<void>(opstore_datalist_get_more_flag(batch, &more));
        static_cast<void>(opstore_datalist_free(batch));
        flags = OPSTORE_LIST_AFTER;
    }
    _opstore_unbind(handle);
}

// Whether all of `names` were listed.
bool listed_all(const std::vector<std::string> &names) {
    return std::includes(now.names.begin(), now.names.end(), names.begin(), names.end());
}

class ReadersBesideWriter : public testing::Test {
protected:
    void SetUp() override { now = {}; }

    [[nodiscard]] std::string store() const { return folder_.path() + "/store"; }

    [[nodiscard]] std::string write_set(const std::string &name, const std::string &content) const {
        write_file(folder_.path() + "/" + name, content);
        return folder_.path() + "/" + name;
    }

    // What the readers wrote about things that went wrong.
    [[nodiscard]] std::string problems() const { return read_file(folder_.path() + "/problems"); }

    // In a child: this store, and output that is kept when something goes wrong.
    void enter_child() const {
        setenv("OPSTORE_URL", ("lmdb:" + store()).c_str(), 1);
        if (std::freopen("/dev/null", "w", stdout) == nullptr ||
            std::freopen((folder_.path() + "/problems").c_str(), "a", stderr) == nullptr) {
            std::_Exit(2);
        }
        std::setvbuf(stderr, nullptr, _IOLBF, BUFSIZ);
    }

    // Lists with generic_show in a child; once `at` items are shown, the commands run. Then the names
    // that the listing showed must be `expected`.
    void expect_listing(std::size_t at, const std::string &commands, const std::vector<std::string> &expected) const {
        running_process reader([&] {
            enter_child();
            bool changed = false;
            after_item = [&](std::size_t shown) {
                if (shown == at) {
                    const command_result result = run_command(commands, store());
                    changed = result.status == 0;
                    std::fputs(result.err.c_str(), stderr);
                }
            };
            const errcode code = list_interfaces(show_item);
            if (code != ERRCODE_SUCCESS || !changed || !now.problem.empty()) {
                std::fprintf(stderr, "code 0x%x, changed %d, %s\n", code, changed, now.problem.c_str());
            }
            const auto [got, wanted] =
                std::mismatch(now.names.begin(), now.names.end(), expected.begin(), expected.end());
            if (got != now.names.end() || wanted != expected.end()) {
                std::fprintf(stderr, "item %td is %s and not %s\n", got - now.names.begin(),
                             got == now.names.end() ? "missing" : got->c_str(),
                             wanted == expected.end() ? "missing" : wanted->c_str());
            }
            return true;
        });
        EXPECT_TRUE(reader.wait(LONGEST_LISTING_SECONDS + 5)) << "the listing does not end";
        EXPECT_EQ(problems(), "");
    }

    temporary_folder folder_;
};

// The names of a load, in order; the passing ones stand between the others.
std::vector<std::string> names_of(bool with_passing) {
    std::vector<std::string> names;
    for (unsigned i = 0; i < SHORT_NAMES; ++i) {
        names.push_back(padded("eth", i));
    }
    for (unsigned i = 0; i < LONG_NAMES; ++i) {
        names.push_back(padded(LONG_START, i));
    }
    for (unsigned i = 0; with_passing && i < PASSING_NAMES; ++i) {
        names.push_back(padded("eth", i * 3) + "-passing");
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string set_of(const std::vector<std::string> &names, std::uint32_t generation) {
    std::string set;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::size_t size = i % 7 == 0 ? 6000 : 40;  // some records take pages of their own
        set += interface_line(names[i], generation, size);
    }
    return set;
}

std::string lines_of(const std::vector<std::string> &names, std::uint32_t generation) {
    std::string set;
    for (const std::string &name : names) {
        set += interface_line(name, generation, 20);
    }
    return set;
}

TEST_F(ReadersBesideWriter, SeeEveryItemThatStaysOnceAndWhole) {
    constexpr std::uint32_t SETS = 40;
    const std::vector<std::string> staying = names_of(false);
    std::vector<std::string> sets;
    for (std::uint32_t i = 0; i < SETS; ++i) {
        sets.push_back(write_set("set" + std::to_string(i), set_of(names_of(i % 2 == 0), i + 1)));
    }
    ASSERT_TRUE(load(store(), sets[0]));
    std::vector<running_process> readers;
    for (unsigned i = 0; i < READERS; ++i) {
        readers.emplace_back([&, i] {
            enter_child();
            std::set<std::uint32_t> generations;
            unsigned listings = 0;
            double longest = 0;
            for (const auto start = stress_clock::now(); seconds_since(start) < LOADING_SECONDS; ++listings) {
                now = {};
                const auto begin = stress_clock::now();
                if (i % 2 == 0) {
                    const errcode code = list_interfaces(show_item);
                    now.problem += code == ERRCODE_SUCCESS ? "" : errcode_strerror(code);
                } else {
                    list_by_batches();
                }
                longest = std::max(longest, seconds_since(begin));
                if (!now.problem.empty() || !listed_all(staying)) {
                    std::fprintf(stderr, "%zu items: %s\n", now.names.size(), now.problem.c_str());
                    return false;
                }
                generations.insert(now.first_generation);
                generations.insert(now.last_generation);
            }
            if (generations.size() < 3 || listings < 3 || longest > LONGEST_LISTING_SECONDS) {
                std::fprintf(stderr, "%u listings, %zu loads seen, up to %f s\n", listings, generations.size(),
                             longest);
            }
            return true;
        });
    }
    // Later loads are newer: the sets are numbered, and a set is loaded once.
    const auto start = stress_clock::now();
    std::uint32_t loaded = 1;
    for (; loaded < SETS && seconds_since(start) < LOADING_SECONDS; ++loaded) {
        ASSERT_TRUE(load(store(), sets[loaded], loaded % 2 == 1)) << loaded;
        usleep(5000);
    }
    EXPECT_GT(loaded, 5U);
    for (running_process &reader : readers) {
        EXPECT_TRUE(reader.wait(LOADING_SECONDS + LONGEST_LISTING_SECONDS));
    }
    EXPECT_EQ(problems(), "");
}

// The interfaces that one run of the program printed, in `now`.
void read_shown(const command_result &show) {
    now = {};
    now.problem = show.err;
    std::istringstream names(show.out);
    for (std::string name; std::getline(names, name);) {
        record_shown(name, 0);
    }
}

TEST_F(ReadersBesideWriter, ShowEveryItemThatStaysOnce) {
    const std::vector<std::string> staying = names_of(false);
    std::vector<std::string> sets;
    for (std::uint32_t i = 0; i < 6; ++i) {
        sets.push_back(write_set("set" + std::to_string(i), set_of(names_of(i % 2 == 0), i + 1)));
    }
    ASSERT_TRUE(load(store(), sets[0]));
    looping_writer writer(store(), sets);
    unsigned shows = 0;
    for (const auto start = stress_clock::now(); seconds_since(start) < LOADING_SECONDS; ++shows) {
        read_shown(run_command("perf-show -c 1 -N 1 | sed -n 's/^Interface Name: \\(.*\\) (ifh: .*/\\1/p'", store()));
        ASSERT_EQ(now.problem, "");
        ASSERT_TRUE(listed_all(staying)) << now.names.size() << " items";
    }
    EXPECT_GE(shows, 3U);
    EXPECT_TRUE(writer.stop());
}

TEST_F(ReadersBesideWriter, GoOnAfterTheLastItemOfABatchWasRemoved) {
    std::vector<std::string> names;
    for (unsigned i = 0; i < 500; ++i) {
        names.push_back(padded("eth", i));
    }
    ASSERT_TRUE(load(store(), write_set("set", lines_of(names, 1))));
    expect_listing(STRESS_BATCH, "perf-store rm --root main --node 1 " + (STRESS_LISTED + names[STRESS_BATCH - 1]),
                   names);
}

TEST_F(ReadersBesideWriter, GoOnAfterTheLastItemOfABatchWasRemovedWithItsNeighbours) {
    std::vector<std::string> names;
    for (unsigned i = 0; i < 500; ++i) {
        names.push_back(padded("eth", i));
    }
    ASSERT_TRUE(load(store(), write_set("set", lines_of(names, 1))));
    std::string removed;
    for (unsigned i = 150; i < 250; ++i) {
        removed += " " + (STRESS_LISTED + names[i]);
    }
    std::vector<std::string> expected = names;
    expected.erase(expected.begin() + STRESS_BATCH, expected.begin() + 250);
    expect_listing(STRESS_BATCH, "perf-store rm --root main --node 1" + removed, expected);
}

TEST_F(ReadersBesideWriter, GoOnAfterALongNameWasRemoved) {
    std::vector<std::string> names;
    for (unsigned i = 0; i < 700; ++i) {
        names.push_back(padded(LONG_START, i));
    }
    ASSERT_TRUE(load(store(), write_set("set", lines_of(names, 1))));
    expect_listing(2 * STRESS_BATCH,
                   "perf-store rm --root main --node 1 " + (STRESS_LISTED + names[2 * STRESS_BATCH - 1]), names);
}

TEST_F(ReadersBesideWriter, GoOnAfterANameOfExactlyWhatACallerKeeps) {
    for (const std::size_t length : {OPSTORE_KEY_SIZE - 2, OPSTORE_KEY_SIZE - 1, OPSTORE_KEY_SIZE}) {
        const std::string last(length, 'f');
        std::vector<std::string> names;
        for (unsigned i = 0; i + 1 < STRESS_BATCH; ++i) {
            names.push_back(padded("eth", i));
        }
        names.push_back(last);
        for (unsigned i = 0; i < 300; ++i) {
            names.push_back(padded(last, i));
        }
        ASSERT_TRUE(load(store(), write_set("set", lines_of(names, 1)), true));
        expect_listing(STRESS_BATCH, "perf-store rm --root main --node 1 " + (STRESS_LISTED + last), names);
    }
}

TEST_F(ReadersBesideWriter, SeeWhatWasAddedBehindAndNotWhatWasAddedBefore) {
    for (const std::string &start : {std::string("eth"), LONG_START}) {
        std::vector<std::string> names;
        for (unsigned i = 0; i < 600; ++i) {
            names.push_back(padded(start, i));
        }
        ASSERT_TRUE(load(store(), write_set("set", lines_of(names, 1)), true));
        const std::string before = names[10] + "-added";
        const std::string next = names[STRESS_BATCH - 1] + "-added";  // continues the last name shown
        const std::string behind = names[450] + "-added";
        const std::string added = write_set("added", lines_of({before, next, behind}, 2));
        std::vector<std::string> expected = names;
        expected.insert(expected.begin() + 451, behind);
        expected.insert(expected.begin() + STRESS_BATCH, next);
        // All that follows becomes as new as what is added.
        const std::vector<std::string> following(names.begin() + STRESS_BATCH, names.end());
        const std::string rest = write_set("rest", lines_of(following, 2));
        expect_listing(STRESS_BATCH, "perf-store load " + added + " " + rest, expected);
    }
}

TEST_F(ReadersBesideWriter, DoNotSeeWhatWasRemovedBehindThem) {
    std::vector<std::string> names;
    for (unsigned i = 0; i < 600; ++i) {
        names.push_back(padded("eth", i));
    }
    ASSERT_TRUE(load(store(), write_set("set", lines_of(names, 1))));
    std::vector<std::string> expected = names;
    expected.erase(expected.begin() + 500);
    expected.erase(expected.begin() + STRESS_BATCH);
    expect_listing(STRESS_BATCH,
                   "perf-store rm --root main --node 1 " + (STRESS_LISTED + names[5]) + " " +
                       (STRESS_LISTED + names[STRESS_BATCH]) + " " + (STRESS_LISTED + names[500]),
                   expected);
}

TEST_F(ReadersBesideWriter, EndWhenAllThatFollowsIsGone) {
    std::vector<std::string> names;
    for (unsigned i = 0; i < 600; ++i) {
        names.push_back(padded("eth", i));
    }
    ASSERT_TRUE(load(store(), write_set("set", lines_of(names, 1))));
    const std::string fewer = write_set("fewer", lines_of({names[0]}, 2));
    names.resize(STRESS_BATCH);
    expect_listing(STRESS_BATCH, "perf-store load --replace " + fewer, names);
}

}  // namespace
