// SPDX-License-Identifier: Apache-2.0
// The schema notation: what a text means, and what is said of one that is wrong.
#include "platform/local/codec/parcel_notation.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace {

using parcel_notation::data_type;
using parcel_notation::field;
using parcel_notation::kind;
using parcel_notation::parse;
using parcel_notation::schema;

std::string error_of(std::string_view text) {
    schema parsed;
    return parse(text, &parsed).text();
}

TEST(Notation, EveryKindOfTypeIsRead) {
    const std::string text =
        "$1={A}D{B}D%h{C}PH{D}I{E}C{F}c{G}b{H}s{I}N{J}[k_e]e{K}p(D){L}a(s){M}3A(I){N}16x%s{O}6x%m{P}$2{Q}$2;$2={R}D;";
    const struct {
        kind what;
        std::uint32_t size;
        std::string_view notation;
    } wanted[] = {
        {kind::u32, 4, "D"},
        {kind::u32, 4, "D%h"},
        {kind::u64, 8, "H"},
        {kind::u16, 2, "I"},
        {kind::u8, 1, "C"},
        {kind::opaque, 1, "c"},
        {kind::boolean, 4, "b"},
        {kind::text, 8, "s"},
        {kind::ipv4, 4, "N"},
        {kind::enumeration, 4, "[k_e]e"},
        {kind::optional, 8, "p(D)"},
        {kind::array, 16, "a(s)"},
        {kind::fixed_array, 0, "3A(I)"},
        {kind::bytes, 16, "16x%s"},
        {kind::bytes, 6, "6x%m"},
        {kind::record, 0, "$2"},
        {kind::record, 0, "$2"},
    };
    schema parsed;
    ASSERT_EQ(parse(text, &parsed).text(), "");
    ASSERT_EQ(parsed.definitions.size(), 2U);
    const std::vector<field> &fields = parsed.definitions[0]->fields;
    ASSERT_EQ(fields.size(), std::size(wanted));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        EXPECT_EQ(fields[i].name, std::string(1, static_cast<char>('A' + i)));
        EXPECT_EQ(fields[i].type->what, wanted[i].what) << fields[i].name;
        EXPECT_EQ(fields[i].type->size, wanted[i].size) << fields[i].name;
        EXPECT_EQ(fields[i].type->notation, wanted[i].notation);
        EXPECT_EQ(fields[i].marked, fields[i].name == "C");
    }
    EXPECT_EQ(fields[9].type->name, "k_e");
    EXPECT_EQ(fields[10].type->element->what, kind::u32);
    EXPECT_EQ(fields[11].type->element->what, kind::text);
    EXPECT_EQ(fields[12].type->element->what, kind::u16);
    EXPECT_EQ(fields[12].type->count, 3U);
    EXPECT_EQ(fields[13].type->format, 's');
    EXPECT_EQ(fields[14].type->format, 'm');
    EXPECT_EQ(fields[15].type, parsed.definitions[1]);
    EXPECT_EQ(parsed.definitions[0]->number, 1U);
    EXPECT_EQ(parsed.definitions[1]->number, 2U);
}

TEST(Notation, AUnionHasAnArmForEachValue) {
    schema parsed;
    ASSERT_EQ(parse("$1=?(<Kind,kind_e>,0:{Number}D,5:v,7:{Text}Ps,?:v);", &parsed).text(), "");
    const data_type &of = *parsed.definitions[0];
    EXPECT_EQ(of.what, kind::tagged_union);
    EXPECT_EQ(of.discriminator, "Kind");
    EXPECT_EQ(of.discriminator_type, "kind_e");
    EXPECT_TRUE(of.catch_all);
    ASSERT_EQ(of.fields.size(), 3U);
    EXPECT_EQ(of.arm_of(0), &of.fields[0]);
    EXPECT_EQ(of.arm_of(5), &of.fields[1]);
    EXPECT_EQ(of.fields[1].type, nullptr);
    EXPECT_EQ(of.arm_of(7), &of.fields[2]);
    EXPECT_TRUE(of.fields[2].marked);
    EXPECT_EQ(of.arm_of(6), nullptr);
    schema without;
    ASSERT_EQ(parse("$1=?(<Kind,kind_e>,0:{Number}D);", &without).text(), "");
    EXPECT_FALSE(without.definitions[0]->catch_all);
}

