// SPDX-License-Identifier: Apache-2.0
// verify, dump --damaged and load --replace: what is wrong with a store, what is left of it, and the way out.
#include "tests/perf-store/command_line/perf_store_fixture.h"

#include <lmdb.h>

namespace {

using namespace perf_store_test;

constexpr std::size_t PAGE = 4096;

std::string value_line(int number) {
    const std::string digits = std::to_string(number);
    return R"({"item":{"root":"main","node":0,"path":"values/)" + digits +
           R"(","type":"pm_values_parcel","record":{"Average":)" + digits + "}}}\n";
}

constexpr char HEAD[] =
    "{\"dataset\":{\"version\":1}}\n"
    "{\"publisher\":{\"root\":\"main\",\"node\":0,\"state\":\"running\"}}\n";

class Verify : public PerfStore {
protected:
    void SetUp() override {
        PerfStore::SetUp();
        std::string set;
        for (int i = 100; i < 300; ++i) {
            set += value_line(i);
        }
        load_good(set);
        sound_ = read_file(data_file());
    }

    // Another content of the data file.
    void put(const std::string &content) const { std::ofstream(data_file(), std::ios::binary) << content; }
    [[nodiscard]] const std::string &sound() const { return sound_; }

    // Where an item's parcel has its fields: at the end of the page's node.
    [[nodiscard]] std::size_t place_of(const std::string &path) const { return sound_.rfind(path); }

    [[nodiscard]] std::string with_damaged_parcel() const {
        std::string damaged = sound_;
        damaged[place_of("values/250") + 10 + 16 + 30] ^= 1;  // after path, link and seal
        return damaged;
    }

private:
    std::string sound_;
};

TEST_F(Verify, ASoundStoreHasNoErrors) {
    const outcome verified = run({"verify"});
    EXPECT_EQ(verified.status, 0);
    EXPECT_EQ(verified.error, "");
    EXPECT_EQ(verified.out, "203 records, 0 errors\n");  // 200 items, a publisher, two schemas
}

TEST_F(Verify, ASoundStoreIsDumpedAsEver) {
    const outcome dumped = run({"dump", "--damaged"});
    EXPECT_EQ(dumped.status, 0);
    EXPECT_EQ(dumped.error, "");
    load_good(value_line(1));  // the order of the lines is another one, so another store is made of them
    write("saved", dumped.out);
    EXPECT_EQ(run({"load", "--replace", "saved"}).status, 0);
    EXPECT_EQ(run({"dump", "--damaged"}).out, dumped.out);
}

TEST_F(Verify, ADamagedItemIsNamedAndTheOthersAreKept) {
    put(with_damaged_parcel());
    const std::string error = "perf-store: main 0 values/250: Parcel checksum mismatch\n";
    const outcome verified = run({"verify"});
    EXPECT_EQ(verified.status, 1);
    EXPECT_EQ(verified.error, error);
    EXPECT_EQ(verified.out, "203 records, 1 errors\n");
    const outcome saved = run({"dump", "--damaged"});
    EXPECT_EQ(saved.status, 1);
    EXPECT_EQ(saved.error, error);
    EXPECT_EQ(saved.out.find("values/250"), std::string::npos);
    EXPECT_NE(saved.out.find(value_line(249)), std::string::npos);
    EXPECT_NE(saved.out.find(value_line(251)), std::string::npos);
    EXPECT_EQ(std::count(saved.out.begin(), saved.out.end(), '\n'), 201);  // version, publisher, 199 items
}

