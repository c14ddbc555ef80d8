// SPDX-License-Identifier: Apache-2.0
// The memory that listing takes does not depend on how much there is to list.
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "front/generic_show.h"
#include "platform/local/back_ends/writers.h"
#include "pm_show_client/pm_show_display.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/support/child_process.h"
#include "tests/support/command.h"

namespace {

constexpr std::uint32_t FEW = 1'000;
constexpr std::uint32_t MANY = 100'000;
constexpr long OWN_MEMORY_KB = 4096;

std::uint32_t shown = 0;

int count_item(const void *decoded_parcel) {
    shown += decoded_parcel != nullptr ? 1 : 0;
    return PM_SHOW_NOTHING;
}

// Kilobytes of this process that are its own, not the store's.
long own_memory_kb() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with("RssAnon:")) {
            return std::stol(line.substr(8));
        }
    }
    return -1;
}

bool fill_store(const char *url) {
    static pm_scb_parcel session{};
    session.ProfileName = "default";
    pm_intf_parcel record{};
    record.InterfaceName = "eth0/1/0/4";
    record.DelayMeasurementSessions = {1, &session};
    std::unique_ptr<store::writer> writer;
    bool good = !store::open_writer(url, store::missing_store::make, &writer);
    for (std::uint32_t node = 1; good && node <= 2; ++node) {
        const std::uint32_t count = node == 1 ? FEW : MANY;
        for (std::uint32_t i = 0; good && i < count; ++i) {
            const std::string path = "intf/detail/eth" + std::to_string(i);
            good = !writer->put_item({store::root::main, node}, path, &record, pm_intf_parcel_descriptor());
        }
    }
    return good && !writer->commit();
}

// Lists all interfaces of a node in a child; its memory afterwards.
long memory_after_listing(std::uint32_t node, std::uint32_t items) {
    const temporary_folder result;
    const bool listed = in_child([&] {
        pm_show_request request{};
        request.base_path = "/oper/perf_meas/main/";
        request.item_path = "intf/detail/";
        request.start_key = "";
        request.display = count_item;
        request.parcel_desc = pm_intf_parcel_descriptor();
        request.decoded_size = sizeof(pm_intf_parcel);
        request.batch_size = 200;
        if (std::freopen("/dev/null", "w", stdout) == nullptr || generic_show(&request, node) != ERRCODE_SUCCESS) {
            return false;
        }
        write_file(result.path() + "/memory", std::to_string(own_memory_kb()));
        return shown == items;
    });
    return listed ? std::stol(read_file(result.path() + "/memory")) : -1;
}

TEST(Memory, OfListingIsSmallAndTheSameForAHundredTimesTheItems) {
#ifdef PM_SANITIZE
    GTEST_SKIP() << "the sanitizer's own memory hides the program's";
#endif
    const temporary_folder folder;
    const std::string url = "lmdb:" + folder.path();
    setenv("OPSTORE_URL", url.c_str(), 1);
    ASSERT_TRUE(in_child([&] { return fill_store(url.c_str()); }));
    const long few = memory_after_listing(1, FEW);
    const long many = memory_after_listing(2, MANY);
    ASSERT_GT(few, 0);
    ASSERT_GT(many, 0);
    EXPECT_LT(many, OWN_MEMORY_KB);
    EXPECT_LT(many, few + 128);
}

}  // namespace
