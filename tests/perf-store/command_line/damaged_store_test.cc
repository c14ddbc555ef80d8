// SPDX-License-Identifier: Apache-2.0
// Stores that are not as they were written: cut short, overwritten, of another kind. A command says so
// in one line and ends with status 1, whatever it finds; no signal ever ends it.
#include "tests/perf-store/command_line/perf_store_fixture.h"

#include <lmdb.h>
#include <random>

#include "platform/local/codec/checksum.h"
#include "platform/local/codec/parcel_codec.h"
#include "platform/local/lmdb_store/table_state.h"
#include "platform/local/store/local_store_descriptors.h"
#include "platform/local/store/local_store_records.h"
#include "platform/local/store/seal.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"

namespace {

using namespace perf_store_test;
using namespace std::string_literals;

constexpr std::size_t PAGE = 4096;
constexpr std::size_t META_PAGES = 2;
constexpr std::size_t META_AT = 16;  // after the page's header
constexpr std::size_t META_SIZE = 136;
#ifdef PM_SANITIZE
constexpr std::size_t STRIDE = 5;  // the sanitizers' slow starts allow fewer kinds of damage
#else
constexpr std::size_t STRIDE = 1;
#endif

constexpr char ONE_MORE[] =
    R"({"item":{"root":"main","node":0,"path":"values/one-more","type":"pm_values_parcel","record":{}}})";

// A store of several pages: two levels of the tree, values beside their keys and values in pages of their own.
std::string many_items() {
    std::string set = R"({"platform":{"my_node":0}} )"
                      R"({"node":{"id":0,"name":"rp0"}} {"node":{"id":1,"name":"lc1"}} )"
                      R"({"interface":{"handle":1,"name":"eth0/1/0/4"}} )";
    for (int i = 0; i < 150; ++i) {
        set += R"({"item":{"root":"main","node":0,"path":"values/)" + std::to_string(i) +
               R"(","type":"pm_values_parcel","record":{"Average":)" + std::to_string(i) + "}}}\n";
    }
    for (int i = 0; i < 3; ++i) {
        set += R"({"item":{"root":"chkpt","node":0,"path":"scb/)" + std::to_string(i) +
               R"(","type":"pm_chkpt_scb_parcel","record":{"buf":")" + std::string(10000, 'a') + "\"}}}\n";
    }
    return set;
}

class DamagedStore : public PerfStore {
protected:
    void SetUp() override {
        PerfStore::SetUp();
        load_good(many_items());
        sound_ = read_file(data_file());
        sound_dump_ = dump();
        write("one-more.ndjson", ONE_MORE);
        ASSERT_GE(sound_.size(), 10 * PAGE);
    }

    [[nodiscard]] const std::string &sound() const { return sound_; }
    [[nodiscard]] const std::string &sound_dump() const { return sound_dump_; }

    // Another data file, and no trace of earlier commands.
    void put(const std::string &content) const {
        std::filesystem::remove_all(store());
        std::filesystem::create_directory(store());
        std::ofstream(data_file(), std::ios::binary) << content;
    }

    [[nodiscard]] outcome load_one_more() const { return run({"load", "one-more.ndjson"}); }

    // Ends by itself, and says in one line what is wrong if anything is.
    static void expect_survives(const outcome &ended, const std::string &what) {
        EXPECT_EQ(ended.signal, 0) << what << ": " << ended.error;
        if (ended.status == 0) {
            EXPECT_EQ(ended.error, "") << what;
        } else if (ended.signal == 0) {
            EXPECT_EQ(ended.status, 1) << what << ": " << ended.error;
            EXPECT_TRUE(is_one_line(ended.error)) << what << ": " << ended.error;
        }
    }

    static void expect_refuses(const outcome &ended, const std::string &what) {
        expect_survives(ended, what);
        EXPECT_NE(ended.status, 0) << what;
    }

    // Each command on a data file.
    void expect_all_refuse(const std::string &content, const std::string &what) const {
        for (const std::vector<std::string> &command :
             {std::vector<std::string>{"dump"}, {"stat"}, {"load", "one-more.ndjson"}}) {
            put(content);
            expect_refuses(run(command), command[0] + ", " + what);
        }
    }

private:
    std::string sound_;
    std::string sound_dump_;
};