TEST_F(Verify, ALostPageIsNamedWithTheItemsAroundIt) {
    const std::size_t page = place_of("values/200") / PAGE;
    std::string damaged = sound();
    damaged.replace(page * PAGE, PAGE, PAGE, '\0');
    put(damaged);
    const outcome verified = run({"verify"});
    EXPECT_EQ(verified.status, 1);
    EXPECT_NE(verified.error.find("perf-store: page " + std::to_string(page) + " is damaged\n"), std::string::npos)
        << verified.error;
    EXPECT_NE(verified.error.find(": records are missing, those after main 0 values/"), std::string::npos)
        << verified.error;
    const outcome saved = run({"dump", "--damaged"});
    EXPECT_EQ(saved.status, 1);
    EXPECT_NE(saved.out.find(value_line(100)), std::string::npos);
    EXPECT_NE(saved.out.find(value_line(299)), std::string::npos);
    EXPECT_EQ(saved.out.find(value_line(200)), std::string::npos);
}

TEST_F(Verify, ADamagedStoreIsReplaced) {
    std::string damaged = sound();
    damaged.replace(2 * PAGE, damaged.size() - 2 * PAGE, damaged.size() - 2 * PAGE, '\xFF');
    for (const std::string &content : {damaged, sound().substr(0, 3 * PAGE)}) {
        put(content);
        write("set.ndjson", value_line(7));
        EXPECT_EQ(run({"load", "set.ndjson"}).status, 1) << "it is refused without --replace";
        const outcome loaded = run({"load", "--replace", "set.ndjson"});
        EXPECT_EQ(loaded.status, 0) << loaded.error;
        EXPECT_EQ(dump(), HEAD + value_line(7));
        EXPECT_EQ(run({"verify"}).status, 0);
    }
}

TEST_F(Verify, AnItemOfAnotherTypeThanItsPathHas) {
    load_good(R"({"item":{"root":"main","node":16,"path":"summary","type":"pm_values_parcel","record":{}}})");
    const outcome verified = run({"verify"});
    EXPECT_EQ(verified.status, 1);
    EXPECT_EQ(verified.error, "perf-store: main 0x10 summary: a pm_values_parcel where a pm_summary_parcel belongs\n");
}

TEST_F(Verify, WithoutAStoreThereIsNothingToVerify) {
    use_store("none");
    const outcome verified = run({"verify"});
    EXPECT_EQ(verified.status, 1);
    EXPECT_EQ(verified.error, "perf-store: lmdb:" + folder() + "/none: Store client not available\n");
    EXPECT_EQ(verified.out, "");
}

TEST_F(Verify, TheWholeStoreIsDumpedOrAPart) { EXPECT_EQ(run({"dump", "--damaged", "--root", "main"}).status, 2); }

// Records without links, as an earlier program wrote them.
TEST_F(Verify, AStoreOfAnEarlierFormatIsReplaced) {
    std::filesystem::remove_all(store());
    std::filesystem::create_directory(store());
    MDB_env *env = nullptr;
    MDB_txn *txn = nullptr;
    MDB_dbi table = 0;
    std::string format = "perf-show opstore 1";
    MDB_val key{1, const_cast<char *>("F")};
    MDB_val value{format.size(), format.data()};
    ASSERT_EQ(mdb_env_create(&env), 0);
    ASSERT_EQ(mdb_env_open(env, store().c_str(), 0, 0644), 0);
    ASSERT_EQ(mdb_txn_begin(env, nullptr, 0, &txn), 0);
    ASSERT_EQ(mdb_dbi_open(txn, nullptr, 0, &table), 0);
    ASSERT_EQ(mdb_put(txn, table, &key, &value, 0), 0);
    ASSERT_EQ(mdb_txn_commit(txn), 0);
    mdb_env_close(env);
    const std::string error = "perf-store: " + store() +
                              ": a store of an earlier format; load its data set again with " +
                              "perf-store load --replace\n";
    write("set.ndjson", value_line(7));
    EXPECT_EQ(run({"dump"}).error, error);
    EXPECT_EQ(run({"load", "set.ndjson"}).error, error);
    EXPECT_EQ(run({"load", "--replace", "set.ndjson"}).status, 0);
    EXPECT_EQ(dump(), HEAD + value_line(7));
}

}  // namespace
