// SPDX-License-Identifier: Apache-2.0
// Synthetic data sets: the set as a whole, and how many items it has.
#include "tests/perf-store/generator/generated_set.h"

#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <set>

#include <gtest/gtest.h>

namespace {

using perf_store::gen_options;

gen_options nothing() { return {.nodes = 4, .interfaces = 0, .policies = 0, .paths = 2, .endpoints = 0, .tunnels = 0}; }

std::size_t sessions_under(const generated_set &set) {
    std::size_t paths = 0;
    set.each<pm_srpolicy_parcel>("srpolicy/detail/", [&](const generated_item &, const pm_srpolicy_parcel &policy) {
        for (const auto &candidate : policy.CandidatePaths) {
            for (const auto &list : candidate.SegmentLists) {
                paths += list.AtomicPaths.count;
            }
        }
    });
    return paths;
}

TEST(Generator, TheSameOptionsGiveTheSameBytes) {
    const std::string first = generate({});
    EXPECT_GT(first.size(), 100'000U);
    EXPECT_TRUE(first == generate({}));  // not printed: it is long
}

// A pin: measurements and examples refer to generated sets by their options, so the bytes must stay from
// release to release. The program made the set, and it was then looked through: one object of each family
// under the node; packets sent are ten for each complete probe and those of the current one; totals are the sums
// of the sessions; averages lie between minimum and maximum; no history goes beyond the base time. Whoever
// changes the generator on purpose makes the file again and looks again.
TEST(Generator, OneObjectOfEachFamilyIsTheSetThatWasLookedThrough) {
    const gen_options one{
        .nodes = 1, .interfaces = 1, .policies = 1, .paths = 1, .endpoints = 1, .tunnels = 1, .seed = 3};
    std::ifstream kept(PM_GENERATED_SET, std::ios::binary);
    const std::string wanted{std::istreambuf_iterator<char>(kept), {}};
    ASSERT_GT(wanted.size(), 10'000U) << PM_GENERATED_SET;
    EXPECT_TRUE(generate(one) == wanted);               // not printed: it is long
    EXPECT_GT(generated_set(one).items().size(), 20U);  // every record is as its schema wants it
}

TEST(Generator, AnotherSeedGivesOtherBytes) { EXPECT_FALSE(generate({}) == generate({.seed = 2})); }

TEST(Generator, OneMoreInterfaceLeavesThePoliciesAsTheyWere) {
    const auto counters = [](const generated_set &set) {
        std::vector<std::uint64_t> sent;
        set.each<pm_srpolicy_counters_parcel>("srpolicy/counters/", [&](const generated_item &, const auto &policy) {
            for (const auto &candidate : policy.CandidateCounters) {
                sent.push_back(candidate.Counters != nullptr ? candidate.Counters->GenericCounters.QueryPacketsSent
                                                             : 0);
            }
        });
        return sent;
    };
    EXPECT_EQ(counters(generated_set({.interfaces = 16})), counters(generated_set({.interfaces = 17})));
}

TEST(Generator, TheObjectsComeInTheOrderOfADump) {
    const std::vector<std::string> order = {"dataset", "platform", "node", "interface", "item"};
    std::vector<std::string> kinds = generated_set({}).kinds();
    kinds.erase(std::unique(kinds.begin(), kinds.end()), kinds.end());
    EXPECT_EQ(kinds, order);
}

TEST(Generator, CountsFollowTheOptions) {
    const generated_set set({.nodes = 5, .interfaces = 7, .policies = 11, .paths = 3, .endpoints = 9, .tunnels = 4});
    EXPECT_EQ(set.nodes(), (std::vector<std::uint32_t>{0x100, 0x101, 0x10, 0x20, 0x30}));
    EXPECT_EQ(std::count(set.kinds().begin(), set.kinds().end(), "interface"), 7 + 11 + 4);
    EXPECT_EQ(set.count("intf/detail/"), 7U);
    EXPECT_EQ(set.count("intf/delay/probe-history/"), 7U);
    EXPECT_EQ(set.count("intf/loss/pkt-history/"), 7U);
    EXPECT_EQ(set.count("srpolicy/detail/"), 11U);
    EXPECT_EQ(set.count("srpolicy/counters/"), 11U);
    EXPECT_EQ(set.count("srpolicy/delay/probe-history/") + set.count("srpolicy/liveness/live-history/"), 11U);
    EXPECT_EQ(set.count("endpoint/detail/"), 9U);
    EXPECT_EQ(set.count("endpoint/counters/"), 9U);
    EXPECT_EQ(set.count("endpoint/delay/probe-history/") + set.count("endpoint/delay/live-history/"), 9U);
    EXPECT_EQ(set.count("rsvpte/detail/"), 4U);
    EXPECT_EQ(set.count("rsvpte/counters/"), 4U);
    EXPECT_EQ(set.count("rsvpte/delay/probe-history/"), 4U);
    EXPECT_EQ(set.count("summary"), 5U);
    EXPECT_EQ(set.count("profile"), 5U);
    EXPECT_EQ(set.count("name-profile/0x0/0x2/gold"), 5U);
    EXPECT_EQ(set.count("session/"), 2 * 7 + sessions_under(set) + 9 + 4);
}

TEST(Generator, EverySegmentListHasTheAskedForAtomicPaths) {
    for (const std::uint32_t paths : {0U, 1U, 5U}) {
        const generated_set set({.policies = 12, .paths = paths});
        std::size_t lists = 0;
        set.each<pm_srpolicy_parcel>("srpolicy/detail/", [&](const generated_item &, const pm_srpolicy_parcel &policy) {
            for (const auto &candidate : policy.CandidatePaths) {
                lists += candidate.SegmentLists.count;
            }
        });
        EXPECT_GE(lists, 12U);
        EXPECT_EQ(sessions_under(set), lists * paths);
    }
}

TEST(Generator, WithoutAnyObjectsThereAreProfilesAndSummariesOnly) {
    const generated_set set(nothing());
    EXPECT_EQ(set.count(""), set.count("summary") + set.count("profile") + set.count("name-profile/"));
    EXPECT_EQ(set.count("summary"), 4U);
    EXPECT_EQ(set.summary(0x100).GlobalCounters.QueryPacketsSent, 0U);
}

TEST(Generator, ASingleNodeKeepsTheInterfacesItself) {
    gen_options options = nothing();
    options.nodes = 1;
    options.interfaces = 3;
    const generated_set set(options);
    EXPECT_EQ(set.nodes(), std::vector<std::uint32_t>{0x100});
    EXPECT_EQ(set.count("intf/detail/eth0/20/0/"), 3U);
    EXPECT_EQ(set.summary(0x100).TotalInterfaces, 3U);
}

TEST(Generator, NodeIdsStayDistinctOnALargeRouter) {
    gen_options options = nothing();
    options.nodes = perf_store::GEN_MAX_NODES;
    const generated_set set(options);
    const std::set<std::uint32_t> ids(set.nodes().begin(), set.nodes().end());
    EXPECT_EQ(ids.size(), perf_store::GEN_MAX_NODES);
}

TEST(Generator, NoItemComesTwice) {
    const generated_set set({});
    std::set<std::pair<std::uint32_t, std::string>> seen;
    for (const generated_item &item : set.items()) {
        EXPECT_TRUE(seen.emplace(item.node, item.path).second) << item.path;
    }
    EXPECT_GT(seen.size(), 1000U);
}

TEST(Generator, OptionsBeyondTheirLimitsAreToldApart) {
    using perf_store::within_limits;
    EXPECT_TRUE(within_limits({}));
    EXPECT_FALSE(within_limits({.nodes = 0}));
    EXPECT_TRUE(within_limits({.nodes = 1024}));
    EXPECT_FALSE(within_limits({.nodes = 1025}));
    EXPECT_TRUE(within_limits({.paths = 64}));
    EXPECT_FALSE(within_limits({.paths = 65}));
    for (const std::uint32_t count : {10'000'000U, 10'000'001U}) {
        const bool good = count == 10'000'000U;
        EXPECT_EQ(within_limits({.interfaces = count}), good);
        EXPECT_EQ(within_limits({.policies = count}), good);
        EXPECT_EQ(within_limits({.endpoints = count}), good);
        EXPECT_EQ(within_limits({.tunnels = count}), good);
    }
}

TEST(Generator, AFileThatCannotBeWrittenIsAnError) {
    const int full = ::open("/dev/full", O_WRONLY);
    ASSERT_GE(full, 0);
    perf_store::output_file out(full, "set.ndjson");
    const pm_error error = perf_store::generate(nothing(), &out);
    EXPECT_EQ(error.text(), "set.ndjson: No space left on device");
    // With so many objects it would run for hours if it went on.
    gen_options endless = nothing();
    endless.policies = perf_store::GEN_MAX_OBJECTS;
    endless.interfaces = perf_store::GEN_MAX_OBJECTS;
    perf_store::output_file again(full, "set.ndjson");
    EXPECT_EQ(perf_store::generate(endless, &again).text(), "set.ndjson: No space left on device");
    ::close(full);
}

}  // namespace
