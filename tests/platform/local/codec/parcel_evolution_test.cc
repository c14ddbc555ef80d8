// SPDX-License-Identifier: Apache-2.0
// Records that were written with another version of their type's schema.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "schema/pm_descriptors.h"
#include "tests/support/codec_fixture.h"

namespace {

TEST(Evolution, FieldsAreMatchedByNameWhateverTheirOrder) {
    const parcel_descriptor *writer = make_type("$1={Old}s{Count}D{Name}s;", 24, {0, 8, 16});
    const parcel_descriptor *reader = make_type("$1={Name}s{Added}H{Count}D;", 24, {0, 8, 16});
    struct written {
        const char *Old;
        std::uint32_t Count;
        const char *Name;
    } record{"gone", 7, "kept"};
    struct read {
        const char *Name;
        std::uint64_t Added;
        std::uint32_t Count;
    };
    const decoded_record decoded(encode(&record, writer), reader);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    EXPECT_STREQ(decoded.as<read>().Name, "kept");
    EXPECT_EQ(decoded.as<read>().Added, 0U);
    EXPECT_EQ(decoded.as<read>().Count, 7U);
}

TEST(Evolution, EveryKindOfUnknownFieldIsSkipped) {
    const parcel_descriptor *writer = make_type("$1={A}D{B}b{C}s{D}p(s){E}a(D){F}3A(b){G}a(b){H}p(a(s)){Last}H;", 88,
                                                {0, 4, 8, 16, 24, 40, 56, 72, 80});
    const parcel_descriptor *reader = make_type("$1={Last}H;", 8, {0});
    struct written {
        std::uint32_t A, B;
        const char *C;
        const char **D;
        parcel_array<std::uint32_t> E;
        std::uint32_t F[3];
        parcel_array<std::uint32_t> G;
        parcel_array<const char *> *H;
        std::uint64_t Last;
    };
    static_assert(sizeof(written) == 88);
    const char *text = "text";
    std::uint32_t numbers[] = {1, 0, 1};
    parcel_array<const char *> texts{1, &text};
    const written record{1, 1, "c", &text, {3, numbers}, {1, 0, 1}, {3, numbers}, &texts, 99};
    const decoded_record decoded(encode(&record, writer), reader);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    EXPECT_EQ(decoded.as<std::uint64_t>(), 99U);
    const written absent{1, 1, nullptr, nullptr, {0, nullptr}, {1, 0, 1}, {0, nullptr}, nullptr, 98};
    const decoded_record without(encode(&absent, writer), reader);
    ASSERT_EQ(without.code(), ERRCODE_SUCCESS);
    EXPECT_EQ(without.as<std::uint64_t>(), 98U);
}

TEST(Evolution, EveryArmOfAnUnknownUnionIsSkipped) {
    const parcel_descriptor *writer = make_type("$1={List}a($2){Last}D;$2=?(<Kind,kind_e>,0:{Number}D,5:{Text}s,6:v);",
                                                {{1, 24, {0, 16}}, {2, 16, {0, 8, 8, 8}}});
    const parcel_descriptor *reader = make_type("$1={Last}D;", 4, {0});
    struct choice {
        std::uint32_t Kind;
        const char *Text;
    } choices[] = {{0, nullptr}, {5, "text"}, {6, nullptr}, {7, nullptr}};  // of the last one nothing is written
    struct written {
        parcel_array<choice> List;
        std::uint32_t Last;
    };
    for (std::uint32_t count = 0; count <= 4; ++count) {
        const written record{{count, count != 0 ? choices : nullptr}, 99 + count};
        const decoded_record decoded(encode(&record, writer), reader);
        ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS) << count;
        EXPECT_EQ(decoded.as<std::uint32_t>(), 99 + count);
    }
}

TEST(Evolution, AChangedKindIsRefused) {
    const parcel_descriptor *writer = make_type("$1={Count}D;", 4, {0});
    const parcel_descriptor *wider = make_type("$1={Count}H;", 8, {0});
    const parcel_descriptor *flag = make_type("$1={Count}b;", 4, {0});
    const parcel_descriptor *list = make_type("$1={Count}a(D);", 16, {0});
    const std::uint32_t record = 7;
    const parcel bytes = encode(&record, writer);
    for (const parcel_descriptor *reader : {wider, flag, list}) {
        EXPECT_EQ(decoded_record(bytes, reader).code(), PARCEL_SCHEMA_CHANGED) << reader->schema;
    }
}

TEST(Evolution, AFixedArrayOfAnotherLengthOrElementIsRefused) {
    const parcel_descriptor *writer = make_type("$1={Count}4A(H);", 32, {0});
    const parcel_descriptor *shorter = make_type("$1={Count}3A(H);", 24, {0});
    const parcel_descriptor *narrower = make_type("$1={Count}4A(D);", 16, {0});
    const std::uint64_t record[4] = {1, 2, 3, 4};
    const parcel bytes = encode(record, writer);
    EXPECT_EQ(decoded_record(bytes, shorter).code(), PARCEL_SCHEMA_CHANGED);
    EXPECT_EQ(decoded_record(bytes, narrower).code(), PARCEL_SCHEMA_CHANGED);
}

