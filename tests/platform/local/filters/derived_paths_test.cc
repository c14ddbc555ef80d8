// SPDX-License-Identifier: Apache-2.0
// Derived item paths over a real store: what each component of a key selects.
#include "tests/platform/local/filters/derived_store.h"

namespace {

using namespace derived_test;

class DerivedPaths : public DerivedStore {
protected:
    // One component by itself, and the details that it must select.
    struct component {
        std::size_t position;
        const char *text;
        names wanted;
    };

    static void expect_components(const char *filter, std::size_t count, const std::vector<component> &components) {
        for (const component &each : components) {
            const std::string path = filter + key(count, {{each.position, each.text}}) + "/";
            EXPECT_EQ(listed(path), each.wanted) << path;
        }
    }

    // Both ways to read nothing: a listing, and an item that is there without the filter.
    static void expect_nothing(const std::string &filter, const std::string &key, const std::string &name) {
        EXPECT_EQ(listed(filter + key + "/"), names{}) << filter << key;
        EXPECT_EQ(get(filter + key + "/" + name), ERRCODE_NOT_FOUND) << filter << key;
    }
};

// SR policies ------------------------------------------------------------------------------------

TEST_F(DerivedPaths, EachComponentOfAPolicysKeySelectsByItself) {
    expect_components("srpolicy/detail-filter/", POLICY,
                      {
                          {1, "0xa", {"a", "c"}},
                          {1, "0x14", {"b"}},
                          {1, "0xffffffff", {"d"}},
                          {1, "0xb", {}},
                          {1, "0x63", {}},  // only on the other node
                          {2, "0a000001", {"a"}},
                          {2, "20010db8000000000000000000000001", {"b"}},
                          {2, "0a000002", {"d"}},
                          {2, "0a000003", {}},
                          {2, "00000000", {}},
                          {2, "20010db8", {}},
                          {2, "0a000001000000000000000000000000", {}},
                          {2, "00000000000000000000000000000000", {}},
                          {3, "0xa", {"a", "d"}},
                          {3, "0x14", {"b"}},
                          {3, "0x1e", {"a"}},
                          {3, "0x0", {}},
                          {4, "0x64", {"a"}},
                          {4, "0x65", {"a"}},
                          {4, "0x7", {"b"}},
                          {4, "0x0", {"d"}},
                          {4, "0x66", {}},
                          {5, "0xc8", {"a"}},
                          {5, "0x32", {"a"}},
                          {5, "0x64", {"b"}},
                          {5, "0xffffffff", {"d"}},
                          {5, "0x0", {}},
                          {6, "sl-a1", {"a"}},
                          {6, "sl-a2", {"a"}},
                          {6, "sl-a3", {"a"}},
                          {6, "sl-b", {"b"}},
                          {6, "sl-a", {}},
                          {6, "sl-bb", {}},
                          {6, "SL-B", {}},
                          {6, "sl-reverse", {}},
                          {7, "TRUE", {"a", "b", "c", "d"}},
                          {8, "0x0", {"a", "d"}},
                          {8, "0x2", {"a", "b"}},
                          {8, "0x1", {"a", "b", "c", "d"}},
                          {8, "0x3", {"a", "b", "c", "d"}},
                          {8, "0x4", {"a", "b", "c", "d"}},
                          {9, "0x1", {"b", "d"}},
                          {9, "0x0", {"a"}},
                          {10, "0x3", {"a"}},
                          {10, "0x0", {"b"}},
                          {10, "0x5", {"b"}},
                          {10, "0xff", {"d"}},
                          {10, "0x1", {}},
                          {10, "0x103", {}},
                          {11, "0x5dc0", {"a"}},
                          {11, "0x5dc1", {"a"}},
                          {11, "0x7530", {"b"}},
                          {11, "0xfffff", {"d"}},
                          {11, "0x0", {}},
                      });
}

TEST_F(DerivedPaths, WildcardsAloneSelectEveryPolicy) {
    EXPECT_EQ(listed("srpolicy/detail-filter/" + key(POLICY, {}) + "/"), (names{"a", "b", "c", "d"}));
}

TEST_F(DerivedPaths, AllComponentsMustMatch) {
    const std::string filter = "srpolicy/detail-filter/";
    EXPECT_EQ(listed(filter + key(POLICY, {{1, "0xa"}, {2, "0a000001"}}) + "/"), names{"a"});
    EXPECT_EQ(listed(filter + key(POLICY, {{1, "0xa"}, {2, "0a000002"}}) + "/"), names{});
    EXPECT_EQ(listed(filter + key(POLICY, {{3, "0xa"}, {9, "0x1"}}) + "/"), names{"d"});
    EXPECT_EQ(listed(filter + key(POLICY, {{8, "0x2"}, {9, "0x1"}}) + "/"), names{"b"});
    EXPECT_EQ(listed(filter + key(POLICY, {{1, "0x14"}, {8, "0x0"}}) + "/"), names{});
}

TEST_F(DerivedPaths, ComponentsMayMatchInDifferentCandidatePaths) {
    EXPECT_EQ(listed("srpolicy/detail-filter/" + key(POLICY, {{3, "0xa"}, {4, "0x65"}, {8, "0x2"}, {10, "0x3"}}) + "/"),
              names{"a"});
}

TEST_F(DerivedPaths, AllElevenComponentsAtOnce) {
    using change = std::pair<std::size_t, std::string>;
    const std::vector<change> all = {{1, "0xa"},  {2, "0a000001"}, {3, "0x1e"},   {4, "0x64"},
                                     {5, "0x32"}, {6, "sl-a2"},    {7, "TRUE"},   {8, "0x2"},
                                     {9, "0x0"},  {10, "0x3"},     {11, "0x5dc1"}};
    EXPECT_EQ(listed("srpolicy/detail-filter/" + key(POLICY, all) + "/"), names{"a"});
    // One that no policy has, or that only another one has, and nothing is left.
    for (const change &other :
         {change{1, "0x14"}, change{2, "0a000002"}, change{3, "0x14"}, change{4, "0x7"}, change{5, "0x64"},
          change{6, "sl-b"}, change{9, "0x1"}, change{10, "0x5"}, change{11, "0x7530"}}) {
        std::vector<change> changed = all;
        changed[other.first - 1] = other;
        EXPECT_EQ(listed("srpolicy/detail-filter/" + key(POLICY, changed) + "/"), names{}) << other.first;
    }
}

// Endpoints and tunnels --------------------------------------------------------------------------

TEST_F(DerivedPaths, EachComponentOfAnEndpointsKeySelectsByItself) {
    expect_components("endpoint/detail-filter/", ENDPOINT,
                      {
                          {1, "red", {"w", "x", "z"}},
                          {1, "blue", {"y"}},
                          {1, "green", {"w"}},
                          {1, "re", {}},
                          {1, "purple", {}},
                          {2, "0a010001", {"x"}},
                          {2, "20010db8000000000000000000000002", {"y"}},
                          {2, "0a010003", {"z"}},
                          {2, "0a010004", {"w"}},
                          {2, "0a010005", {"w"}},
                          {2, "c0000201", {}},  // the source address of all
                          {2, "00000000", {}},
                          {3, "sl-x1", {"x"}},
                          {3, "sl-x2", {"x"}},
                          {3, "sl-y", {"y"}},
                          {3, "sl-z", {"z"}},
                          {3, "sl-w", {"w"}},
                          {3, "sl-", {}},
                          {4, "0x0", {"w", "x"}},
                          {4, "0x2", {"w", "y"}},
                          {4, "0x3", {"w", "z"}},
                          {4, "0x1", {"v", "w", "x", "y", "z"}},
                          {4, "0x4", {"v", "w", "x", "y", "z"}},
                      });
}

TEST_F(DerivedPaths, SeveralComponentsOfAnEndpointsKey) {
    const std::string filter = "endpoint/detail-filter/";
    EXPECT_EQ(listed(filter + key(ENDPOINT, {}) + "/"), (names{"v", "w", "x", "y", "z"}));
    EXPECT_EQ(listed(filter + key(ENDPOINT, {{1, "red"}, {4, "0x0"}}) + "/"), (names{"w", "x"}));
    EXPECT_EQ(listed(filter + "green,0a010005,sl-w,0x3/"), names{"w"});
    EXPECT_EQ(listed(filter + "red,0a010001,sl-x2,0x0/"), names{"x"});
    EXPECT_EQ(listed(filter + "red,0a010001,sl-x2,0x2/"), names{});
    EXPECT_EQ(listed(filter + "red,0a010003,sl-x2,0x0/"), names{});
}

TEST_F(DerivedPaths, EachComponentOfATunnelsKeySelectsByItself) {
    expect_components("rsvpte/detail-filter/", TUNNEL,
                      {
                          {1, "0x5", {"t1"}},
                          {1, "0x6", {"t1", "t2"}},
                          {1, "0x7", {}},
                          {1, "0x9", {}},
                          {1, "0x0", {}},
                          {2, "0a020001", {"t1", "t3"}},
                          {2, "0a020002", {"t2"}},
                          {2, "c0000201", {}},
                          {2, "0a020001000000000000000000000000", {}},
                      });
    EXPECT_EQ(listed("rsvpte/detail-filter/" + key(TUNNEL, {}) + "/"), (names{"t1", "t2", "t3"}));
    EXPECT_EQ(listed("rsvpte/detail-filter/0x6,0a020001/"), names{"t1"});
    EXPECT_EQ(listed("rsvpte/detail-filter/0x5,0a020002/"), names{});
}

// Counters and histories -------------------------------------------------------------------------

TEST_F(DerivedPaths, CountersAndHistoriesAreFilteredByTheDetailOfTheSameName) {
    struct {
        std::vector<const char *> kinds;
        std::string key;
        names wanted;
        std::string own_values;  // a key that only the history itself would match
        std::string wildcards;
        names all;
    } const families[] = {
        {{"srpolicy/counters", "srpolicy/delay/probe-history", "srpolicy/delay/aggr-history",
          "srpolicy/delay/adv-history", "srpolicy/liveness/live-history"},
         key(POLICY, {{1, "0xa"}}),
         {"a", "c"},
         key(POLICY, {{2, "c0000263"}}),
         key(POLICY, {}),
         {"a", "b", "c", "d", "orphan"}},
        {{"endpoint/counters", "endpoint/delay/probe-history", "endpoint/delay/aggr-history",
          "endpoint/delay/adv-history", "endpoint/delay/live-history"},
         key(ENDPOINT, {{1, "red"}}),
         {"w", "x", "z"},
         key(ENDPOINT, {{1, "purple"}}),
         key(ENDPOINT, {}),
         {"orphan", "v", "w", "x", "y", "z"}},
        {{"rsvpte/counters", "rsvpte/delay/probe-history", "rsvpte/delay/aggr-history", "rsvpte/delay/adv-history"},
         key(TUNNEL, {{1, "0x6"}}),
         {"t1", "t2"},
         key(TUNNEL, {{1, "0x9"}}),
         key(TUNNEL, {}),
         {"orphan", "t1", "t2", "t3"}},
    };
    for (const auto &family : families) {
        for (const std::string kind : family.kinds) {
            EXPECT_EQ(listed(kind + "-filter/" + family.key + "/"), family.wanted) << kind;
            EXPECT_EQ(listed(kind + "-filter/" + family.own_values + "/"), names{}) << kind;
            EXPECT_EQ(listed(kind + "-filter/" + family.wildcards + "/"), family.all) << kind;
            EXPECT_EQ(get(kind + "-filter/" + family.key + "/orphan"), ERRCODE_NOT_FOUND) << kind;
            EXPECT_EQ(get(kind + "-filter/" + family.wildcards + "/orphan"), ERRCODE_SUCCESS) << kind;
            EXPECT_EQ(get(kind + "-filter/" + family.key + "/" + family.wanted[0]), ERRCODE_SUCCESS) << kind;
        }
    }
}

TEST_F(DerivedPaths, ComponentsThatSelectEverythingStillNeedTheDetail) {
    EXPECT_EQ(listed("srpolicy/counters-filter/" + key(POLICY, {{8, "0x4"}}) + "/"), (names{"a", "b", "c", "d"}));
    EXPECT_EQ(listed("endpoint/counters-filter/" + key(ENDPOINT, {{4, "0x1"}}) + "/"),
              (names{"v", "w", "x", "y", "z"}));
}

TEST_F(DerivedPaths, DetailsOfOtherNodesDoNotCount) {
    const std::string filter = "srpolicy/counters-filter/";
    EXPECT_EQ(listed(filter + key(POLICY, {}) + "/", OTHER_NODE), names{"b"});
    EXPECT_EQ(listed(filter + key(POLICY, {{1, "0x14"}}) + "/", OTHER_NODE), names{});
    EXPECT_EQ(get(filter + key(POLICY, {{1, "0x14"}}) + "/b", OTHER_NODE), ERRCODE_NOT_FOUND);
    EXPECT_EQ(get(filter + key(POLICY, {{1, "0x14"}}) + "/b", NODE), ERRCODE_SUCCESS);
    EXPECT_EQ(listed("srpolicy/detail-filter/" + key(POLICY, {{1, "0x63"}}) + "/", OTHER_NODE), names{"a"});
    EXPECT_EQ(listed(filter + key(POLICY, {{1, "0x63"}}) + "/", NODE), names{});
}

// Single items, damaged keys ---------------------------------------------------------------------

TEST_F(DerivedPaths, OneItemIsThePlainItemWhenItMatches) {
    const std::pair<const char *, std::string> items[] = {
        {"srpolicy/detail/a", "srpolicy/detail-filter/" + key(POLICY, {{1, "0xa"}}) + "/a"},
        {"srpolicy/counters/a", "srpolicy/counters-filter/" + key(POLICY, {{11, "0x5dc0"}}) + "/a"},
        {"endpoint/detail/y", "endpoint/detail-filter/" + key(ENDPOINT, {{1, "blue"}}) + "/y"},
        {"endpoint/delay/live-history/z", "endpoint/delay/live-history-filter/" + key(ENDPOINT, {{3, "sl-z"}}) + "/z"},
        {"rsvpte/detail/t3", "rsvpte/detail-filter/" + key(TUNNEL, {{2, "0a020001"}}) + "/t3"},
        {"rsvpte/counters/t2", "rsvpte/counters-filter/" + key(TUNNEL, {}) + "/t2"},
    };
    for (const auto &[plain, derived] : items) {
        std::string wanted;
        std::string found;
        ASSERT_EQ(get(plain, NODE, &wanted), ERRCODE_SUCCESS) << plain;
        EXPECT_EQ(get(derived, NODE, &found), ERRCODE_SUCCESS) << derived;
        EXPECT_EQ(found, wanted) << derived;
    }
}

TEST_F(DerivedPaths, OneItemThatDoesNotMatchOrIsMissingIsNotFound) {
    EXPECT_EQ(get("srpolicy/detail-filter/" + key(POLICY, {{1, "0xa"}}) + "/b"), ERRCODE_NOT_FOUND);
    EXPECT_EQ(get("srpolicy/counters-filter/" + key(POLICY, {{1, "0xa"}}) + "/b"), ERRCODE_NOT_FOUND);
    EXPECT_EQ(get("endpoint/detail-filter/" + key(ENDPOINT, {{1, "red"}}) + "/y"), ERRCODE_NOT_FOUND);
    EXPECT_EQ(get("rsvpte/detail-filter/" + key(TUNNEL, {{1, "0x5"}}) + "/t2"), ERRCODE_NOT_FOUND);
    EXPECT_EQ(get("srpolicy/detail-filter/" + key(POLICY, {{1, "0xa"}}) + "/aa"), ERRCODE_NOT_FOUND);
    EXPECT_EQ(get("srpolicy/detail-filter/" + key(POLICY, {}) + "/aa"), ERRCODE_NOT_FOUND);
    EXPECT_EQ(get("srpolicy/detail-filter/" + key(POLICY, {}) + "/"), ERRCODE_NOT_FOUND);
    EXPECT_EQ(get("srpolicy/detail-filter/" + key(POLICY, {})), ERRCODE_NOT_FOUND);
}

TEST_F(DerivedPaths, TheSlashBehindTheKeyMayBeMissingFromAListing) {
    EXPECT_EQ(listed("srpolicy/detail-filter/" + key(POLICY, {{1, "0xa"}})), (names{"a", "c"}));
    EXPECT_EQ(listed("endpoint/counters-filter/" + key(ENDPOINT, {{1, "red"}})), (names{"w", "x", "z"}));
    EXPECT_EQ(listed("rsvpte/detail-filter/" + key(TUNNEL, {{1, "0x5"}})), names{"t1"});
}

TEST_F(DerivedPaths, KeysWithTooFewOrTooManyComponentsMatchNothing) {
    for (const std::size_t count : {1U, 2U, 10U, 12U, 20U}) {
        expect_nothing("srpolicy/detail-filter/", key(count, {}), "a");
        expect_nothing("srpolicy/counters-filter/", key(count, {{1, "0xa"}}), "a");
    }
    for (const std::size_t count : {1U, 3U, 5U, 11U}) {
        expect_nothing("endpoint/detail-filter/", key(count, {}), "x");
        expect_nothing("endpoint/counters-filter/", key(count, {{1, "red"}}), "x");
    }
    for (const std::size_t count : {1U, 3U, 11U}) {
        expect_nothing("rsvpte/detail-filter/", key(count, {}), "t1");
        expect_nothing("rsvpte/delay/probe-history-filter/", key(count, {{1, "0x5"}}), "t1");
    }
    expect_nothing("srpolicy/detail-filter/", "", "a");
    expect_nothing("srpolicy/detail-filter/", ",,,,,,,,,,", "a");
    expect_nothing("endpoint/detail-filter/", ",,,", "x");
    expect_nothing("rsvpte/detail-filter/", ",", "t1");
    EXPECT_EQ(listed("srpolicy/detail-filter"), names{});
}

TEST_F(DerivedPaths, ComponentsThatCannotBeReadMatchNothing) {
    for (const char *junk : {"0x", "x", "0xag", "0xa ", "0x-a", "0x10000000a", "_______", "_________", "0xa0xa"}) {
        for (const std::size_t position : {1U, 3U, 4U, 5U, 8U, 9U, 10U, 11U}) {
            expect_nothing("srpolicy/detail-filter/", key(POLICY, {{position, junk}}), "a");
        }
        expect_nothing("endpoint/detail-filter/", key(ENDPOINT, {{4, junk}}), "x");
        expect_nothing("rsvpte/detail-filter/", key(TUNNEL, {{1, junk}}), "t1");
    }
    for (const char *junk : {"", "0a0000", "0a00000101", "0a00000g", "10.0.0.256", "2001:db8:::1"}) {
        expect_nothing("srpolicy/detail-filter/", key(POLICY, {{2, junk}}), "a");
        expect_nothing("endpoint/detail-filter/", key(ENDPOINT, {{2, junk}}), "x");
        expect_nothing("rsvpte/detail-filter/", key(TUNNEL, {{2, junk}}), "t1");
    }
}

TEST_F(DerivedPaths, NamesThatLookLikeAFilterAreNames) {
    EXPECT_EQ(listed("srpolicy/detail/", ODD_NODE), (names{"a-filter", "a-filter/b", "detail-filter/c"}));
    EXPECT_EQ(listed("srpolicy/detail/a-filter/", ODD_NODE), names{"b"});
    EXPECT_EQ(get("srpolicy/detail/a-filter", ODD_NODE), ERRCODE_SUCCESS);
    EXPECT_EQ(get("srpolicy/detail/a-filter/b", ODD_NODE), ERRCODE_SUCCESS);
    EXPECT_EQ(get("srpolicy/detail/detail-filter/c", ODD_NODE), ERRCODE_SUCCESS);
    const std::string filter = "srpolicy/detail-filter/" + key(POLICY, {{1, "0xa"}}) + "/";
    EXPECT_EQ(listed(filter, ODD_NODE), (names{"a-filter", "a-filter/b", "detail-filter/c"}));
    EXPECT_EQ(get(filter + "a-filter/b", ODD_NODE), ERRCODE_SUCCESS);
}

TEST_F(DerivedPaths, OnlyTheKnownPlacesAreFiltered) {
    EXPECT_EQ(get("srpolicy/other/d", ODD_NODE), ERRCODE_SUCCESS);
    EXPECT_EQ(get("srpolicy/other-filter/" + key(POLICY, {}) + "/d", ODD_NODE), ERRCODE_NOT_FOUND);
    EXPECT_EQ(listed("srpolicy/other-filter/" + key(POLICY, {}) + "/", ODD_NODE), names{});
}

TEST_F(DerivedPaths, AMissingComponentOfAProfileKeyMatchesNoName) {
    EXPECT_EQ(listed("name-profile/", ODD_NODE), names{"0x0/0x2"});
    EXPECT_EQ(listed("name-profile-filter/0x0,0x2", ODD_NODE), names{});
    EXPECT_EQ(get("name-profile-filter/0x0,0x2/0x0,0x2", ODD_NODE), ERRCODE_NOT_FOUND);
}

// Long listings ----------------------------------------------------------------------------------

TEST_F(DerivedPaths, ManyMatchesAreListedOnceEachInOrderAcrossBatches) {
    names wanted;
    for (unsigned i = 0; i < MANY; i += EVERY) {
        wanted.push_back(long_name(i));
    }
    for (const char *kind : {"srpolicy/detail-filter/", "srpolicy/counters-filter/"}) {
        const answer many = list(kind + key(POLICY, {{1, "0x7"}}) + "/", LARGE_NODE);
        EXPECT_EQ(many.code, ERRCODE_SUCCESS) << kind;
        EXPECT_TRUE(many.found == wanted) << kind << ": " << many.found.size() << " items";
        EXPECT_GT(many.batches.size(), 1U) << kind;
        EXPECT_EQ(many.batches.at(0), BATCH) << kind;
    }
}

TEST_F(DerivedPaths, MatchesThatFillTheirBatchesEndTheListing) {
    const answer all = list("srpolicy/detail-filter/" + key(POLICY, {{8, "0x1"}}) + "/", LARGE_NODE);
    EXPECT_EQ(all.found.size(), MANY);
    EXPECT_EQ(all.batches, (std::vector<std::uint32_t>{200, 200, 200, 200, 200}));
}

// Profiles ---------------------------------------------------------------------------------------

TEST_F(DerivedPaths, AllProfilesAreTheNamedProfiles) {
    const names all{"0x0/0x1/gold", "0x0/0x2/gold",       "0x0/0x2/silver",
                    "0x1/0x2/gold", "0x2/0x1/live%20one", "0x3/0x2/probe"};
    EXPECT_EQ(listed("name-profile/"), all);
    EXPECT_EQ(listed("all-profile/"), all);
    EXPECT_EQ(listed("all-profile"), all);
    EXPECT_EQ(listed("all-profiles/"), names{});
}

TEST_F(DerivedPaths, AProfileKeySelectsByKindTransportAndName) {
    const std::pair<const char *, names> keys[] = {
        {"0x0,________,________", {"0x0/0x1/gold", "0x0/0x2/gold", "0x0/0x2/silver"}},
        {"________,0x2,________", {"0x0/0x2/gold", "0x0/0x2/silver", "0x1/0x2/gold", "0x3/0x2/probe"}},
        {"________,________,gold", {"0x0/0x1/gold", "0x0/0x2/gold", "0x1/0x2/gold"}},
        {"________,________,live%20one", {"0x2/0x1/live%20one"}},
        {"0x0,0x2,________", {"0x0/0x2/gold", "0x0/0x2/silver"}},
        {"0x0,0x2,gold", {"0x0/0x2/gold"}},
        {"0x4,________,________", {}},
        {"________,0x3,________", {}},
        {"________,________,gol", {}},
        {"0x3,0x2,gold", {}},
        {"0x0,0x2", {}},
        {"0x0,0x2,gold,________", {}},
        {"", {}},
    };
    for (const auto &[text, wanted] : keys) {
        EXPECT_EQ(listed(std::string("name-profile-filter/") + text), wanted) << text;
    }
    EXPECT_EQ(listed("name-profile-filter/________,________,________").size(), 6U);
}

TEST_F(DerivedPaths, AProfileKeyTwiceIsTheOneProfile) {
    const auto twice = [](const std::string &text) { return "name-profile-filter/" + text + "/" + text; };
    for (const auto &[text, plain] : {std::pair{"0x0,0x2,gold", "name-profile/0x0/0x2/gold"},
                                      std::pair{"0x2,0x1,live%20one", "name-profile/0x2/0x1/live%20one"},
                                      std::pair{"________,0x2,probe", "name-profile/0x3/0x2/probe"}}) {
        std::string wanted;
        std::string found;
        ASSERT_EQ(get(plain, NODE, &wanted), ERRCODE_SUCCESS);
        EXPECT_EQ(get(twice(text), NODE, &found), ERRCODE_SUCCESS) << text;
        EXPECT_EQ(found, wanted) << text;
    }
    for (const char *text : {"0x0,0x2,bronze", "0x1,0x1,gold", "0x0,0x3,gold", "0x0,0x2"}) {
        EXPECT_EQ(get(twice(text)), ERRCODE_NOT_FOUND) << text;
    }
    EXPECT_EQ(get(twice("0x0,0x2,gold"), OTHER_NODE), ERRCODE_NOT_FOUND);
}

// Publishers -------------------------------------------------------------------------------------

TEST_F(DerivedPaths, PublishersAnswerTheirStatesForDerivedPathsToo) {
    const std::pair<std::uint32_t, errcode> nodes[] = {{STOPPED_NODE, 0x40819000},
                                                       {UNREACHABLE_NODE, 0x40818600},
                                                       {STARTING_NODE, 0x40818a00},
                                                       {UNKNOWN_NODE, 0x40812a00}};
    const std::string listings[] = {"srpolicy/detail-filter/" + key(POLICY, {{1, "0xa"}}) + "/",
                                    "srpolicy/counters-filter/" + key(POLICY, {}) + "/", "all-profile/",
                                    "name-profile-filter/0x0,0x2,gold"};
    for (const auto &[node, code] : nodes) {
        for (const std::string &path : listings) {
            EXPECT_EQ(list(path, node).code, code) << path << " on " << node;
        }
        EXPECT_EQ(get("srpolicy/detail-filter/" + key(POLICY, {{1, "0xa"}}) + "/a", node), code) << node;
        EXPECT_EQ(get("name-profile-filter/0x0,0x2,gold/0x0,0x2,gold", node), code) << node;
    }
    for (const std::string &path : listings) {
        EXPECT_EQ(listed(path, EMPTY_NODE), names{}) << path;
    }
    EXPECT_EQ(get("srpolicy/detail-filter/" + key(POLICY, {{1, "0xa"}}) + "/a", EMPTY_NODE), ERRCODE_NOT_FOUND);
}

}  // namespace