TEST_F(DamagedStore, TheTestsOwnStoreIsSound) {
    put(sound());
    EXPECT_EQ(dump(), sound_dump());
    EXPECT_EQ(load_one_more().status, 0);
}

TEST_F(DamagedStore, CutShortIsRefused) {
    for (const std::size_t size :
         {1UL, 15UL, 16UL, 23UL, 24UL, 100UL, 4095UL, 4096UL, 4097UL, 8191UL, 8192UL, 8193UL}) {
        expect_all_refuse(sound().substr(0, size), std::to_string(size) + " bytes");
    }
}

TEST_F(DamagedStore, HalfOfItIsRefused) {
    const std::size_t half = sound().size() / 2;
    expect_all_refuse(sound().substr(0, half), "half");
    expect_all_refuse(sound().substr(0, half / PAGE * PAGE), "half of the pages");
    expect_all_refuse(sound().substr(0, half / PAGE * PAGE + 1), "half of the pages and a byte");
}

TEST_F(DamagedStore, EmptiedIsRefused) { expect_all_refuse("", "no bytes"); }

TEST_F(DamagedStore, CutAnywhereNeverGivesAnotherDump) {
    for (std::size_t size = META_PAGES * PAGE; size < sound().size(); size += PAGE / 2) {
        const std::string what = std::to_string(size) + " bytes";
        put(sound().substr(0, size));
        const outcome dumped = run({"dump"});
        expect_survives(dumped, what);
        EXPECT_TRUE(dumped.status != 0 || dumped.out == sound_dump()) << what;
        put(sound().substr(0, size));
        expect_survives(load_one_more(), what);
    }
}

TEST_F(DamagedStore, OtherFilesAreRefused) {
    expect_all_refuse("hello\n", "a short text");
    std::string text;
    while (text.size() < 100000) {
        text += "This is a text and not a store.\n";
    }
    expect_all_refuse(text, "a long text");
    expect_all_refuse(many_items(), "a data set");
    expect_all_refuse(std::string(16 * PAGE, '\0'), "zero bytes");
    expect_all_refuse(std::string(16 * PAGE, '\xFF'), "bytes of ones");
}

