// SPDX-License-Identifier: Apache-2.0
// Optionals and arrays within each other, byte by byte: no record type has all of these yet.
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

#include "tests/support/codec_fixture.h"

namespace {

// The fields that a parcel of a type carries.
parcel fields_of(const parcel &bytes) {
    parcel_header header{};
    EXPECT_EQ(parcel_read_header(bytes.data(), bytes.size(), &header), ERRCODE_SUCCESS);
    return {bytes.begin() + static_cast<std::ptrdiff_t>(header.size), bytes.end()};
}

using number_array = parcel_array<std::uint16_t>;

TEST(Nesting, AnArrayOfArrays) {
    const parcel_descriptor *type = make_type("$1={Lists}a(a(I)){Last}C;", 24, {0, 16});
    struct lists_record {
        parcel_array<number_array> Lists;
        std::uint8_t Last;
    };
    std::uint16_t first[] = {0x0102, 0x0304};
    std::uint16_t third[] = {0x0506};
    number_array lists[] = {{2, first}, {0, nullptr}, {1, third}};
    const lists_record record{{3, lists}, 9};
    const parcel bytes = encode(&record, type);
    EXPECT_EQ(fields_of(bytes), (parcel{3, 2, 2, 1, 4, 3, 0, 1, 6, 5, 9}));
    const decoded_record decoded(bytes, type);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    const auto &read = decoded.as<lists_record>();
    ASSERT_EQ(read.Lists.count, 3U);
    ASSERT_EQ(read.Lists[0].count, 2U);
    EXPECT_EQ(read.Lists[0][1], 0x0304);
    EXPECT_EQ(read.Lists[1].count, 0U);
    EXPECT_EQ(read.Lists[1].elements, nullptr);
    ASSERT_EQ(read.Lists[2].count, 1U);
    EXPECT_EQ(read.Lists[2][0], 0x0506);
    EXPECT_EQ(read.Last, 9);
}

TEST(Nesting, AnArrayOfOptionals) {
    const parcel_descriptor *type = make_type("$1={Some}a(p(I)){Last}C;", 24, {0, 16});
    struct some_record {
        parcel_array<std::uint16_t *> Some;
        std::uint8_t Last;
    };
    std::uint16_t value = 0x0102;
    std::uint16_t *some[] = {nullptr, &value, nullptr};
    const some_record record{{3, some}, 9};
    const parcel bytes = encode(&record, type);
    EXPECT_EQ(fields_of(bytes), (parcel{3, 0, 1, 2, 1, 0, 9}));
    const decoded_record decoded(bytes, type);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    const auto &read = decoded.as<some_record>();
    ASSERT_EQ(read.Some.count, 3U);
    EXPECT_EQ(read.Some[0], nullptr);
    ASSERT_NE(read.Some[1], nullptr);
    EXPECT_EQ(*read.Some[1], 0x0102);
    EXPECT_EQ(read.Some[2], nullptr);
    EXPECT_EQ(read.Last, 9);
}

TEST(Nesting, AnOptionalArrayAndAnOptionalOptional) {
    const parcel_descriptor *type =
        make_type("$1={List}p(a(I)){None}p(a(I)){Inner}p(p(C)){Last}C;", 32, {0, 8, 16, 24});
    struct optional_record {
        number_array *List;
        number_array *None;
        std::uint8_t **Inner;
        std::uint8_t Last;
    };
    std::uint16_t values[] = {0x0102};
    number_array list{1, values};
    std::uint8_t *absent = nullptr;
    const optional_record record{&list, nullptr, &absent, 9};
    const parcel bytes = encode(&record, type);
    EXPECT_EQ(fields_of(bytes), (parcel{1, 1, 2, 1, 0, 1, 0, 9}));
    const decoded_record decoded(bytes, type);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    const auto &read = decoded.as<optional_record>();
    ASSERT_NE(read.List, nullptr);
    ASSERT_EQ(read.List->count, 1U);
    EXPECT_EQ((*read.List)[0], 0x0102);
    EXPECT_EQ(read.None, nullptr);
    ASSERT_NE(read.Inner, nullptr);  // there, and says that there is nothing
    EXPECT_EQ(*read.Inner, nullptr);
    EXPECT_EQ(read.Last, 9);
}

TEST(Nesting, AFixedArrayOfArraysOfTexts) {
    const parcel_descriptor *type = make_type("$1={Names}2A(a(s)){Last}C;", 40, {0, 32});
    struct names_record {
        parcel_array<const char *> Names[2];
        std::uint8_t Last;
    };
    const char *names[] = {"ab", nullptr};
    const names_record record{{{0, nullptr}, {2, names}}, 9};
    const parcel bytes = encode(&record, type);
    EXPECT_EQ(fields_of(bytes), (parcel{0, 2, 3, 'a', 'b', 0, 9}));
    const decoded_record decoded(bytes, type);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    const auto &read = decoded.as<names_record>();
    EXPECT_EQ(read.Names[0].count, 0U);
    ASSERT_EQ(read.Names[1].count, 2U);
    EXPECT_STREQ(read.Names[1][0], "ab");
    EXPECT_EQ(read.Names[1][1], nullptr);
    EXPECT_EQ(read.Last, 9);
}

TEST(Nesting, AnEncodingCutWithinIsRefused) {
    const parcel_descriptor *type = make_type("$1={Lists}a(a(p(I)));", 16, {0});
    const parcel whole = {2, 2, 1, 2, 1, 0, 1, 1, 4, 3};
    EXPECT_EQ(decoded_record(with_fields(type, whole), type).code(), ERRCODE_SUCCESS);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const parcel cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_EQ(decoded_record(with_fields(type, cut), type).code(), PARCEL_MALFORMED) << length;
    }
}

}  // namespace
