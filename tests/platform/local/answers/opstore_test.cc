// SPDX-License-Identifier: Apache-2.0
// The database client over a real store.
#include "platform/opstore.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/ifnx.h"
#include "platform/inventory.h"
#include "platform/local/back_ends/writers.h"
#include "platform/local/store/local_store_records.h"
#include "platform/node.h"
#include "platform/parcel.h"
#include "schema/pm_descriptors.h"
#include "schema/pm_records.h"
#include "tests/support/child_process.h"

namespace {

constexpr std::uint32_t BATCH = 200;
constexpr std::uint32_t LISTED = 450;  // items of intf/detail/

std::string numbered(const std::string &prefix, unsigned number) {
    char digits[8];
    std::snprintf(digits, sizeof digits, "%05u", number);
    return prefix + digits;
}

// A name of which the first 200 bytes are always the same.
std::string long_name(unsigned number) { return std::string(200, 'n') + numbered("-", number); }

bool fill_store(const char *url) {
    std::unique_ptr<store::writer> writer;
    if (store::open_writer(url, store::missing_store::make, &writer)) {
        return false;
    }
    bool good = true;
    const auto put = [&](store::root root, std::uint32_t node, const std::string &path) {
        pm_chkpt_scb_parcel record{};
        auto bytes = std::vector<std::uint8_t>(path.begin(), path.end());
        record.buf = {static_cast<std::uint32_t>(bytes.size()), bytes.data()};
        good = good && !writer->put_item({root, node}, path, &record, pm_chkpt_scb_parcel_descriptor());
    };
    for (unsigned i = 0; i < LISTED; ++i) {
        put(store::root::main, 1, numbered("intf/detail/eth", i));
    }
    for (unsigned i = 0; i < 500; ++i) {
        put(store::root::main, 1, "long/" + long_name(i));
    }
    put(store::root::main, 1, "summary");
    put(store::root::main, 1, "dr-db-session/7");
    put(store::root::main, 1, "dr/policy-a");
    put(store::root::main, 1, "dr/policy-a/part");
    put(store::root::main, 0x10, "other-node");
    put(store::root::checkpoint, 1, "scb/eth0/1/0/4");
    std::vector<std::uint8_t> large(100'000, 7);
    const pm_chkpt_scb_parcel record{{static_cast<std::uint32_t>(large.size()), large.data()}};
    for (unsigned i = 0; i < 10; ++i) {
        good = good && !writer->put_item({store::root::main, 2}, numbered("large/", i), &record,
                                         pm_chkpt_scb_parcel_descriptor());
    }
    std::uint32_t nodes[] = {1, 0x10};
    local_partner partner{"central-services", 0x10};
    local_platform platform{};
    platform.MyNode = &nodes[0];
    platform.RouterType = 10;
    platform.RpPlusDatapath = 1;
    platform.ActiveRp = &nodes[1];
    platform.Partners = {1, &partner};
    local_location location{{0, 1, 0}};
    const local_node rp0{1, "rp0", 6, nullptr, 1};
    const local_node lc1{0x10, "lc1", 4, &location, 0x11};
    const local_interface eth{"eth0/1/0/4"};
    using state = store::publisher_state;
    good = good && !writer->put_platform(&platform) && !writer->put_node(1, &rp0) && !writer->put_node(0x10, &lc1) &&
           !writer->put_interface(0x8000120, &eth);
    good = good && !writer->put_publisher({store::root::responder, 1}, state::stopped) &&
           !writer->put_publisher({store::root::responder, 2}, state::unreachable) &&
           !writer->put_publisher({store::root::responder, 3}, state::starting) &&
           !writer->put_publisher({store::root::responder, 4}, state::running);
    return good && !writer->commit();
}

class Opstore : public testing::Test {
protected:
    static void SetUpTestSuite() {
        std::string name = (std::filesystem::temp_directory_path() / "opstore-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder_ = name;
        const std::string url = "lmdb:" + folder_;
        setenv("OPSTORE_URL", url.c_str(), 1);
        ASSERT_TRUE(in_child([&] { return fill_store(url.c_str()); }));
    }
    static void TearDownTestSuite() { std::filesystem::remove_all(folder_); }

    void bind(const char *path) {
        _opstore_unbind(handle_);
        handle_ = nullptr;
        ASSERT_EQ(_opstore_bind(&handle_, path, OPSTORE_BIND_READ), ERRCODE_SUCCESS);
    }
    void SetUp() override { bind("/oper/perf_meas/main/node/1/"); }
    void TearDown() override { _opstore_unbind(handle_); }

    // Lists as the walker does, with a key of 128 bytes; each batch's size goes to `batches`.
    std::vector<std::string> list(const char *path, std::vector<std::uint32_t> *batches = nullptr) {
        std::vector<std::string> keys;
        char key[OPSTORE_KEY_SIZE] = "";
        std::uint32_t flags = 0;
        std::uint32_t more = 1;
        while (more != 0 && keys.size() < 10'000) {
            opstore_list *batch = nullptr;
            std::uint32_t count = BATCH;
            EXPECT_EQ(opstore_datalist(handle_, path, key, &count, &batch, flags), ERRCODE_SUCCESS);
            for (std::uint32_t i = 0; i < count; ++i) {
                keys.push_back(next(batch));
            }
            if (count < BATCH) {
                EXPECT_EQ(opstore_datalist_get_more_flag(batch, &more), ERRCODE_SUCCESS);
            }
            EXPECT_EQ(opstore_datalist_free(batch), ERRCODE_SUCCESS);
            if (batches != nullptr) {
                batches->push_back(count);
            }
            if (count != 0) {
                std::strncpy(key, keys.back().c_str(), sizeof key - 1);
            }
            flags = OPSTORE_LIST_AFTER;
        }
        return keys;
    }

    // The next key of a batch, whose data must be the record of that key.
    static std::string next(opstore_list *batch) {
        const char *key = nullptr;
        const void *data = nullptr;
        std::uint32_t type = 0;
        std::uint32_t length = 0;
        std::uint32_t extra = 7;
        EXPECT_EQ(opstore_datalist_next(batch, &key, &type, &data, &length, &extra), ERRCODE_SUCCESS);
        EXPECT_EQ(type, OPSTORE_TYPE_PARCEL);
        EXPECT_EQ(extra, 0U);
        pm_chkpt_scb_parcel record{};
        EXPECT_EQ(parcel_decode(data, length, &record, pm_chkpt_scb_parcel_descriptor()), ERRCODE_SUCCESS);
        const std::string content(record.buf.begin(), record.buf.end());
        EXPECT_TRUE(content.ends_with(key) || content[0] == 7) << key;
        parcel_free_indirections(&record, pm_chkpt_scb_parcel_descriptor());
        return key;
    }

    errcode list_code(const char *bind_path) {
        bind(bind_path);
        opstore_list *batch = nullptr;
        std::uint32_t count = BATCH;
        const errcode code = opstore_datalist(handle_, "x/", "", &count, &batch, 0);
        EXPECT_EQ(opstore_datalist_free(batch), code == ERRCODE_SUCCESS ? ERRCODE_SUCCESS : ERRCODE_INVALID_ARGUMENT);
        return code;
    }

    errcode get_code(const char *path) {
        std::uint32_t type = 0;
        std::uint32_t length = 0;
        void *data = nullptr;
        const errcode code = opstore_item_get(handle_, path, &type, &data, &length, 0);
        std::free(data);
        return code;
    }

    static std::string folder_;
    opstore_handle handle_ = nullptr;
};

std::string Opstore::folder_;

TEST_F(Opstore, ListsEveryItemOnceInByteOrder) {
    std::vector<std::uint32_t> batches;
    const std::vector<std::string> keys = list("intf/detail/", &batches);
    ASSERT_EQ(keys.size(), LISTED);
    for (unsigned i = 0; i < LISTED; ++i) {
        EXPECT_EQ(keys[i], numbered("eth", i));
    }
    EXPECT_EQ(batches, (std::vector<std::uint32_t>{200, 200, 50}));
}

TEST_F(Opstore, ASlashAtTheEndOfThePathChangesNothing) { EXPECT_EQ(list("intf/detail"), list("intf/detail/")); }

TEST_F(Opstore, APathListsWhatContinuesItByWholeComponents) {
    EXPECT_EQ(list("dr"), (std::vector<std::string>{"policy-a", "policy-a/part"}));
    EXPECT_EQ(list("dr/policy-a"), (std::vector<std::string>{"part"}));
    EXPECT_EQ(list("summary"), std::vector<std::string>{});
    EXPECT_EQ(list("intf/detai"), std::vector<std::string>{});
}

TEST_F(Opstore, ResumesExactlyAfterKeysLongerThanACallerKeeps) {
    const std::vector<std::string> keys = list("long/");
    ASSERT_EQ(keys.size(), 500U);
    for (unsigned i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(keys[i], long_name(i));
    }
}

TEST_F(Opstore, EndsABatchEarlyWhenItsItemsAreLarge) {
    bind("/oper/perf_meas/main/node/2/");
    std::vector<std::uint32_t> batches;
    EXPECT_EQ(list("large/", &batches).size(), 10U);
    EXPECT_GT(batches.size(), 1U);
    EXPECT_LT(batches[0], 10U);
    EXPECT_GT(batches[0], 0U);
}

TEST_F(Opstore, SeesOneBranchOnly) {
    bind("/oper/perf_meas/main/node/10/");
    EXPECT_EQ(list(""), std::vector<std::string>{"other-node"});
    bind("/oper/perf_meas/chkpt/node/1/");
    EXPECT_EQ(list("scb"), std::vector<std::string>{"eth0/1/0/4"});
}

TEST_F(Opstore, HasNothingBehindTheLastItem) {
    opstore_list *batch = nullptr;
    std::uint32_t count = BATCH;
    std::uint32_t more = 7;
    const char *key = nullptr;
    const void *data = nullptr;
    std::uint32_t word = 0;
    ASSERT_EQ(opstore_datalist(handle_, "dr", "", &count, &batch, 0), ERRCODE_SUCCESS);
    ASSERT_EQ(count, 2U);
    next(batch);
    next(batch);
    EXPECT_EQ(opstore_datalist_next(batch, &key, &word, &data, &word, &word), ERRCODE_NOT_FOUND);
    EXPECT_EQ(opstore_datalist_get_more_flag(batch, &more), ERRCODE_SUCCESS);
    EXPECT_EQ(more, 0U);
    EXPECT_EQ(opstore_datalist_free(batch), ERRCODE_SUCCESS);
    EXPECT_EQ(opstore_datalist_free(nullptr), ERRCODE_INVALID_ARGUMENT);
}

TEST_F(Opstore, FetchesOneItem) {
    std::uint32_t type = 0;
    std::uint32_t length = 0;
    void *data = nullptr;
    ASSERT_EQ(opstore_item_get(handle_, "summary", &type, &data, &length, 0), ERRCODE_SUCCESS);
    EXPECT_EQ(type, OPSTORE_TYPE_PARCEL);
    pm_chkpt_scb_parcel record{};
    ASSERT_EQ(parcel_decode(data, length, &record, pm_chkpt_scb_parcel_descriptor()), ERRCODE_SUCCESS);
    EXPECT_EQ(std::string(record.buf.begin(), record.buf.end()), "summary");
    parcel_free_indirections(&record, pm_chkpt_scb_parcel_descriptor());
    std::free(data);
}

TEST_F(Opstore, AMissingItemIsNotFound) {
    EXPECT_EQ(get_code("summar"), 6U);
    EXPECT_EQ(get_code("dr"), 6U);
}

TEST_F(Opstore, APublisherThatIsNotRunningAnswersItsState) {
    struct {
        const char *path;
        errcode code;
    } const branches[] = {{"/oper/perf_meas/resp/node/1/", 0x40819000}, {"/oper/perf_meas/resp/node/2/", 0x40818600},
                          {"/oper/perf_meas/resp/node/3/", 0x40818a00}, {"/oper/perf_meas/resp/node/4/", 0},
                          {"/oper/perf_meas/rx/node/1/", 0x40812a00},   {"/oper/perf_meas/main/node/77/", 0x40812a00}};
    for (const auto &branch : branches) {
        EXPECT_EQ(list_code(branch.path), branch.code) << branch.path;
        EXPECT_EQ(get_code("summary"), branch.code == 0 ? 6U : branch.code) << branch.path;
    }
}

TEST_F(Opstore, BindsToBranchesOnly) {
    for (const char *path :
         {"", "/oper/perf_meas/main/", "/oper/perf_meas/main/node/", "/oper/perf_meas/main/node/1",
          "/oper/perf_meas/main/node/x/", "/oper/perf_meas/other/node/1/", "/oper/perf_meas/main/node/1ffffffff/"}) {
        opstore_handle handle = nullptr;
        EXPECT_EQ(_opstore_bind(&handle, path, OPSTORE_BIND_READ), ERRCODE_INVALID_ARGUMENT) << path;
    }
}

// The router that the same store describes.

TEST_F(Opstore, HoldsTheInventoryInItsOrder) {
    const invd_inventory *inventory = nullptr;
    std::int32_t count = 0;
    std::uint32_t node = 0;
    std::uint32_t state = 0;
    ASSERT_EQ(invd_get_inventory(INVD_ALL_NODES, &inventory), ERRCODE_SUCCESS);
    ASSERT_EQ(invd_inventory_get_node_count(inventory, &count), ERRCODE_SUCCESS);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(invd_inventory_get_nodeid(inventory, 1, &node), ERRCODE_SUCCESS);
    EXPECT_EQ(node, 0x10U);
    EXPECT_EQ(invd_inventory_get_sw_state(inventory, 0, &state), ERRCODE_SUCCESS);
    EXPECT_EQ(state, 6U);
    EXPECT_EQ(invd_inventory_get_sw_state(inventory, 1, &state), ERRCODE_SUCCESS);
    EXPECT_EQ(state, 4U);
    for (const std::int32_t index : {-1, 2}) {
        EXPECT_EQ(invd_inventory_get_nodeid(inventory, index, &node), ERRCODE_INVALID_ARGUMENT);
        EXPECT_EQ(invd_inventory_get_sw_state(inventory, index, &state), ERRCODE_INVALID_ARGUMENT);
    }
    EXPECT_EQ(invd_get_inventory(6, &inventory), ERRCODE_INVALID_ARGUMENT);
}

TEST_F(Opstore, HoldsTheIdentityOfTheNode) {
    std::uint32_t node = 0;
    EXPECT_EQ(platform_get_my_nodeid(&node), ERRCODE_SUCCESS);
    EXPECT_EQ(node, 1U);
    EXPECT_EQ(platform_get_active_standby_rps_in_rack(&node, 0), ERRCODE_SUCCESS);
    EXPECT_EQ(node, 0x10U);
    EXPECT_EQ(platform_get_router_type(), 10U);
    EXPECT_NE(platform_am_i_rp_plus_datapath(), 0);
    EXPECT_EQ(redund_get_proc_group_partner_node("central-services", &node), ERRCODE_SUCCESS);
    EXPECT_EQ(node, 0x10U);
    EXPECT_EQ(redund_get_proc_group_partner_node("other-group", &node), ERRCODE_SUCCESS);
    EXPECT_EQ(node, 0xFFFFFFFFU);
}

TEST_F(Opstore, FindsNodesByLocationProcessorAndName) {
    std::uint32_t node = 0;
    char name[32];
    EXPECT_EQ(nodeid_create(0, 1, 0, &node), ERRCODE_SUCCESS);
    EXPECT_EQ(node, 0x10U);
    EXPECT_EQ(nodeid_create(0, 2, 0, &node), ERRCODE_NOT_FOUND);
    EXPECT_EQ(nodeid_create(0, 0, 0, &node), ERRCODE_NOT_FOUND) << "a node without a location is nowhere";
    EXPECT_EQ(nodeid_processor_nodeid_for_nodeid(0x10, &node), ERRCODE_SUCCESS);
    EXPECT_EQ(node, 0x11U);
    EXPECT_EQ(nodeid_processor_nodeid_for_nodeid(0x99, &node), ERRCODE_NOT_FOUND);
    EXPECT_EQ(nodeid_to_str_external(0x10, name, sizeof name), ERRCODE_SUCCESS);
    EXPECT_STREQ(name, "lc1");
    EXPECT_EQ(nodeid_to_str_external(0x1f, name, sizeof name), ERRCODE_SUCCESS);
    EXPECT_STREQ(name, "0x1f");
    EXPECT_EQ(nodeid_to_str_external(0x10, name, 3), ERRCODE_SUCCESS);
    EXPECT_STREQ(name, "lc");
    EXPECT_EQ(nodeid_to_str_external(0x10, nullptr, 3), ERRCODE_INVALID_ARGUMENT);
}

TEST_F(Opstore, NamesInterfacesByTheirHandle) {
    char name[256];
    ifnx_display_namestring(0x8000120, name, sizeof name, 0);
    EXPECT_STREQ(name, "eth0/1/0/4");
    EXPECT_STREQ(interface_name(0x8000120, 0), "eth0/1/0/4");
    EXPECT_STREQ(interface_name(0x8000121, 0), "Unknown");
}

}  // namespace
