// SPDX-License-Identifier: Apache-2.0
// Keys made and taken apart.
#include <gtest/gtest.h>

#include "platform/local/store/record_key.h"

namespace {

using namespace std::string_literals;
using store::key_space;

TEST(RecordKey, HasItsNumbersInBigEndianOrder) {
    EXPECT_EQ(store::key(key_space::platform), "P");
    EXPECT_EQ(store::key(key_space::interface, 0x01020304), "H\1\2\3\4");
    EXPECT_EQ(store::schema_key(0x0102030405060708), "S\1\2\3\4\5\6\7\x8"s);
    EXPECT_EQ(store::branch_key(key_space::publisher, {store::root::checkpoint, 0x10}), "Uc\0\0\0\x10"s);
    EXPECT_EQ(store::item_key({store::root::responder, 0xFF000001}, "a/b"), "Ir\xFF\0\0\1a/b"s);
}

TEST(RecordKey, OfANumberIsTakenApart) {
    std::uint32_t number = 0;
    EXPECT_TRUE(store::parse_number_key("H\1\2\3\4", &number));
    EXPECT_EQ(number, 0x01020304U);
    for (const std::string &other : {"H"s, "H\1\2\3"s, "H\1\2\3\4\5"s}) {
        EXPECT_FALSE(store::parse_number_key(other, &number)) << other.size();
    }
}

TEST(RecordKey, OfABranchIsTakenApart) {
    store::branch named{};
    std::string_view path;
    const std::string key = "Ix\1\0\0\2intf/detail"s;
    ASSERT_TRUE(store::parse_branch_key(key, &named, &path));
    EXPECT_EQ(named, (store::branch{store::root::receive, 0x01000002}));
    EXPECT_EQ(path, "intf/detail");
    const std::string publisher = "Um\0\0\0\1"s;
    ASSERT_TRUE(store::parse_branch_key(publisher, &named, &path));
    EXPECT_EQ(named, (store::branch{store::root::main, 1}));
    EXPECT_EQ(path, "");
    for (const std::string &other : {"I"s, "Im"s, "Im\0\0\0"s, "I?\0\0\0\1a"s}) {
        EXPECT_FALSE(store::parse_branch_key(other, &named, &path)) << other.size();
    }
}

TEST(RecordKey, PrefixBelowAPathEndsAtAComponent) {
    EXPECT_EQ(store::prefix_below(""), "");
    EXPECT_EQ(store::prefix_below("dr"), "dr/");
    EXPECT_EQ(store::prefix_below("dr/"), "dr/");
}

}  // namespace