TEST(Evolution, AMarkOrAnotherEnumerationNameIsNoChange) {
    const parcel_descriptor *writer = make_type("$1={Count}D{State}[old_e]e;", 8, {0, 4});
    const parcel_descriptor *reader = make_type("$1={Count}PD{State}[new_e]e;", 8, {0, 4});
    const std::uint32_t record[2] = {7, 3};
    const decoded_record decoded(encode(record, writer), reader);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    EXPECT_EQ(std::memcmp(decoded.data(), record, sizeof record), 0);
}

TEST(Evolution, AnArmThatTheReaderLacksIsSkippedAndKeepsItsDiscriminator) {
    const std::vector<test_layout> layout = {{1, 24, {0, 16}}, {2, 16, {0, 8, 8}}};
    const parcel_descriptor *writer =
        make_type("$1={Choice}$2{After}D;$2=?(<Kind,kind_e>,0:{Number}D,5:{Text}s);", layout);
    const parcel_descriptor *reader =
        make_type("$1={Choice}$2{After}D;$2=?(<Kind,kind_e>,0:{Number}D,6:{Text}s);", layout);
    struct choice {
        std::uint32_t Kind;
        const char *Text;
        std::uint32_t After;
    } record{5, "text", 9};
    const decoded_record decoded(encode(&record, writer), reader);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    EXPECT_EQ(decoded.as<choice>().Kind, 5U);
    EXPECT_EQ(decoded.as<choice>().Text, nullptr);
    EXPECT_EQ(decoded.as<choice>().After, 9U);
}

// Such a record is passed over and zero in the structure, also where its bytes would have a place there.
TEST(Evolution, ARecordOfWhichTheReaderKnowsNoFieldStaysZero) {
    const parcel_descriptor *writer = make_type("$1={List}a($2){One}p($2){Two}2A($2){Last}D;$2={Old}D{Older}D;",
                                                {{1, 48, {0, 16, 24, 40}}, {2, 8, {0, 4}}});
    const parcel_descriptor *reader =
        make_type("$1={List}a($2){One}p($2){Two}2A($2){Last}D;$2={New}D;", {{1, 40, {0, 16, 24, 32}}, {2, 4, {0}}});
    struct old {
        std::uint32_t Old, Older;
    } list[2] = {{1, 2}, {3, 4}};
    struct written {
        parcel_array<old> List;
        old *One;
        old Two[2];
        std::uint32_t Last;
    } record{{2, list}, list, {{5, 6}, {7, 8}}, 9};
    static_assert(sizeof(written) == 48);
    struct read {
        parcel_array<std::uint32_t> List;
        std::uint32_t *One;
        std::uint32_t Two[2];
        std::uint32_t Last;
    };
    static_assert(sizeof(read) == 40);
    const decoded_record decoded(encode(&record, writer), reader);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    const auto &got = decoded.as<read>();
    ASSERT_EQ(got.List.count, 2U);
    EXPECT_EQ(got.List.elements[0], 0U);
    EXPECT_EQ(got.List.elements[1], 0U);
    EXPECT_EQ(*got.One, 0U);
    EXPECT_EQ(got.Two[0], 0U);
    EXPECT_EQ(got.Two[1], 0U);
    EXPECT_EQ(got.Last, 9U);
}

TEST(Evolution, AnArmOfWhichTheReaderKnowsNoFieldWritesNothingBesideItsPlace) {
    const parcel_descriptor *writer = make_type("$1={Choice}$2;$2=?(<Kind,kind_e>,5:{Arm}$3);$3={Old}256A(D);",
                                                {{2, 1028, {0}}, {2, 1028, {0, 4}}, {3, 1024, {0}}});
    const parcel_descriptor *reader =
        make_type("$1={Choice}$2;$2=?(<Kind,kind_e>,5:{Arm}$3);$3={New}D;", {{2, 8, {0}}, {2, 8, {0, 4}}, {3, 4, {0}}});
    std::uint32_t record[257] = {5};
    std::fill(record + 1, record + 257, ~0U);
    const decoded_record decoded(encode(record, writer), reader);
    ASSERT_EQ(decoded.code(), ERRCODE_SUCCESS);
    EXPECT_EQ(decoded.as<std::uint32_t[2]>()[0], 5U);
    EXPECT_EQ(decoded.as<std::uint32_t[2]>()[1], 0U);
}

TEST(Evolution, ASchemaThatNobodyKeptIsRefused) {
    const parcel_descriptor *writer = make_type("$1={Count}D{Lost}D;", 8, {0, 4});
    const parcel_descriptor *reader = make_type("$1={Count}D;", 4, {0});
    kept_schemas().clear();
    const std::uint32_t record[2] = {7, 8};
    EXPECT_EQ(decoded_record(encode(record, writer), reader).code(), PARCEL_UNKNOWN_SCHEMA);
}

