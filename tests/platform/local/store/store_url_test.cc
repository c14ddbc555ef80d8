// SPDX-License-Identifier: Apache-2.0
// The store's URL taken apart, and what is said of a store.
#include <cstdlib>
#include <gtest/gtest.h>

#include "platform/errcode.h"
#include "platform/local/store/store_url.h"

namespace {

TEST(StoreUrl, IsASchemeAndAPlace) {
    EXPECT_EQ(store::scheme_of("lmdb:/a:b"), "lmdb");
    EXPECT_EQ(store::place_of("lmdb:/a:b"), "/a:b");
    EXPECT_EQ(store::scheme_of("lmdb:"), "");
    EXPECT_EQ(store::scheme_of("/a"), "");
    EXPECT_EQ(store::scheme_of(""), "");
    EXPECT_EQ(store::scheme_of(":a"), "");
}

TEST(StoreUrl, IsTheDefaultWhenNoneIsGiven) {
    unsetenv("OPSTORE_URL");
    EXPECT_STREQ(store::configured_url(), "lmdb:/var/lib/perf-show/opstore");
    setenv("OPSTORE_URL", "", 1);
    EXPECT_STREQ(store::configured_url(), "lmdb:/var/lib/perf-show/opstore");
    setenv("OPSTORE_URL", "lmdb:/x", 1);
    EXPECT_STREQ(store::configured_url(), "lmdb:/x");
}

TEST(StoreUrl, NamesTheStoreInAnErrorWithoutAText) {
    setenv("OPSTORE_URL", "lmdb:/x", 1);
    EXPECT_EQ(store::describe(pm_error(OPSTORE_DAMAGED)), "lmdb:/x: Store is damaged");
    EXPECT_EQ(store::describe(pm_error(OPSTORE_DAMAGED, "/x: gone")), "/x: gone");
}

TEST(StoreUrl, TellsWhoeverHasNotChosenTheStoreHowTo) {
    const std::string advice = " (OPSTORE_URL is not set; it names another store, as lmdb:FOLDER)";
    for (const bool is_empty : {false, true}) {
        is_empty ? setenv("OPSTORE_URL", "", 1) : unsetenv("OPSTORE_URL");
        EXPECT_EQ(store::describe(pm_error(OPSTORE_DAMAGED)),
                  "lmdb:/var/lib/perf-show/opstore: Store is damaged" + advice);
        EXPECT_EQ(store::describe(pm_error(OPSTORE_DAMAGED, "/x: gone")), "/x: gone" + advice);
    }
}

}  // namespace
