// SPDX-License-Identifier: Apache-2.0
// Who may read a store that another user writes. Only root can become other users.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/stress/stress_support.h"

namespace {

constexpr uid_t USER = 61'001;
constexpr gid_t OWN_GROUP = 61'002;    // of the user alone
constexpr gid_t STORE_GROUP = 61'003;  // of no name
constexpr gid_t NAMED_GROUP = 1;
constexpr unsigned ROUNDS = 60 / STRESS_SCALE;
constexpr double LONGEST_RUN_SECONDS = 5;

std::string summary_set(unsigned interfaces) {
    std::string set;
    for (unsigned node = 1; node <= 50; ++node) {
        const std::string id = std::to_string(node);
        set += R"({"node":{"id":)" + id + R"(,"name":"lc)" + id + "\"}}\n" + R"({"item":{"root":"main","node":)" + id +
               R"(,"path":"summary","type":"pm_summary_parcel","record":{"TotalInterfaces":)" +
               std::to_string(interfaces) + "}}}\n";
    }
    return set;
}

class Access : public testing::Test {
protected:
    void SetUp() override {
        if (geteuid() != 0) {
            GTEST_SKIP() << "only root can become another user";
        }
        // The program where any user can run it.
        ASSERT_EQ(chmod(folder_.path().c_str(), 0755), 0);
        std::filesystem::copy_file(PERF_SHOW, program());
        ASSERT_EQ(chmod(program().c_str(), 0755), 0);
        for (unsigned i = 0; i < 2; ++i) {
            write_file(set(i), summary_set(i + 3));
        }
    }

    [[nodiscard]] std::string program() const { return folder_.path() + "/show"; }
    [[nodiscard]] std::string store() const { return folder_.path() + "/store"; }
    [[nodiscard]] std::string set(unsigned number) const { return folder_.path() + "/set" + std::to_string(number); }

    void make_store(gid_t group, mode_t mode = 0750) {
        ASSERT_EQ(mkdir(store().c_str(), mode), 0);
        ASSERT_EQ(chown(store().c_str(), 0, group), 0);
        ASSERT_EQ(chmod(store().c_str(), mode), 0);
        ASSERT_TRUE(load(store(), set(0)));
    }

    // Shows as the user, a member of `groups`, with these words behind the program's name.
    [[nodiscard]] command_result show_as_user(const std::vector<gid_t> &groups, const std::string &words) const {
        const temporary_folder work;
        const std::string out = work.path() + "/out";
        const std::string err = work.path() + "/err";
        running_process shower([&] {
            const bool redirected =
                std::freopen(out.c_str(), "w", stdout) != nullptr && std::freopen(err.c_str(), "w", stderr) != nullptr;
            if (!redirected || setgroups(groups.size(), groups.data()) != 0 || setgid(OWN_GROUP) != 0 ||
                setuid(USER) != 0) {
                return false;
            }
            setenv("OPSTORE_URL", ("lmdb:" + store()).c_str(), 1);
            execl("/bin/sh", "sh", "-c", ("exec " + program() + words).c_str(), nullptr);
            return false;
        });
        command_result result;
        result.status = shower.wait(LONGEST_RUN_SECONDS) ? 0 : 1;
        result.out = read_file(out);
        result.err = read_file(err);
        return result;
    }

    // The line that tells a user of no such group about it.
    [[nodiscard]] std::string denied(const std::string &file, const std::string &group) const {
        return "perf-show: " + store() + "/" + file +
               ": Permission denied; the store may be read by members of group " + group + "\n";
    }

    temporary_folder folder_;
};

constexpr char NO_INVENTORY[] =
    " generic_show_node_walker: invd_get_inventory failed: Store client not available (0x8081c200)\n";
constexpr char NO_BIND[] = " generic_show: opstore_bind failed: Store client not available (0x8081c200)\n";

TEST_F(Access, AMemberOfTheFoldersGroupReadsBesideAWriter) {
    make_store(STORE_GROUP);
    std::string expected[2];
    for (unsigned i = 0; i < 2; ++i) {
        ASSERT_TRUE(load(store(), set(i)));
        expected[i] = run_command("perf-show -c 9 -N 5", store()).out;
    }
    ASSERT_NE(expected[0], expected[1]);
    looping_writer writer(store(), {set(0), set(1)});
    for (unsigned i = 0; i < ROUNDS; ++i) {
        const command_result whole = show_as_user({STORE_GROUP}, " -c 9");
        EXPECT_EQ(whole.status, 0);
        EXPECT_EQ(whole.err, "");
        EXPECT_NE(whole.out.find("lc50"), std::string::npos);
        const command_result one = show_as_user({STORE_GROUP}, " -c 9 -N 5");
        EXPECT_EQ(one.err, "");
        EXPECT_TRUE(one.out == expected[0] || one.out == expected[1]) << one.out;
    }
    EXPECT_TRUE(writer.stop());
}

TEST_F(Access, AMemberOfTheGroupCannotWriteTheData) {
    make_store(STORE_GROUP);
    struct stat data {};
    struct stat lock {};
    ASSERT_EQ(stat((store() + "/data.mdb").c_str(), &data), 0);
    ASSERT_EQ(stat((store() + "/lock.mdb").c_str(), &lock), 0);
    EXPECT_EQ(data.st_gid, STORE_GROUP);
    EXPECT_EQ(lock.st_gid, STORE_GROUP);
    EXPECT_EQ(data.st_mode & 0777U, 0640U);
    EXPECT_EQ(lock.st_mode & 0777U, 0660U);
}

TEST_F(Access, AnOutsiderOfTheFolderLearnsWhichGroupReads) {
    make_store(STORE_GROUP);
    const std::string line = denied("data.mdb", std::to_string(STORE_GROUP));
    const command_result walk = show_as_user({}, " -c 9");
    EXPECT_EQ(walk.status, 0);
    EXPECT_EQ(walk.out, "");
    EXPECT_EQ(walk.err, line + NO_INVENTORY);
    const command_result node = show_as_user({}, " -c 9 -N 5");
    EXPECT_EQ(node.status, 0);
    EXPECT_EQ(node.out, "");
    EXPECT_EQ(node.err, line + NO_BIND);
}

TEST_F(Access, AGroupIsToldByItsName) {
    const struct group *group = getgrgid(NAMED_GROUP);
    if (group == nullptr) {
        GTEST_SKIP() << "no such group";
    }
    make_store(NAMED_GROUP);
    EXPECT_EQ(show_as_user({}, " -c 9").err, denied("data.mdb", group->gr_name) + NO_INVENTORY);
}

TEST_F(Access, AnOutsiderOfTheFilesLearnsWhichGroupReads) {
    make_store(STORE_GROUP, 0755);
    EXPECT_EQ(show_as_user({}, " -c 9").err, denied("data.mdb", std::to_string(STORE_GROUP)) + NO_INVENTORY);
}

TEST_F(Access, ALockThatCannotBeWrittenIsExplained) {
    make_store(STORE_GROUP, 0755);
    ASSERT_EQ(chmod((store() + "/data.mdb").c_str(), 0644), 0);
    const std::string line = denied("lock.mdb", std::to_string(STORE_GROUP));
    EXPECT_EQ(show_as_user({}, " -c 9").err, line + NO_INVENTORY);
    EXPECT_EQ(show_as_user({}, " -c 9 -N 5").err, line + NO_BIND);
}

}  // namespace