TEST(Evolution, GrowthBeyondItsBoundIsRefused) {
    // An element of one byte on the wire that takes 1024 in the reader's structure.
    const parcel_descriptor *writer = make_type("$1={List}a($2);$2={A}C;", {{1, 16, {0}}, {2, 1, {0}}});
    const parcel_descriptor *reader = make_type("$1={List}a($2);$2={A}C{B}128A(H);", {{1, 16, {0}}, {2, 1032, {0, 8}}});
    std::vector<std::uint8_t> elements(10'000, 1);
    const parcel_array<std::uint8_t> list{static_cast<std::uint32_t>(elements.size()), elements.data()};
    EXPECT_EQ(decoded_record(encode(&list, writer), reader).code(), PARCEL_MALFORMED);
    const parcel_array<std::uint8_t> few{2, elements.data()};
    EXPECT_EQ(decoded_record(encode(&few, writer), reader).code(), ERRCODE_SUCCESS);
}

// "$1=" what is given with the next number for every @, and so on to `last`, which is defined as `end`.
std::string chain(std::string_view body, int last, const std::string &end) {
    std::string text;
    for (int number = 1; number < last; ++number) {
        text += "$" + std::to_string(number) + "=";
        for (const char c : body) {
            text += c == '@' ? "$" + std::to_string(number + 1) : std::string(1, c);
        }
        text += ";";
    }
    return text + "$" + std::to_string(last) + "=" + end + ";";
}

errcode compile(const std::string &schema) {
    parcel_plan::made_plan plan;
    return parcel_plan::compile(pm_values_parcel_descriptor(), schema, &plan);
}

TEST(Evolution, EmptyRecordsThatDoubleWithoutEndAreRefused) {
    EXPECT_EQ(compile(chain("{A}@{B}@", 10, "")), ERRCODE_SUCCESS);
    EXPECT_EQ(compile(chain("{A}@{B}@", 60, "")), PARCEL_UNKNOWN_SCHEMA);
    EXPECT_EQ(compile(chain("{A}a(@){B}@{C}@", 60, "{A}D")), PARCEL_UNKNOWN_SCHEMA);
}

// At most 256 levels below the record itself.
TEST(Evolution, TypesWithinArraysNestToABound) {
    EXPECT_EQ(compile(chain("{A}a(@)", 257, "{A}D")), ERRCODE_SUCCESS);
    EXPECT_EQ(compile(chain("{A}a(@)", 258, "{A}D")), PARCEL_UNKNOWN_SCHEMA);
    EXPECT_EQ(compile(chain("{A}a(@)", 4096, "{A}D")), PARCEL_UNKNOWN_SCHEMA);
    EXPECT_EQ(compile(chain("{A}16A(16A(@))", 4096, "{A}D")), PARCEL_UNKNOWN_SCHEMA);
}

TEST(Evolution, HostileSchemasAreRefused) {
    const char *hostile[] = {
        "",
        "$",
        "$1",
        "$1=",
        "$1={A}D",
        "$1={A}Q;",
        "$1={D;",  // names that do not end
        "$1={A}[e;",
        "$1={}D;",  // names that are empty
        "$1={A}[]e;",
        "$1=?(<K,k_e;",
        "$1=?(<K;",
        "$1=?(<K,k_e>,0:{A;",
        "$1=$2;$2={A}D;",  // neither a record, a union nor a scalar
        "$1={A}$2;$2=s;",
        "$1=?(<Average,k_e>,0:{Average}D);",  // a union for the reader's record
        "$1={A}$2;",
        "$1={A}D;$1={B}D;",
        "$1={A}D{A}H;",
        "$1={A}$1;",         // holds itself by value
        "$1={A}a($2);$2=;",  // elements without bytes
        "$1={A}65535A($2);$2=;",
        "$1={A}0A(D);",
        "$1={A}99999999A(D);",
        "$1={A}p(p(p(p(p(p(p(p(p(p(p(p(p(p(p(p(p(p(D))))))))))))))))));",
        "$1=?(<K,k_e>,0:{A}D,0:{B}H);",
        "$1=D;",
        "$1={A}7x%s;",
        "$1={A}16x%q;",
        "$1={A}$2{B}$2;$2={A}$3{B}$3;$3={A}$4{B}$4;$4={A}$5{B}$5;$5={A}$6{B}$6;$6={A}$7{B}$7;$7={A}$8{B}$8;"
        "$8={A}$9{B}$9;$9={A}$10{B}$10;$10={A}$11{B}$11;$11={A}$12{B}$12;$12={A}$13{B}$13;$13={A}$14{B}$14;"
        "$14={A}$15{B}$15;$15={A}$16{B}$16;$16={A}$17{B}$17;$17={A}$18{B}$18;$18={A}$19{B}$19;$19={A}s{B}s;",
    };
    for (const char *schema : hostile) {
        parcel_plan::made_plan plan;
        EXPECT_NE(parcel_plan::compile(pm_values_parcel_descriptor(), schema, &plan), ERRCODE_SUCCESS) << schema;
    }
}

}  // namespace