std::string noise(std::size_t size, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    std::string bytes(size, '\0');
    for (char &byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

TEST_F(DamagedStore, OverwrittenByNoiseIsRefused) {
    for (std::uint64_t seed = 0; seed < 8; ++seed) {
        expect_all_refuse(noise(sound().size(), seed), "noise " + std::to_string(seed));
        expect_all_refuse(sound().substr(0, META_PAGES * PAGE) + noise(sound().size() - META_PAGES * PAGE, seed),
                          "noise after the head, " + std::to_string(seed));
    }
}

TEST_F(DamagedStore, NoiseInThePlaceOfOnePageNeverGivesAnotherDump) {
    for (std::size_t page = 0; page < sound().size() / PAGE; ++page) {
        const std::string what = "page " + std::to_string(page);
        std::string damaged = sound();
        damaged.replace(page * PAGE, PAGE, noise(PAGE, page));
        put(damaged);
        const outcome dumped = run({"dump"});
        expect_survives(dumped, what);
        EXPECT_TRUE(dumped.status != 0 || dumped.out == sound_dump()) << what;
        put(damaged);
        expect_survives(load_one_more(), what);
    }
}

// Pages that a dump needs not are the tree of free pages, and those that are free.
TEST_F(DamagedStore, AZeroedPageNeverGivesAnotherDump) {
    std::size_t noticed = 0;
    const std::size_t pages = sound().size() / PAGE;
    for (std::size_t page = 0; page < pages; ++page) {
        const std::string what = "page " + std::to_string(page);
        std::string damaged = sound();
        damaged.replace(page * PAGE, PAGE, PAGE, '\0');
        put(damaged);
        const outcome dumped = run({"dump"});
        expect_survives(dumped, what);
        EXPECT_TRUE(dumped.status != 0 || dumped.out == sound_dump()) << what;
        noticed += dumped.status != 0 ? 1 : 0;
        put(damaged);
        expect_survives(load_one_more(), what);
    }
    EXPECT_GE(noticed, pages / 2) << "of " << pages << " pages";
}

TEST_F(DamagedStore, EveryByteOfItsHeadMayBeWrong) {
    for (std::size_t at = META_AT; at < META_AT + META_SIZE; at += STRIDE) {
        for (const char byte : {'\x00', '\xFF'}) {
            const std::string what =
                "byte " + std::to_string(at) + " set to " + std::to_string(static_cast<unsigned char>(byte));
            std::string damaged = sound();
            damaged[at] = byte;
            damaged[PAGE + at] = byte;
            put(damaged);
            expect_survives(run({"dump"}), "dump, " + what);
            put(damaged);
            expect_survives(load_one_more(), "load, " + what);
        }
    }
}

// The bits of an item's path, of its link, of its seal and of its parcel stand together in the file.
TEST_F(DamagedStore, AChangedBitOfAnItemIsAlwaysNoticed) {
    constexpr std::size_t LENGTH =
        15 + 8 + 8 + 55;  // path, link, seal, and a parcel: header, versions, name and fields
    use_store("small");
    load_good(ONE_MORE);
    const std::string small = read_file(folder() + "/small/data.mdb");
    use_store("store");
    const std::size_t path = small.find("values/one-more");
    ASSERT_NE(path, std::string::npos);
    ASSERT_EQ(small.find("values/one-more", path + 1), std::string::npos) << "the item is there once";
    ASSERT_EQ(small.substr(path + LENGTH - 55, 4), "PMP\x01");
    for (std::size_t at = 0; at < LENGTH; ++at) {
        std::string damaged = small;
        damaged[path + at] = static_cast<char>(damaged[path + at] ^ (1 << at % 8));
        put(damaged);
        expect_refuses(run({"dump"}), "byte " + std::to_string(at));
    }
}

TEST_F(DamagedStore, ACommandThatFoundDamageLeavesTheLockFree) {
    std::string damaged = sound().substr(0, META_PAGES * PAGE);
    put(damaged);
    expect_refuses(load_one_more(), "load");
    std::ofstream(data_file(), std::ios::binary) << sound();  // the lock file stays
    EXPECT_EQ(dump(), sound_dump());
    EXPECT_EQ(load_one_more().status, 0);
}

TEST_F(DamagedStore, ALockFileOfAnotherKindNeverEndsACommandBySignal) {
    for (const std::string &content : {""s, "hello\n"s, std::string(8192, '\xFF'), noise(8192, 1)}) {
        for (const std::vector<std::string> &command :
             {std::vector<std::string>{"dump"}, {"load", "one-more.ndjson"}}) {
            put(sound());
            std::ofstream(store() + "/lock.mdb", std::ios::binary) << content;
            expect_survives(run(command),
                            command[0] + " with a lock file of " + std::to_string(content.size()) + " bytes");
        }
    }
}

TEST_F(DamagedStore, AFolderInThePlaceOfTheDataFileIsRefused) {
    for (const std::vector<std::string> &command :
         {std::vector<std::string>{"dump"}, {"stat"}, {"load", "one-more.ndjson"}}) {
        std::filesystem::remove_all(store());
        std::filesystem::create_directories(data_file());
        expect_refuses(run(command), command[0]);
    }
}

TEST_F(DamagedStore, AFileInThePlaceOfTheFolderIsRefused) {
    use_url("lmdb:" + data_file());
    for (const std::vector<std::string> &command :
         {std::vector<std::string>{"dump"}, {"stat"}, {"load", "one-more.ndjson"}}) {
        expect_refuses(run(command), command[0]);
    }
}

// Environments that are sound for LMDB, and no stores of ours ------------------------------------

class OtherStore : public DamagedStore {
protected:
    // Writes a store of these keys and values, linked as a store's are.
    void make_linked(const std::vector<std::pair<std::string, std::string>> &content) const {
        std::vector<std::pair<std::string, std::string>> linked{{"F", lmdb_store::FORMAT}};
        for (const auto &[key, value] : content) {
            linked.emplace_back(key, link(linked.back().first, key) + value);
        }
        linked.emplace_back("Z", link(linked.back().first, "Z") + "\1\0\0\0\0\0\0\0"s);  // the first transaction
        make(linked);
    }

    static std::string link(const std::string &before, const std::string &key) {
        const std::uint64_t sum =
            checksum(before.data(), before.size()) * 0x9e3779b97f4a7c15 + checksum(key.data(), key.size());
        return {reinterpret_cast<const char *>(&sum), sizeof sum};
    }

    // Writes an environment of these keys and values in the store's place.
    void make(const std::vector<std::pair<std::string, std::string>> &content) const {
        std::filesystem::remove_all(store());
        std::filesystem::create_directory(store());
        MDB_env *env = nullptr;
        MDB_txn *txn = nullptr;
        MDB_dbi table = 0;
        ASSERT_EQ(mdb_env_create(&env), 0);
        ASSERT_EQ(mdb_env_open(env, store().c_str(), 0, 0644), 0);
        ASSERT_EQ(mdb_txn_begin(env, nullptr, 0, &txn), 0);
        ASSERT_EQ(mdb_dbi_open(txn, nullptr, 0, &table), 0);
        for (const auto &[key, value] : content) {
            MDB_val to{key.size(), const_cast<char *>(key.data())};
            MDB_val bytes{value.size(), const_cast<char *>(value.data())};
            ASSERT_EQ(mdb_put(txn, table, &to, &bytes, 0), 0);
        }
        ASSERT_EQ(mdb_txn_commit(txn), 0);
        mdb_env_close(env);
    }

    void expect_stays_refused() const {
        const std::string before = read_file(data_file());
        const std::vector<std::vector<std::string>> commands = {
            {"dump"}, {"stat"}, {"load", "one-more.ndjson"}, {"load", "--replace", "one-more.ndjson"}};
        for (const std::vector<std::string> &command : commands) {
            const outcome refused = run(command);
            expect_refuses(refused, command[0]);
            EXPECT_TRUE(read_file(data_file()) == before) << command[0] << " has changed it";
        }
    }
};

using key_and_value = std::pair<std::string, std::string>;

// A record as the store's writer would put it under the key.
key_and_value record_under(const std::string &key, const void *record, const parcel_descriptor *type) {
    std::vector<std::uint8_t> parcel;
    std::vector<std::uint8_t> value;
    EXPECT_EQ(parcel_encode(record, type, &parcel), ERRCODE_SUCCESS);
    store::seal(key, {reinterpret_cast<const char *>(parcel.data()), parcel.size()}, &value);
    return {key, {value.begin(), value.end()}};
}

TEST_F(OtherStore, WithoutOurFormatIsRefusedAndStaysAsItIs) {
    make({{"some key", "some value"}});
    expect_stays_refused();
    make({{"A", ""}, {"Z", std::string(100000, 'z')}});
    expect_stays_refused();
}

TEST_F(OtherStore, OfAnotherFormatIsRefusedAndStaysAsItIs) {
    for (const char *format : {"", "perf-show opstore", "perf-show opstore 3", "perf-show opstore 10"}) {
        SCOPED_TRACE(format);
        make({{"F", format}});
        expect_stays_refused();
    }
}

TEST_F(OtherStore, WithKeysOfAnyLengthNeverEndsACommandBySignal) {
    const local_publisher running{0, nullptr};
    for (const std::string &key :
         {"I"s, "Im"s, "Im\0\0\0"s, "Im\0\0\0\0"s, "I?\0\0\0\0a"s, "U"s, "Um"s, "Um\0\0\0"s, "Um\0\0\0\0a"s,
          "U?\0\0\0\0"s, "N"s, "N\0"s, "N\0\0\0\0\0"s, "H"s, "H\0"s, "Px"s, "S"s}) {
        const key_and_value sealed = record_under(key, &running, local_publisher_descriptor());
        for (const std::string &content : {""s, "x"s, sealed.second}) {
            make_linked({{key, content}});
            const std::string what = "key of " + std::to_string(key.size()) + " bytes, " + key.substr(0, 2) +
                                     ", value of " + std::to_string(content.size());
            expect_survives(run({"dump"}), "dump, " + what);
            expect_survives(run({"stat"}), "stat, " + what);
            expect_survives(load_one_more(), "load, " + what);
        }
    }
}

// A record is sealed by whoever writes it, so its texts may be anything.
TEST_F(OtherStore, WithAnyNameOfAPartnerNeverEndsACommandBySignal) {
    for (const char *group : {static_cast<const char *>(nullptr), "", "a\"b", "K\xF6ln"}) {
        local_partner partner{group, 1};
        local_platform platform{};
        platform.Partners = {1, &partner};
        make_linked({record_under("P", &platform, local_platform_descriptor())});
        const outcome dumped = run({"dump"});
        expect_survives(dumped, "dump");
        EXPECT_EQ(dumped.out.find("\"a\"b\""), std::string::npos) << dumped.out << " is no JSON";
        EXPECT_EQ(dumped.out.find('\xF6'), std::string::npos) << "the dump is no UTF-8";
        expect_survives(load_one_more(), "load");
    }
}

// Texts of a record that JSON cannot hold: what was written before it is whole lines.
TEST_F(OtherStore, WithATextThatIsNotUtf8GivesNoPartOfItsLine) {
    const std::string good = "Im\0\0\0\0good"s;
    const std::string bad = "Im\0\0\0\0later"s;
    pm_intf_parcel record{};
    record.InterfaceName = "eth0";
    const key_and_value first = record_under(good, &record, pm_intf_parcel_descriptor());
    record.InterfaceHandle = 7;
    record.InterfaceName = "K\xF6ln";
    make_linked({first, record_under(bad, &record, pm_intf_parcel_descriptor())});
    const std::string error = "perf-store: main 0 later: a text is not UTF-8\n";
    const std::string sound =
        R"({"item":{"root":"main","node":0,"path":"good","type":"pm_intf_parcel","record":{"InterfaceName":"eth0"}}})"
        "\n";
    const outcome dumped = run({"dump"});
    EXPECT_EQ(dumped.status, 1);
    EXPECT_EQ(dumped.error, error);
    EXPECT_EQ(dumped.out, "{\"dataset\":{\"version\":1}}\n" + sound);
    const outcome got = run({"get", "--root", "main", "--node", "0", "later"});
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.error, error);
    EXPECT_EQ(got.out, "");
    EXPECT_EQ(run({"get", "--root", "main", "--node", "0", "good"}).status, 0);
    local_node node{};
    node.Name = "K\xF6ln";
    make_linked({record_under("N\0\0\0\0"s, &node, local_node_descriptor())});
    const outcome nodes = run({"dump"});
    EXPECT_EQ(nodes.status, 1);
    EXPECT_EQ(nodes.error, "perf-store: node: a text is not UTF-8\n");
    EXPECT_EQ(nodes.out, "{\"dataset\":{\"version\":1}}\n");
}

TEST_F(OtherStore, OfAnUnknownPublisherStateIsRefused) {
    const local_publisher unknown{4, nullptr};
    make_linked({record_under("Um\0\0\0\0"s, &unknown, local_publisher_descriptor())});
    expect_refuses(run({"dump"}), "dump");
}

TEST_F(OtherStore, WithARecordOfAnotherTypeInItsPlaceIsRefused) {
    const local_publisher running{0, nullptr};
    for (const std::string &key : {"P"s, "N\0\0\0\0"s, "H\0\0\0\1"s, "Im\0\0\0\0a"s}) {
        make_linked({record_under(key, &running, local_publisher_descriptor())});
        expect_refuses(run({"dump"}), key.substr(0, 1));
    }
}

TEST_F(OtherStore, WithAnItemThatIsNoParcelNamesTheItem) {
    const std::string key = "Im\0\0\1\0scb/eth0"s;
    for (const std::string &parcel : {""s, "hello"s, "PMP\x01"s, noise(100, 1)}) {
        std::vector<std::uint8_t> value;
        store::seal(key, parcel, &value);
        make_linked({{key, {value.begin(), value.end()}}});
        const outcome dumped = run({"dump"});
        expect_refuses(dumped, "dump");
        EXPECT_NE(dumped.error.find("scb/eth0"), std::string::npos) << dumped.error;
    }
}

TEST_F(OtherStore, AnEmptyEnvironmentBecomesAStore) {
    make({});
    expect_refuses(run({"dump"}), "dump");
    EXPECT_EQ(load_one_more().status, 0);
    EXPECT_EQ(dump(), R"({"dataset":{"version":1}})"
                      "\n"
                      R"({"publisher":{"root":"main","node":0,"state":"running"}})"
                      "\n"
                      R"({"item":{"root":"main","node":0,"path":"values/one-more","type":"pm_values_parcel",)"
                      R"("record":{}}})"
                      "\n");
}

}  // namespace