TEST(Notation, AFieldIsFoundWhereverTheSearchBegins) {
    schema parsed;
    ASSERT_EQ(parse("$1={A}D{B}H{C}s;", &parsed).text(), "");
    const data_type &of = *parsed.definitions[0];
    for (std::size_t from = 0; from < 3; ++from) {
        for (std::size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(of.find(std::string(1, static_cast<char>('A' + i)), from), &of.fields[i]) << from;
        }
        EXPECT_EQ(of.find("D", from), nullptr);
    }
}

TEST(Notation, ADefinitionOfAScalarIsAnotherNameOfIt) {
    schema parsed;
    ASSERT_EQ(parse("$1={A}$2{B}[k_e]e;$2=D;", &parsed).text(), "");
    const std::vector<field> &fields = parsed.definitions[0]->fields;
    EXPECT_EQ(fields[0].type->what, kind::u32);
    EXPECT_EQ(fields[0].type->size, 4U);
    EXPECT_EQ(fields[0].type->notation, "$2");
}

TEST(Notation, AnErrorSaysWhatIsWrongAndWhere) {
    const std::pair<const char *, const char *> wrong[] = {
        {"", "no definition at byte 0"},
        {"$", "expected a number at byte 1"},
        {"1", "expected '$' at byte 0"},
        {"$1", "expected '=' at byte 2"},
        {"$1=", "expected a type at byte 3"},
        {"$1={A}", "expected a type at byte 6"},
        {"$1={A}D", "expected ';' at byte 7"},
        {"$1={A}Q;", "unknown type at byte 6"},
        {"$1={D;", "expected a name at byte 4"},
        {"$1={}D;", "expected a name at byte 4"},
        {"$1={A}[e;", "expected a name at byte 7"},
        {"$1={A}[]e;", "expected a name at byte 7"},
        {"$1={A}[n]D;", "expected 'e' at byte 9"},
        {"$1={A}p;", "expected '(' at byte 7"},
        {"$1={A}a(D;", "expected ')' at byte 9"},
        {"$1={A}0A(D);", "count out of range at byte 7"},
        {"$1={A}65537A(D);", "count out of range at byte 11"},
        {"$1={A}4B(D);", "expected 'A(' at byte 7"},
        {"$1={A}4A(D;", "expected ')' at byte 10"},
        {"$1={A}16x%q;", "unknown format of bytes at byte 10"},
        {"$1={A}7x%s;", "the format does not fit the number of bytes at byte 10"},
        {"$1={A}7x%m;", "the format does not fit the number of bytes at byte 10"},
        {"$1=?(K,k>);", "expected '<' at byte 5"},
        {"$1=?(<K;", "expected a name at byte 6"},
        {"$1=?(<K,k;", "expected a name at byte 8"},
        {"$1=?(<K,e>,D);", "expected a number at byte 11"},
        {"$1=?(<K,e>,1{A}D);", "expected ':' at byte 12"},
        {"$1=?(<K,e>,1:D);", "expected '{' at byte 13"},
        {"$1=?(<K,e>,1:{A}D;", "expected ',' at byte 17"},
        {"$1=$2;$2={A}D;", "expected a definition at byte 3"},
        {"$1={A}D;$1={B}D;", "$1 is defined twice"},
        {"$1=a(D);", "$1 is neither a record, a union nor a scalar"},
        {"$1={A}$2;", "$2 is not defined"},
    };
    for (const auto &[text, error] : wrong) {
        EXPECT_EQ(error_of(text), error) << text;
    }
}

TEST(Notation, TypesNestToABound) {
    const auto nested = [](std::size_t levels) {
        std::string text = "$1={A}";
        for (std::size_t i = 0; i < levels; ++i) {
            text += "p(";
        }
        return text + "D" + std::string(levels, ')') + ";";
    };
    EXPECT_EQ(error_of(nested(16)), "");
    EXPECT_EQ(error_of(nested(17)), "nested too deeply at byte 40");
    EXPECT_EQ(error_of("$1={A}65536A(D);"), "");
    const auto counted = [](std::size_t levels) {
        std::string text = "$1={A}";
        for (std::size_t i = 0; i < levels; ++i) {
            text += "2A(";
        }
        return text + "D" + std::string(levels, ')') + ";";
    };
    EXPECT_EQ(error_of(counted(16)), "");
    EXPECT_EQ(error_of(counted(17)), "nested too deeply at byte 57");
}

TEST(Notation, DefinitionsAreBounded) {
    std::string text;
    for (std::size_t number = 1; number <= 4096; ++number) {
        text += "$" + std::to_string(number) + "={A}D;";
    }
    EXPECT_EQ(error_of(text), "");
    text += "$4097={A}D;";
    EXPECT_EQ(error_of(text), "too many definitions at byte " + std::to_string(text.size()));
}

}  // namespace
