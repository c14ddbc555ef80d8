// SPDX-License-Identifier: Apache-2.0
// The table of item paths: what follows from a row, and what no row may lack.
#include "paths/item_paths.h"

#include <gtest/gtest.h>
#include <set>
#include <vector>

#include "paths/roots.h"

namespace {

using namespace path_grammar;

TEST(ItemPaths, EveryFilteredPrefixFollowsFromItsPlainOne) {
    const std::pair<place, const char *> filtered[] = {
        {place::srpolicy_detail, "srpolicy/detail-filter/"},
        {place::srpolicy_counters, "srpolicy/counters-filter/"},
        {place::srpolicy_probe_history, "srpolicy/delay/probe-history-filter/"},
        {place::srpolicy_aggr_history, "srpolicy/delay/aggr-history-filter/"},
        {place::srpolicy_adv_history, "srpolicy/delay/adv-history-filter/"},
        {place::srpolicy_live_history, "srpolicy/liveness/live-history-filter/"},
        {place::rsvpte_detail, "rsvpte/detail-filter/"},
        {place::rsvpte_counters, "rsvpte/counters-filter/"},
        {place::rsvpte_probe_history, "rsvpte/delay/probe-history-filter/"},
        {place::rsvpte_aggr_history, "rsvpte/delay/aggr-history-filter/"},
        {place::rsvpte_adv_history, "rsvpte/delay/adv-history-filter/"},
        {place::endpoint_detail, "endpoint/detail-filter/"},
        {place::endpoint_counters, "endpoint/counters-filter/"},
        {place::endpoint_probe_history, "endpoint/delay/probe-history-filter/"},
        {place::endpoint_aggr_history, "endpoint/delay/aggr-history-filter/"},
        {place::endpoint_adv_history, "endpoint/delay/adv-history-filter/"},
        {place::endpoint_live_history, "endpoint/delay/live-history-filter/"},
        {place::name_profile, "name-profile-filter/"},
    };
    std::set<place> with_key;
    for (const place_row &row : PLACES) {
        if (row.filter != nullptr) {
            with_key.insert(row.id);
        }
    }
    EXPECT_EQ(with_key.size(), std::size(filtered));
    for (const auto &[where, prefix] : filtered) {
        EXPECT_TRUE(with_key.contains(where)) << prefix;
        EXPECT_EQ(filter_prefix(row_of(where)), prefix);
    }
}

TEST(ItemPaths, APlaceWithAFilterHoldsNames) {
    for (const place_row &row : PLACES) {
        EXPECT_TRUE(row.filter == nullptr || row.path.ends_with('/')) << row.path;
    }
}

TEST(ItemPaths, NoFilteredPrefixIsTheBeginningOfAnother) {
    for (const place_row &one : PLACES) {
        for (const place_row &other : PLACES) {
            if (one.filter != nullptr && other.filter != nullptr && one.id != other.id) {
                EXPECT_FALSE(filter_prefix(one).starts_with(filter_prefix(other))) << one.path;
            }
        }
    }
}

TEST(ItemPaths, AKeyNamesNoPropertyTwice) {
    for (const filter_key *key : {&SRPOLICY_KEY, &ENDPOINT_KEY, &RSVPTE_KEY, &PROFILE_KEY}) {
        std::set<property> named;
        for (const component &each : key->components) {
            EXPECT_TRUE(named.insert(each.what).second) << static_cast<int>(each.what);
        }
    }
    EXPECT_EQ(SRPOLICY_KEY.components.size(), 11U);
    EXPECT_EQ(ENDPOINT_KEY.components.size(), 4U);
    EXPECT_EQ(RSVPTE_KEY.components.size(), 2U);
    EXPECT_EQ(PROFILE_KEY.components.size(), 3U);
}

TEST(Roots, EachHasItsDatabasePath) {
    EXPECT_STREQ(path_of(root::main), "/oper/perf_meas/main/");
    EXPECT_STREQ(path_of(root::responder), "/oper/perf_meas/resp/");
    EXPECT_STREQ(path_of(root::receive), "/oper/perf_meas/rx/");
    EXPECT_STREQ(path_of(root::checkpoint), "/oper/perf_meas/chkpt/");
}

}  // namespace
