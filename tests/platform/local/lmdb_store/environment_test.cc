// SPDX-License-Identifier: Apache-2.0
// The environment of a reader: what it holds open, a store that outgrows its map, and who may read.
#include "platform/local/lmdb_store/environment.h"

#include <filesystem>
#include <grp.h>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/resource.h>

#include "platform/local/lmdb_store/lmdb_reader.h"
#include "platform/local/lmdb_store/lmdb_writer.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace lmdb_store;

class Environment : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(write("first", 1)); }

    // Another process puts items of 10 kB, in one transaction.
    [[nodiscard]] bool write(const std::string &name, int items) const {
        return in_child([&] {
            std::unique_ptr<store::writer> writer;
            std::string text(10'000, 't');
            pm_intf_parcel record{};
            record.InterfaceName = text.data();
            bool good = !open_writer(folder_.path(), store::missing_store::make, &writer);
            for (int i = 0; good && i < items; ++i) {
                good = !writer->put_item({store::root::main, 1}, name + std::to_string(i), &record,
                                         pm_intf_parcel_descriptor());
            }
            return good && !writer->commit();
        });
    }
    // With a map that is as large as the file.
    [[nodiscard]] bool open_small(environment *to) const {
        rlimit before{};
        bool good = getrlimit(RLIMIT_AS, &before) == 0;
        const rlimit small{rlim_t{2} << 30, before.rlim_max};
        good = good && setrlimit(RLIMIT_AS, &small) == 0 && !to->open(folder_.path());
        return setrlimit(RLIMIT_AS, &before) == 0 && good;
    }

    const temporary_folder folder_;
};

// How many records a state has; 0 when it cannot be read.
std::uint64_t entries_of(environment *from) {
    std::uint64_t entries = 0;
    const pm_error error = from->read([&](const table_state &state) {
        entries = state.entries();
        return ERRCODE_SUCCESS;
    });
    return error ? 0 : entries;
}

long open_files() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

TEST_F(Environment, HoldsNothingOpenAfterItsEnd) {
    EXPECT_TRUE(in_child([&] {
        const long before = open_files();
        long within = 0;
        {
            environment own;
            within = own.open(folder_.path()) ? 0 : open_files();
        }
        return within > before && open_files() == before;
    }));
}

TEST_F(Environment, OfAWriterTakesTheLargestMapThatFits) {
#ifdef PM_SANITIZE
    GTEST_SKIP() << "the sanitizer needs all of the address space";
#endif
    for (const rlim_t bytes : {rlim_t{1'800'000'000}, rlim_t{9'000'000'000}}) {
        EXPECT_TRUE(in_child([&] {
            const rlimit small{bytes, bytes};
            return setrlimit(RLIMIT_AS, &small) == 0 && write("more", 10);
        })) << bytes;
    }
}

TEST_F(Environment, FollowsAStoreThatOutgrowsItsMap) {
#ifdef PM_SANITIZE
    GTEST_SKIP() << "the sanitizer needs all of the address space";
#endif
    EXPECT_TRUE(in_child([&] {
        environment own;
        const bool opened = open_small(&own);
        const std::uint64_t before = entries_of(&own);
        return opened && before != 0 && write("more", 500) && entries_of(&own) == before + 500;
    }));
}

// A reader without a slot in the lock file reads again what two transactions have overtaken.
TEST_F(Environment, FollowsWhileItReadsAStateThatIsOvertaken) {
#ifdef PM_SANITIZE
    GTEST_SKIP() << "the sanitizer needs all of the address space";
#endif
    std::filesystem::remove(folder_.path() + "/lock.mdb");
    EXPECT_TRUE(in_child([&] {
        environment own;
        if (!open_small(&own)) {
            return false;
        }
        const std::uint64_t before = entries_of(&own);
        int times = 0;
        std::uint64_t entries = 0;
        const pm_error error = own.read([&](const table_state &state) {
            if (++times == 1 && !(write("more", 500) && write("other", 500))) {
                return ERRCODE_NO_MEMORY;
            }
            entries = state.entries();
            return ERRCODE_SUCCESS;
        });
        return !error && times == 2 && entries == before + 1000;
    }));
}

TEST_F(Environment, NamesTheGroupThatMayRead) {
    constexpr uid_t ANOTHER_USER = 61'001;
    constexpr gid_t GROUP_OF_NO_NAME = 61'003;
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ASSERT_EQ(chmod(folder_.path().c_str(), 0750), 0);
    for (const auto &[group, name] : {std::pair<gid_t, std::string>{0, "root"}, {GROUP_OF_NO_NAME, "61003"}}) {
        ASSERT_EQ(chown(folder_.path().c_str(), 0, group), 0);
        const std::string wanted =
            folder_.path() + "/data.mdb: Permission denied; the store may be read by members of group " + name;
        EXPECT_TRUE(in_child([&] {
            if (setgroups(0, nullptr) != 0 || setgid(ANOTHER_USER) != 0 || setuid(ANOTHER_USER) != 0) {
                return false;
            }
            const store::access_state access = check_access(folder_.path());
            EXPECT_EQ(access.denial.text(), wanted);
            return access.denial.text() == wanted && access.denial.code() == OPSTORE_NO_CLIENT;
        })) << name;
    }
}

}  // namespace
