// SPDX-License-Identifier: Apache-2.0
// Sizes and offsets: laid out as the C language does, and taken from a descriptor's table.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "platform/local/codec/parcel_notation.h"
#include "tests/support/codec_fixture.h"

namespace {

using parcel_notation::data_type;
using parcel_notation::schema;

struct laid_out {
    explicit laid_out(std::string_view text) {
        EXPECT_EQ(parcel_notation::parse(text, &parsed).text(), "");
        error = parcel_notation::lay_out(&parsed).text();
        for (const auto &each : parsed.definitions[0]->fields) {
            offsets.push_back(each.offset);
        }
    }
    [[nodiscard]] const data_type &record() const { return *parsed.definitions[0]; }

    schema parsed;
    std::string error;
    std::vector<std::uint32_t> offsets;
};

using numbers = std::vector<std::uint32_t>;

TEST(Structure, FieldsAreAlignedAsTheLanguageDoes) {
    const laid_out mixed("$1={A}C{B}H{C}I{D}C{E}D;");
    EXPECT_EQ(mixed.error, "");
    EXPECT_EQ(mixed.offsets, (numbers{0, 8, 16, 18, 20}));
    EXPECT_EQ(mixed.record().size, 24U);
    EXPECT_EQ(mixed.record().alignment, 8U);
    const laid_out bytes("$1={A}C{B}6x%m{C}C{D}16x%s{E}C;");
    EXPECT_EQ(bytes.offsets, (numbers{0, 1, 7, 8, 24}));
    EXPECT_EQ(bytes.record().size, 32U);
    const laid_out pointers("$1={A}C{B}s{C}C{D}p(C){E}C{F}a(C);");
    EXPECT_EQ(pointers.offsets, (numbers{0, 8, 16, 24, 32, 40}));
    EXPECT_EQ(pointers.record().size, 56U);
    const laid_out arrays("$1={A}C{B}3A(I){C}C{D}2A($2);$2={E}C{F}D;");
    EXPECT_EQ(arrays.offsets, (numbers{0, 2, 8, 12}));
    EXPECT_EQ(arrays.record().size, 28U);
    EXPECT_EQ(arrays.record().alignment, 4U);
    const laid_out empty("$1=;");
    EXPECT_EQ(empty.record().size, 0U);
    EXPECT_EQ(empty.record().alignment, 1U);
}

TEST(Structure, ArmsBeginTogetherAfterTheDiscriminator) {
    const laid_out narrow("$1=?(<K,k_e>,0:{A}C,1:{B}I,2:v);");
    EXPECT_EQ(narrow.error, "");
    EXPECT_EQ(narrow.offsets, (numbers{4, 4, 4}));
    EXPECT_EQ(narrow.record().size, 8U);
    EXPECT_EQ(narrow.record().alignment, 4U);
    const laid_out wide("$1=?(<K,k_e>,0:{A}C,1:{B}H,2:{C}3A(D));");
    EXPECT_EQ(wide.offsets, (numbers{8, 8, 8}));
    EXPECT_EQ(wide.record().size, 24U);
    EXPECT_EQ(wide.record().alignment, 8U);
}

TEST(Structure, WhatIsTooLargeOrHoldsItselfIsRefused) {
    EXPECT_EQ(laid_out("$1={A}65536A(256A(C));").error, "");
    EXPECT_EQ(laid_out("$1={A}65536A(257A(C));").error, "65536A(257A(C)) is too large");
    EXPECT_EQ(laid_out("$1={A}65536A(256A(C)){B}C;").error, "$1 is too large");
    EXPECT_EQ(laid_out("$1={A}$2;$2={B}$1;").error, "$1 holds itself by value");
    EXPECT_EQ(laid_out("$1={A}$2{B}$2;$2={C}D;").error, "");  // twice, but not in itself
}

std::string description_error(const parcel_descriptor *type) {
    schema described;
    const pm_error error = parcel_notation::describe(type, &described);
    EXPECT_EQ(error.code(), error ? PARCEL_BAD_DESCRIPTOR : ERRCODE_SUCCESS);
    return error.text();
}

TEST(Structure, ATableGivesSizesAndOffsets) {
    const parcel_descriptor *type = make_type("$5={A}D{B}$2{C}4A($2);$2=?(<K,k_e>,0:{D}D,1:{E}D);$3={F}H;",
                                              {{2, 100, {4, 8, 48}}, {3, 16, {8}}, {2, 12, {0, 4, 8}}});
    schema described;
    ASSERT_EQ(parcel_notation::describe(type, &described).text(), "");
    ASSERT_EQ(described.definitions.size(), 3U);
    const data_type &record = *described.definitions[0];
    EXPECT_EQ(record.size, 100U);
    EXPECT_EQ(record.fields[0].offset, 4U);
    EXPECT_EQ(record.fields[1].offset, 8U);
    EXPECT_EQ(record.fields[2].offset, 48U);
    EXPECT_EQ(record.fields[2].type->size, 48U);
    const data_type &choice = *described.definitions[1];
    EXPECT_EQ(choice.size, 12U);
    EXPECT_EQ(choice.fields[0].offset, 4U);
    EXPECT_EQ(choice.fields[1].offset, 8U);
    EXPECT_EQ(described.definitions[2]->size, 16U);
    EXPECT_EQ(described.definitions[2]->fields[0].offset, 8U);
}

TEST(Structure, ATableThatDoesNotFitIsRefused) {
    constexpr std::uint64_t MOST = 1U << 24;
    EXPECT_EQ(description_error(make_type("$1={A}D;", MOST, {MOST})), "");
    EXPECT_EQ(description_error(make_type("$1={A}D;", MOST + 1, {0})), "the layout of $1 is too large");
    EXPECT_EQ(description_error(make_type("$1={A}D;", 4, {MOST + 1})), "the layout of $1 is too large");
    EXPECT_EQ(description_error(make_type("$1={A}$2;$2={B}D;", {{0, 8, {0}}})), "the layout table lacks $2");
    EXPECT_EQ(description_error(make_type("$1={A}$2;$2={B}D;", {{1, 8, {0}}, {3, 8, {0}}})),
              "the layout table lacks $2");
    EXPECT_EQ(description_error(make_type("$1={A}2A($2);$2={B}D;", {{1, 8, {0}}, {2, MOST / 2 + 1, {0}}})),
              "2A($2) is too large");
    EXPECT_EQ(description_error(make_type("$1={A}Q;", 8, {0})), "unknown type at byte 6");
}

}  // namespace
