// SPDX-License-Identifier: Apache-2.0
// Damaged, foreign and missing stores: a clear message from both programs, never a signal.
#include <gtest/gtest.h>
#include <lmdb.h>
#include <map>
#include <random>
#include <string>

#include "tests/support/child_process.h"
#include "tests/support/command.h"

namespace {

constexpr std::size_t PAGE = 4096;
#ifdef PM_SANITIZE
constexpr std::size_t STRIDE = 9;  // the sanitizers' slow starts allow fewer kinds of damage
#else
constexpr std::size_t STRIDE = 1;
#endif

class DamagedStore : public testing::Test {
protected:
    // A store of the example chassis and 300 summaries on other nodes, so that the tree has depth.
    static void SetUpTestSuite() {
        folder_ = new temporary_folder;
        std::string set = read_file(PM_EXAMPLE);
        for (int node = 1000; node < 1300; ++node) {
            const std::string id = std::to_string(node);
            set += R"({"node":{"id":)" + id + R"(,"name":"lc)" + id + R"("}})" + "\n";
            set += R"({"item":{"root":"main","node":)" + id +
                   R"(,"path":"summary","type":"pm_summary_parcel","record":{"TotalInterfaces":)" + id + "}}}\n";
        }
        write_file(folder_->path() + "/set", set);
        const command_result loaded = run_command("perf-store load " + folder_->path() + "/set", store());
        ASSERT_EQ(loaded.status, 0) << loaded.err;
        sound_ = read_file(store() + "/data.mdb");
        ASSERT_GT(sound_.size(), 20 * PAGE);
        sound_output_ = run_command("perf-show -c 9", store()).out;
        ASSERT_NE(sound_output_.find("lc1299"), std::string::npos);
    }
    static void TearDownTestSuite() { delete folder_; }

    static std::string store() { return folder_->path() + "/store"; }

    // A show's output by node.
    static std::map<std::string, std::string> sections(const std::string &output) {
        const std::string rule(160, '-');
        std::map<std::string, std::string> result;
        std::size_t at = output.find(rule);
        while (at != std::string::npos) {
            const std::size_t name = at + rule.size() + 1;
            const std::size_t name_end = output.find('\n', name);
            const std::size_t body = name_end + 1 + rule.size() + 1;
            at = body < output.size() ? output.find("\n" + rule, body) : std::string::npos;
            std::string text = output.substr(body, at == std::string::npos ? at : at - body);
            text.erase(text.find_last_not_of('\n') + 1);  // the last one ends with the walk's own line
            result[output.substr(name, name_end - name)] = text;
            at = at == std::string::npos ? at : at + 1;
        }
        return result;
    }

    // Both programs on a store with these bytes: they end by themselves, and a record that is shown is
    // the right one. A node whose record is lost says so or shows nothing.
    static void expect_defined(const std::string &bytes, const std::string &what) {
        write_file(store() + "/data.mdb", bytes);
        const command_result show = run_command("perf-show -c 9", store());
        EXPECT_EQ(show.signal, 0) << what;
        EXPECT_EQ(show.status, 0) << what << ": " << show.err;
        const auto sound = sections(sound_output_);
        for (const auto &[node, text] : sections(show.out)) {
            const bool right = sound.contains(node) && sound.at(node) == text;
            const bool lost = text.find("Measurement Information") == std::string::npos;
            EXPECT_TRUE(right || lost) << what << ": another record of " << node << "\n" << text;
        }
        const command_result dump = run_command("perf-store dump", store());
        EXPECT_EQ(dump.signal, 0) << what;
        EXPECT_TRUE(dump.status == 0 || (dump.status == 1 && !dump.err.empty())) << what << ": " << dump.status;
    }

