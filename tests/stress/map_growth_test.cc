// SPDX-License-Identifier: Apache-2.0
// A reader whose map is smaller than what a writer has made of the store since.
#include <gtest/gtest.h>
#include <lmdb.h>
#include <sys/resource.h>

#include "tests/stress/stress_support.h"

namespace {

constexpr std::size_t SMALL_MAP = 256 * 1024;
constexpr unsigned ITEMS = 4000;

unsigned shown = 0;
bool whole = true;

int check_item(const void *decoded_parcel) {
    if (decoded_parcel == nullptr) {
        return PM_SHOW_NOTHING;
    }
    std::uint32_t generation = 0;
    const auto &record = *static_cast<const pm_intf_parcel *>(decoded_parcel);
    whole = whole && whole_generation(record, &generation) && record.InterfaceName == padded("eth", shown);
    ++shown;
    return PM_SHOW_NOTHING;
}

// Makes a store whose map is small, as a program with another configuration would.
bool make_small_store(const std::string &folder) {
    MDB_env *env = nullptr;
    MDB_txn *txn = nullptr;
    MDB_dbi table = 0;
    std::string format = lmdb_store::FORMAT;
    MDB_val name = lmdb_store::to_value(lmdb_store::FORMAT_KEY);
    MDB_val value{format.size(), format.data()};
    std::uint64_t end_record[] = {lmdb_store::link_between(lmdb_store::FORMAT_KEY, lmdb_store::END_KEY),
                                  1};  // of the first transaction
    MDB_val end = lmdb_store::to_value(lmdb_store::END_KEY);
    MDB_val end_value{sizeof end_record, end_record};
    return mdb_env_create(&env) == 0 && mdb_env_set_mapsize(env, SMALL_MAP) == 0 &&
           mdb_env_set_maxreaders(env, lmdb_store::MAX_READERS) == 0 &&
           mdb_env_open(env, folder.c_str(), 0, 0640) == 0 && mdb_txn_begin(env, nullptr, 0, &txn) == 0 &&
           mdb_dbi_open(txn, nullptr, 0, &table) == 0 && mdb_put(txn, table, &name, &value, 0) == 0 &&
           mdb_put(txn, table, &end, &end_value, 0) == 0 && mdb_txn_commit(txn) == 0;
}

TEST(MapGrowth, IsFollowedByAReaderThatOpenedTheStoreBefore) {
    const temporary_folder folder;
    const std::string store = folder.path() + "/store";
    std::filesystem::create_directory(store);
    ASSERT_TRUE(in_child([&] { return make_small_store(store); }));
    std::string set;
    std::string more;
    for (unsigned i = 0; i < ITEMS; ++i) {
        (i < 300 ? set : more) += interface_line(padded("eth", i), 1, 100);
    }
    write_file(folder.path() + "/set", set);
    write_file(folder.path() + "/more", more);
    running_process reader([&] {
        setenv("OPSTORE_URL", ("lmdb:" + store).c_str(), 1);
        static_cast<void>(!std::freopen("/dev/null", "w", stdout));
        store::reader *from = nullptr;
        store::census ignored;
        // Opens the store while its map is small.
        bool good = !store::shared_reader(&from) && !from->count(&ignored);
        good = good && run_command("perf-store load " + folder.path() + "/set", store).status == 0;
        good = good && list_interfaces(check_item) == ERRCODE_SUCCESS && shown == 300;
        shown = 0;
        good = good && run_command("perf-store load " + folder.path() + "/more", store).status == 0;
        return good && size_of(store) > 2 * SMALL_MAP && list_interfaces(check_item) == ERRCODE_SUCCESS &&
               shown == ITEMS && whole;
    });
    EXPECT_TRUE(reader.wait(10));
}

// As above, by a reader whose address space is smaller than the map.
TEST(MapGrowth, IsFollowedWithinALimitedAddressSpace) {
#ifdef PM_SANITIZE
    GTEST_SKIP() << "the sanitizer needs all of the address space";
#endif
    const temporary_folder folder;
    const std::string store = folder.path() + "/store";
    std::string set;
    for (unsigned i = 0; i < ITEMS; ++i) {
        set += interface_line(padded("eth", i), 1, 100);
    }
    write_file(folder.path() + "/few", interface_line(padded("eth", 0), 1, 100));
    write_file(folder.path() + "/set", set);
    ASSERT_TRUE(load(store, folder.path() + "/few"));
    running_process reader([&] {
        constexpr rlimit LIMIT{std::size_t{3} << 30, std::size_t{3} << 30};
        setenv("OPSTORE_URL", ("lmdb:" + store).c_str(), 1);
        static_cast<void>(!std::freopen("/dev/null", "w", stdout));
        bool good = setrlimit(RLIMIT_AS, &LIMIT) == 0 && list_interfaces(check_item) == ERRCODE_SUCCESS && shown == 1;
        shown = 0;
        good = good && run_command("perf-store load " + folder.path() + "/set", store).status == 0;
        return good && list_interfaces(check_item) == ERRCODE_SUCCESS && shown == ITEMS && whole;
    });
    EXPECT_TRUE(reader.wait(10));
}

std::string growing_store;
std::string growing_set;
bool grown = false;

int grow_then_check(const void *decoded_parcel) {
    const int result = check_item(decoded_parcel);
    if (shown == STRESS_BATCH && !grown) {
        grown = run_command("perf-store load " + growing_set, growing_store).status == 0;
    }
    return result;
}

TEST(MapGrowth, IsFollowedBetweenTwoBatches) {
    const temporary_folder folder;
    growing_store = folder.path() + "/store";
    growing_set = folder.path() + "/more";
    std::filesystem::create_directory(growing_store);
    std::string set;
    std::string more;
    for (unsigned i = 0; i < ITEMS; ++i) {
        (i < 250 ? set : more) += interface_line(padded("eth", i), 1, 100);
    }
    write_file(folder.path() + "/set", set);
    write_file(growing_set, more);
    ASSERT_TRUE(in_child([&] { return make_small_store(growing_store); }));
    running_process reader([&] {
        setenv("OPSTORE_URL", ("lmdb:" + growing_store).c_str(), 1);
        static_cast<void>(!std::freopen("/dev/null", "w", stdout));
        store::reader *from = nullptr;
        return !store::shared_reader(&from) &&
               run_command("perf-store load " + folder.path() + "/set", growing_store).status == 0 &&
               list_interfaces(grow_then_check) == ERRCODE_SUCCESS && grown && shown == ITEMS && whole;
    });
    EXPECT_TRUE(reader.wait(10));
}

}  // namespace
