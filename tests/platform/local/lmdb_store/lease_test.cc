// SPDX-License-Identifier: Apache-2.0
// Leases of publishers in an embedded store.
#include <gtest/gtest.h>
#include <unistd.h>

#include "platform/local/lmdb_store/lmdb_reader.h"
#include "platform/local/lmdb_store/lmdb_writer.h"
#include "platform/local/store/lease.h"
#include "platform/local/store/local_store_records.h"
#include "tests/support/child_process.h"
#include "tests/support/temporary_folder.h"

namespace {

constexpr store::branch MAIN_1{store::root::main, 1};

store::known_state state_after(std::uint32_t lease_msec) {
    const temporary_folder folder;
    EXPECT_TRUE(in_child([&] {
        std::unique_ptr<store::writer> writer;
        return !lmdb_store::open_writer(folder.path(), store::missing_store::make, &writer) &&
               !writer->put_leased_publisher(MAIN_1, lease_msec) && !writer->commit();
    }));
    ::usleep(20'000);
    std::unique_ptr<store::reader> reader;
    EXPECT_FALSE(lmdb_store::open_reader(folder.path(), &reader));
    store::known_state state;
    store::batch batch;
    EXPECT_FALSE(reader->list(MAIN_1, {"", "", 200, {}}, &state, &batch));
    return state;
}

TEST(Lease, OfARunningPublisherLastsItsTime) {
    EXPECT_EQ(state_after(600'000), store::publisher_state::running);
    EXPECT_EQ(state_after(1), store::publisher_state::stopped);
}

TEST(Lease, ThatRanOutMakesARunningPublisherAStoppedOne) {
    const std::string boot(store::this_boot());
    const std::uint64_t now = store::msec_since_boot();
    local_lease lasting{boot.c_str(), now + 60'000};
    local_lease over{boot.c_str(), now - 1};
    const auto seen = [](store::publisher_state state, local_lease *lease, store::kept_lease kept) {
        return store::seen_state({static_cast<std::uint32_t>(state), lease}, kept);
    };
    using enum store::publisher_state;
    EXPECT_EQ(seen(running, nullptr, {}), running);
    EXPECT_EQ(seen(running, &lasting, {}), running);
    EXPECT_EQ(seen(running, &over, {}), stopped);
    EXPECT_EQ(seen(starting, &over, {}), starting);
    // Where a server keeps the lease, nothing but that counts.
    EXPECT_EQ(seen(running, &over, true), running);
    EXPECT_EQ(seen(running, &lasting, false), stopped);
    EXPECT_EQ(seen(running, nullptr, false), running);
}

TEST(Lease, OfAnotherBootIsOver) {
    EXPECT_FALSE(store::lease_is_over(store::this_boot(), store::msec_since_boot() + 60'000));
    EXPECT_TRUE(store::lease_is_over("another", store::msec_since_boot() + 60'000));
}

}  // namespace
