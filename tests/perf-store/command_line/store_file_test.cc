// SPDX-License-Identifier: Apache-2.0
// What a load does to the files of a store that it must not change, and to what others left in them.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <lmdb.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/local/back_ends/writers.h"
#include "tests/perf-store/command_line/perf_store_fixture.h"

namespace {

using perf_store_test::outcome;

constexpr std::uintmax_t PAGE = 4096;

// An interface with a text of `size` bytes.
std::string interface_item(const std::string &name, std::size_t size) {
    return R"({"item":{"root":"main","node":1,"path":"intf/detail/)" + name +
           R"(","type":"pm_intf_parcel","record":{"InterfaceName":")" + std::string(size, 'n') + "\"}}}\n";
}

class StoreFile : public perf_store_test::PerfStore {
protected:
    [[nodiscard]] std::string lock_file() const { return store() + "/lock.mdb"; }
    [[nodiscard]] std::uintmax_t size() const { return std::filesystem::file_size(data_file()); }
    [[nodiscard]] static std::filesystem::perms mode_of(const std::string &file) {
        return std::filesystem::status(file).permissions();
    }
};

// Makes an LMDB environment that is none of ours.
bool make_foreign_store(const std::string &folder) {
    MDB_env *env = nullptr;
    MDB_txn *txn = nullptr;
    MDB_dbi table = 0;
    MDB_val text{5, const_cast<char *>("other")};
    std::filesystem::create_directory(folder);
    const bool made = mdb_env_create(&env) == 0 && mdb_env_open(env, folder.c_str(), 0, 0600) == 0 &&
                      mdb_txn_begin(env, nullptr, 0, &txn) == 0 && mdb_dbi_open(txn, nullptr, 0, &table) == 0 &&
                      mdb_put(txn, table, &text, &text, 0) == 0 && mdb_txn_commit(txn) == 0;
    mdb_env_close(env);
    return made;
}

TEST_F(StoreFile, OfAnotherProgramIsLeftAsItIs) {
    using std::filesystem::perms;
    ASSERT_TRUE(make_foreign_store(store()));
    std::filesystem::permissions(data_file(), perms(0664));
    std::filesystem::permissions(lock_file(), perms(0600));
    const std::string content = perf_store_test::read_file(data_file());
    const outcome refused = load(interface_item("eth0", 10));
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.error.find("not a perf-show store"), std::string::npos) << refused.error;
    EXPECT_EQ(mode_of(data_file()), perms(0664));
    EXPECT_EQ(mode_of(lock_file()), perms(0600));
    EXPECT_TRUE(perf_store_test::read_file(data_file()) == content);
}

// Whether a page that was cut off matters depends on what it held; either way nothing may get lost silently.
TEST_F(StoreFile, ThatWasCutIsEitherWholeAfterALoadOrAsItWasBefore) {
    std::string set;
    for (int i = 0; i < 40; ++i) {
        set += interface_item("eth" + std::to_string(i), i % 4 == 0 ? 30000 : 100);
    }
    load_good(set);
    const std::string whole = dump();
    const std::string kept = folder() + "/kept.mdb";
    std::filesystem::copy_file(data_file(), kept);
    unsigned refusals = 0;
    for (std::uintmax_t pages = 1; pages <= 30; ++pages) {
        std::filesystem::copy_file(kept, data_file(), std::filesystem::copy_options::overwrite_existing);
        std::filesystem::resize_file(data_file(), std::filesystem::file_size(kept) - pages * PAGE);
        const std::uintmax_t cut = size();
        const outcome loaded = run({"load", "-"}, "");
        EXPECT_EQ(loaded.signal, 0);
        if (loaded.status == 0) {
            EXPECT_EQ(dump(), whole) << pages << " pages cut off";
        } else {
            EXPECT_EQ(size(), cut) << pages << " pages cut off";
            ++refusals;
        }
    }
    EXPECT_GT(refusals, 0U);
}

TEST_F(StoreFile, OfTheFolderThatWasOpenedIsTheOneThatIsCut) {
    load_good(interface_item("eth0", 10));
    const std::string url = "lmdb:" + store();
    const std::string moved = folder() + "/moved";
    const pid_t child = ::fork();
    if (child == 0) {
        std::unique_ptr<store::writer> writer;
        bool good = !store::open_writer(url.c_str(), store::missing_store::make, &writer);
        std::filesystem::rename(store(), moved);
        std::filesystem::create_directory(store());
        std::ofstream(data_file()) << std::string(100000, 'b');
        good = good && !writer->commit();
        std::_Exit(good ? 0 : 1);
    }
    int status = 1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(size(), 100000U);
    EXPECT_LT(std::filesystem::file_size(moved + "/data.mdb"), 1U << 20);
}

TEST_F(StoreFile, ThatAKilledLoadLeftLongIsCutByOneThatIsRefused) {
    load_good(interface_item("eth0", 10));
    const std::uintmax_t before = size();
    std::filesystem::resize_file(data_file(), std::uintmax_t{1} << 30);
    EXPECT_EQ(load("{\n").status, 1);
    EXPECT_EQ(size(), before);
    EXPECT_NE(dump().find("eth0"), std::string::npos);
}

TEST_F(StoreFile, ThatLocksIsNotMadeByAReader) {
    load_good(interface_item("eth0", 10));
    std::filesystem::remove(lock_file());
    EXPECT_NE(dump().find("eth0"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(lock_file()));
    load_good(interface_item("eth1", 10));
    EXPECT_NE(dump().find("eth1"), std::string::npos);
}

TEST_F(StoreFile, ThatMayNotGrowIsAnErrorAndNoSignal) {
    load_good(interface_item("eth0", 10));
    const std::string whole = dump();
    before_start([] {
        const rlimit limit{20 * PAGE, 20 * PAGE};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    });
    write("set.ndjson", interface_item("eth1", 60000));
    const outcome refused = run({"load", "set.ndjson"});
    EXPECT_EQ(refused.signal, 0);
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.error, "");
    EXPECT_EQ(dump(), whole);
}

}  // namespace
