// SPDX-License-Identifier: Apache-2.0
// The node that hosts an interface, from the inventory of a real store.
#include <optional>
#include <sstream>

#include <gtest/gtest.h>

#include "front/dispatch.h"
#include "front/options.h"
#include "front/resolve_node.h"
#include "platform/inventory.h"
#include "platform/local/back_ends/writers.h"
#include "platform/local/store/local_store_records.h"
#include "pm_show_client/pm_show_options.h"
#include "tests/support/child_process.h"
#include "tests/support/command.h"

namespace {

constexpr std::uint32_t RP = 0x100;
constexpr std::uint32_t CARD = 0x10;
constexpr std::uint32_t CARD_PROCESSOR = 0x11;

struct router {
    std::uint32_t type;
    bool rp_plus_datapath;
    std::optional<std::uint32_t> active_rp = RP;
};
constexpr router DISTRIBUTED{10, false};
constexpr router DISTRIBUTED_WITH_DATAPATH{10, true};
constexpr router CENTRAL{9, false};
constexpr router CENTRAL_WITH_DATAPATH{9, true};

struct resolution {
    errcode code = 0;
    std::uint32_t node = 0;

    bool operator==(const resolution &) const = default;
};
std::ostream &operator<<(std::ostream &out, const resolution &what) {
    return out << "code " << what.code << ", node 0x" << std::hex << what.node << std::dec;
}

bool fill(const char *url, const router &what) {
    std::unique_ptr<store::writer> writer;
    std::uint32_t active_rp = what.active_rp.value_or(0);
    local_platform platform{};
    platform.RouterType = what.type;
    platform.RpPlusDatapath = what.rp_plus_datapath ? 1 : 0;
    platform.ActiveRp = what.active_rp ? &active_rp : nullptr;
    local_location places[] = {{{0, 20, 0}}, {{0, 1, 0}}, {{0, 1, 1}}, {{0, 2, 0}}};
    const local_node nodes[] = {
        {RP, "rp0", 6, &places[0], RP},
        {CARD, "lc1", 6, &places[1], CARD_PROCESSOR},
        {CARD_PROCESSOR, "lc1-cpu", 6, &places[2], CARD_PROCESSOR},
        {0x20, "lc2", 6, &places[3], NODEID_NONE},
    };
    bool good = !store::open_writer(url, store::missing_store::make, &writer) && !writer->put_platform(&platform);
    for (const local_node &node : nodes) {
        good = good && !writer->put_node(node.Id, &node);
    }
    return good && !writer->commit();
}

// What `resolve` leaves on a router of its own, each time in a new process.
template <class Resolve>
resolution on(const router &what, std::vector<std::string> words, Resolve resolve) {
    const temporary_folder folder;
    const std::string url = "lmdb:" + folder.path() + "/store";
    EXPECT_TRUE(in_child([&] { return fill(url.c_str(), what); }));
    EXPECT_TRUE(in_child([&] {
        setenv("OPSTORE_URL", url.c_str(), 1);
        words.insert(words.begin(), "perf-show");
        std::vector<char *> argv;
        for (std::string &word : words) {
            argv.push_back(word.data());
        }
        argv.push_back(nullptr);
        pm_show_parse_options(static_cast<int>(words.size()), argv.data());
        const errcode code = resolve();
        write_file(folder.path() + "/result", std::to_string(code) + " " + std::to_string(pm_show_options.node_id));
        return true;
    }));
    resolution result{~0U, 0};
    std::istringstream(read_file(folder.path() + "/result")) >> result.code >> result.node;
    return result;
}

resolution resolved(const router &what, const std::vector<std::string> &words) {
    return on(what, words, pm_show_resolve_node);
}

// The node after a request is built.
std::uint32_t requested(const router &what, const std::vector<std::string> &words) {
    return on(what, words,
              [] {
                  pm_show_request request{};
                  pm_show_path path;
                  return pm_show_build_request(&request, path) == pm_show_build::ready ? ERRCODE_SUCCESS : ~0U;
              })
        .node;
}

TEST(Resolution, AnInterfaceOfACardIsReadFromTheCardsProcessor) {
    for (const router &what : {DISTRIBUTED, DISTRIBUTED_WITH_DATAPATH, CENTRAL}) {
        EXPECT_EQ(resolved(what, {"-i", "eth0/1/0/4"}), (resolution{0, CARD_PROCESSOR})) << what.type;
        EXPECT_EQ(resolved(what, {"-i", "eth0/1/0/4.100"}), (resolution{0, CARD_PROCESSOR})) << what.type;
        EXPECT_EQ(resolved(what, {"-i", "eth0/20/0/0"}), (resolution{0, RP})) << what.type;
    }
}

TEST(Resolution, ARouteProcessorThatForwardsIsReadItself) {
    EXPECT_EQ(resolved(CENTRAL_WITH_DATAPATH, {"-i", "eth0/1/0/4"}), (resolution{0, RP}));
    EXPECT_EQ(resolved(CENTRAL_WITH_DATAPATH, {"-i", "eth0/9/0/4"}), (resolution{0, RP}));
}

TEST(Resolution, AnInterfaceOfNoCardIsReadFromTheActiveRouteProcessor) {
    for (const router &what : {DISTRIBUTED, DISTRIBUTED_WITH_DATAPATH, CENTRAL, CENTRAL_WITH_DATAPATH}) {
        EXPECT_EQ(resolved(what, {"-i", "bundle-eth7"}), (resolution{0, RP})) << what.type;
        EXPECT_EQ(resolved(what, {"-i", "bundle-eth7.20"}), (resolution{0, RP})) << what.type;
    }
}

TEST(Resolution, ACardThatTheInventoryDoesNotHoldLeavesAllNodes) {
    EXPECT_EQ(resolved(DISTRIBUTED, {"-i", "eth0/9/0/4"}), (resolution{6, PM_SHOW_ALL_NODES}));
    EXPECT_EQ(resolved(CENTRAL, {"-i", "eth1/1/0/4"}), (resolution{6, PM_SHOW_ALL_NODES}));
    EXPECT_EQ(resolved(CENTRAL, {"-i", "eth0/1/2/4"}), (resolution{6, PM_SHOW_ALL_NODES}));
}

TEST(Resolution, ANodeThatStandsForNoneLeavesAllNodes) {
    EXPECT_EQ(resolved(DISTRIBUTED, {"-i", "eth0/2/0/0"}), (resolution{0, PM_SHOW_ALL_NODES}));
    EXPECT_EQ(resolved({9, true, NODEID_NONE}, {"-i", "eth0/1/0/4"}), (resolution{0, PM_SHOW_ALL_NODES}));
}

TEST(Resolution, WithoutAnActiveRouteProcessorAllNodesAreRead) {
    const router no_active{9, true, std::nullopt};
    for (const char *name : {"eth0/1/0/4", "bundle-eth7"}) {
        const resolution result = resolved(no_active, {"-i", name});
        EXPECT_NE(result.code, 0U) << name;
        EXPECT_EQ(result.node, PM_SHOW_ALL_NODES) << name;
    }
}

TEST(Resolution, ANameThatIsNoInterfacesLeavesAllNodes) {
    for (const char *name :
         {"policy-a", "eth", "0/1/0/4", "eth0/1/0", "eth0/1/0/4/5", "eth0/1/0/4.", "eth0/1/0/4x", "eth0/1//4", ""}) {
        EXPECT_EQ(resolved(DISTRIBUTED, {"-i", name}), (resolution{22, PM_SHOW_ALL_NODES})) << name;
    }
    EXPECT_EQ(resolved(DISTRIBUTED, {}), (resolution{22, PM_SHOW_ALL_NODES}));
}

TEST(Resolution, NodesThatTheUserChoseStay) {
    EXPECT_EQ(resolved(DISTRIBUTED, {"-i", "eth0/1/0/4", "-N", "0x77"}).node, 0x77U);
    EXPECT_EQ(resolved(DISTRIBUTED, {"-i", "eth0/1/0/4", "-A"}).node, PM_SHOW_ALL_NODES);
}

TEST(Resolution, ShowsOfInterfacesAndPoliciesUseIt) {
    for (const char *type : {"1", "2", "17", "18"}) {
        EXPECT_EQ(requested(DISTRIBUTED, {"-c", type, "-i", "eth0/1/0/4"}), CARD_PROCESSOR) << type;
    }
    for (const char *type : {"4", "5", "20", "22"}) {
        EXPECT_EQ(requested(DISTRIBUTED, {"-c", type, "-t", "3", "-i", "eth0/1/0/4"}), CARD_PROCESSOR) << type;
    }
    for (const char *type : {"7", "15", "26"}) {
        EXPECT_EQ(requested(DISTRIBUTED, {"-c", type, "-i", "eth0/1/0/4"}), PM_SHOW_ALL_NODES) << type;
    }
    EXPECT_EQ(requested(DISTRIBUTED, {"-c", "4", "-t", "19", "-i", "eth0/1/0/4"}), PM_SHOW_ALL_NODES);
}

}  // namespace