    static temporary_folder *folder_;
    static std::string sound_;
    static std::string sound_output_;
};

temporary_folder *DamagedStore::folder_ = nullptr;
std::string DamagedStore::sound_;
std::string DamagedStore::sound_output_;

TEST_F(DamagedStore, CutShortAtAnyPageIsExplained) {
    for (std::size_t size = 0; size < sound_.size(); size += PAGE * 3 * STRIDE) {
        expect_defined(sound_.substr(0, size), "cut to " + std::to_string(size));
    }
    for (const std::size_t size : {1UL, 100UL, PAGE - 1, PAGE, PAGE + 1, 2 * PAGE - 1, 2 * PAGE, 2 * PAGE + 7}) {
        expect_defined(sound_.substr(0, size), "cut to " + std::to_string(size));
    }
}

TEST_F(DamagedStore, WithAZeroedPageIsExplained) {
    for (std::size_t at = 0; at < sound_.size(); at += PAGE * STRIDE) {
        std::string bytes = sound_;
        bytes.replace(at, PAGE, PAGE, '\0');
        expect_defined(bytes, "zeroed at " + std::to_string(at));
    }
}

TEST_F(DamagedStore, OverwrittenWithNoiseIsExplained) {
    std::mt19937 random(5);
    for (std::size_t round = 0; round < 150 / STRIDE; ++round) {
        std::string bytes = sound_;
        const std::size_t at = random() % (bytes.size() - 64);
        for (std::size_t i = 0; i < 64; ++i) {
            bytes[at + i] = static_cast<char>(random());
        }
        expect_defined(bytes, "noise at " + std::to_string(at));
    }
}

TEST_F(DamagedStore, OfNoiseOnlyIsExplained) {
    std::mt19937 random(6);
    std::string bytes(sound_.size(), '\0');
    for (char &byte : bytes) {
        byte = static_cast<char>(random());
    }
    expect_defined(bytes, "all noise");
}

constexpr char DAMAGED[] = " generic_show_node_walker: invd_get_inventory failed: Store is damaged (0x8081c400)\n";
constexpr char MISSING[] =
    " generic_show_node_walker: invd_get_inventory failed: Store client not available (0x8081c200)\n";

TEST_F(DamagedStore, OfAnotherKindIsRefusedByBothPrograms) {
    write_file(store() + "/data.mdb", std::string(10'000, 'x'));
    const command_result show = run_command("perf-show -c 9", store());
    EXPECT_EQ(show.status, 0);
    EXPECT_EQ(show.out, "");
    EXPECT_EQ(show.err, DAMAGED);
    const command_result load = run_command("perf-store load /dev/null", store());
    EXPECT_EQ(load.status, 1);
    EXPECT_EQ(load.err, "perf-store: " + store() + ": not a perf-show store\n");
}

TEST(ForeignStore, AnLMDBEnvironmentOfAnotherProgramIsRefused) {
    const temporary_folder folder;
    ASSERT_TRUE(in_child([&] {
        MDB_env *env = nullptr;
        MDB_txn *txn = nullptr;
        MDB_dbi table = 0;
        char text[] = "other";
        MDB_val value{5, text};
        return mdb_env_create(&env) == 0 && mdb_env_open(env, folder.path().c_str(), 0, 0600) == 0 &&
               mdb_txn_begin(env, nullptr, 0, &txn) == 0 && mdb_dbi_open(txn, nullptr, 0, &table) == 0 &&
               mdb_put(txn, table, &value, &value, 0) == 0 && mdb_txn_commit(txn) == 0;
    }));
    EXPECT_EQ(run_command("perf-show -c 9", folder.path()).err, DAMAGED);
    const command_result load = run_command("perf-store load /dev/null", folder.path());
    EXPECT_EQ(load.status, 1);
    EXPECT_EQ(load.err, "perf-store: " + folder.path() + ": not a perf-show store\n");
}

TEST(MissingStore, IsReportedForEveryReadAndChangesNoExitStatus) {
    const command_result walk = run_command("perf-show -c 9", "/nonexistent");
    EXPECT_EQ(walk.status, 0);
    EXPECT_EQ(walk.err, MISSING);
    const command_result node = run_command("perf-show -c 9 -N 1", "/nonexistent");
    EXPECT_EQ(node.status, 0);
    EXPECT_EQ(node.out, "");
    EXPECT_EQ(node.err, " generic_show: opstore_bind failed: Store client not available (0x8081c200)\n");
}

TEST(MissingStore, AnURLOfAnotherKindIsNoStore) {
    const command_result show = run_command("OPSTORE_URL=file:/tmp perf-show -c 9", "/nonexistent");
    EXPECT_EQ(show.err, MISSING);
    const command_result load = run_command("OPSTORE_URL=file:/tmp perf-store load /dev/null", "/nonexistent");
    EXPECT_EQ(load.status, 1);
    EXPECT_EQ(load.err, "perf-store: file:/tmp: a store is named lmdb:FOLDER, redis://HOST or redis+unix:///SOCKET\n");
}

}  // namespace
