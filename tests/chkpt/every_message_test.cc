// SPDX-License-Identifier: Apache-2.0
// What holds for the decoder of every message: each status, damage at every place, memory that fails.
#include <gtest/gtest.h>

#include "chkpt/chkpt.h"
#include "tests/chkpt/shapes.h"

namespace {

constexpr std::uint32_t UNKNOWN_FIELDS[] = {0, 10, 15, 16, (1U << 29) - 1};

class EveryMessage : public testing::TestWithParam<const shape *> {
protected:
    [[nodiscard]] static outcome decode(const blob &input, std::size_t fail_at = test_memory::NEVER) {
        return GetParam()->decode(input, fail_at);
    }
    [[nodiscard]] static std::uint32_t field_count() { return static_cast<std::uint32_t>(GetParam()->fields.size()); }
    [[nodiscard]] static const shape_field &field(std::uint32_t number) { return GetParam()->fields[number - 1]; }
    // A blob with one field, of an array one element.
    [[nodiscard]] static blob only(std::uint32_t number) {
        sample result;
        add_field(result, *GetParam(), number);
        return result.bytes;
    }
    [[nodiscard]] static std::uint32_t bit(std::uint32_t number) { return 1U << (number - 1); }
};

INSTANTIATE_TEST_SUITE_P(Checkpoint, EveryMessage, testing::ValuesIn(all_shapes()),
                         [](const auto &instance) { return instance.param->name; });

TEST_P(EveryMessage, AnEmptyBlobClearsTheRecord) {
    const outcome result = decode({});
    EXPECT_EQ(result.status, CHKPT_DECODED);
    EXPECT_TRUE(result.is_clear);
    EXPECT_EQ(result.allocations, 0U);
}

TEST_P(EveryMessage, EachFieldSetsItsOwnPresenceBit) {
    for (std::uint32_t number = 1; number <= field_count(); ++number) {
        const outcome result = decode(only(number));
        EXPECT_EQ(result.status, CHKPT_DECODED) << "field " << number;
        EXPECT_EQ(result.presence, bit(number)) << "field " << number;
    }
}

TEST_P(EveryMessage, AllFieldsTakeOneAllocationForEachTextAndArray) {
    const sample full = full_sample(*GetParam());
    const outcome result = decode(full.bytes);
    EXPECT_EQ(result.status, CHKPT_DECODED);
    EXPECT_EQ(result.presence, GetParam()->every_field());
    EXPECT_EQ(result.allocations, full.allocations);
    EXPECT_EQ(result.allocations != 0, GetParam()->takes_memory);
}

TEST_P(EveryMessage, FieldsComeInAnyOrder) {
    blob reversed;
    for (std::uint32_t number = field_count(); number >= 1; --number) {
        const blob one = only(number);
        reversed.add(one);
    }
    const outcome result = decode(reversed);
    EXPECT_EQ(result.status, CHKPT_DECODED);
    EXPECT_EQ(result.presence, GetParam()->every_field());
}

// Cut between fields the rest is missing; cut inside a field that field is missing too, of an array
// all elements, and the blob is truncated.
TEST_P(EveryMessage, TruncationAtEveryLengthKeepsTheFieldsBeforeIt) {
    const sample full = full_sample(*GetParam());
    std::size_t next = 0;
    std::uint32_t complete = 0;
    for (std::size_t length = 0; length <= full.bytes.bytes.size(); ++length) {
        while (next < full.ends.size() && full.ends[next].end <= length) {
            complete |= bit(full.ends[next++].field);
        }
        const bool between_fields = length == 0 || (next != 0 && full.ends[next - 1].end == length);
        const std::uint32_t lost =
            !between_fields && field(full.ends[next].field).is_array() ? bit(full.ends[next].field) : 0;
        const outcome result = decode(full.bytes.cut(length));
        EXPECT_EQ(result.status, between_fields ? CHKPT_DECODED : CHKPT_TRUNCATED) << "length " << length;
        EXPECT_EQ(result.presence, complete & ~lost) << "length " << length;
    }
    EXPECT_EQ(complete, GetParam()->every_field());
}

TEST_P(EveryMessage, ATagThatEndsTooEarlyIsTruncated) {
    for (unsigned continued = 1; continued < 12; ++continued) {
        blob input = only(1);
        input.append(std::vector<std::uint8_t>(continued, 0x88));
        EXPECT_EQ(decode(input).status, CHKPT_TRUNCATED) << continued << " bytes";
    }
}

TEST_P(EveryMessage, AnotherWireTypeOfAKnownFieldIsUnexpected) {
    for (std::uint32_t number = 1; number <= field_count(); ++number) {
        for (unsigned type = 0; type < 8; ++type) {
            if (type == field(number).wire_type()) {
                continue;
            }
            blob input;
            input.tag(number, type).raw({8, 0, 0, 0, 0, 0, 0, 0, 0});
            const outcome result = decode(input);
            EXPECT_EQ(result.status, CHKPT_UNEXPECTED_TYPE) << "field " << number << ", type " << type;
            EXPECT_TRUE(result.is_clear);
            EXPECT_EQ(decode(blob().tag(number, type)).status, CHKPT_UNEXPECTED_TYPE) << "nothing behind the tag";
        }
    }
}

TEST_P(EveryMessage, UnknownFieldsAreSkippedByTheirWireType) {
    const blob known = only(1);
    for (const std::uint32_t unknown : UNKNOWN_FIELDS) {
        for (blob input : {blob().number(unknown, 1ULL << 63), blob().tag(unknown, 0).raw({0xFF, 0x80, 0}),
                           blob().tag(unknown, 1).raw({1, 2, 3, 4, 5, 6, 7, 0x0B}), blob().text(unknown, "skipped"),
                           blob().text(unknown, ""), blob().tag(unknown, 5).raw({1, 2, 3, 0x0B})}) {
            input.add(known);
            const outcome result = decode(input);
            EXPECT_EQ(result.status, CHKPT_DECODED) << "field " << unknown << ", type " << (input.bytes[0] & 7);
            EXPECT_EQ(result.presence, bit(1));
        }
    }
}

TEST_P(EveryMessage, WireTypesThatDoNotExistAreInvalid) {
    for (const std::uint32_t unknown : UNKNOWN_FIELDS) {
        for (const unsigned type : {3U, 4U, 6U, 7U}) {
            blob input = only(1);
            input.tag(unknown, type);
            const outcome result = decode(input);
            EXPECT_EQ(result.status, CHKPT_INVALID_TYPE) << "field " << unknown << ", type " << type;
            EXPECT_EQ(result.presence, bit(1)) << "what came before stays";
        }
    }
}

TEST_P(EveryMessage, AnUnknownFieldThatRunsPastTheEndIsTheEnd) {
    const blob known = only(1);
    for (const std::uint32_t unknown : UNKNOWN_FIELDS) {
        for (const blob &tail :
             {blob().tag(unknown, 1), blob().tag(unknown, 1).raw({1, 2, 3, 4, 5, 6, 7}), blob().tag(unknown, 5),
              blob().tag(unknown, 5).raw({1, 2, 3}), blob().tag(unknown, 2).raw({5, 1, 2, 3, 4}),
              blob().tag(unknown, 2).varint(0xFFFFFFFF).raw({1})}) {
            blob input = known;
            input.add(tail);
            const outcome result = decode(input);
            EXPECT_EQ(result.status, CHKPT_DECODED) << "field " << unknown;
            EXPECT_EQ(result.presence, bit(1));
        }
    }
}

TEST_P(EveryMessage, AnUnknownNumberOrLengthThatIsCutIsTruncated) {
    for (const std::uint32_t unknown : UNKNOWN_FIELDS) {
        for (const unsigned type : {0U, 2U}) {
            EXPECT_EQ(decode(blob().tag(unknown, type)).status, CHKPT_TRUNCATED);
            EXPECT_EQ(decode(blob().tag(unknown, type).raw({0x80})).status, CHKPT_TRUNCATED);
        }
    }
}

TEST_P(EveryMessage, ATextOrAnArrayComesOnceAndOtherFieldsCanComeAgain) {
    for (std::uint32_t number = 1; number <= field_count(); ++number) {
        blob input = only(number);
        input.number(15, 0);  // so that elements do not stand together
        const blob again = only(number);
        input.add(again);
        const outcome result = decode(input);
        EXPECT_EQ(result.status, field(number).needs_memory() ? CHKPT_TRUNCATED : CHKPT_DECODED) << "field " << number;
        EXPECT_EQ(result.presence, bit(number)) << "field " << number;
    }
}

TEST_P(EveryMessage, ALengthBeyondTheEndIsTruncatedHoweverLarge) {
    for (std::uint32_t number = 1; number <= field_count(); ++number) {
        if (field(number).wire_type() != 2) {
            continue;
        }
        for (const std::uint64_t length : {2ULL, 0x7FFFFFFFULL, 0x80000000ULL, 0xFFFFFFFEULL, 0xFFFFFFFFULL}) {
            const outcome result = decode(blob().tag(number, 2).varint(length).raw({0}));
            EXPECT_EQ(result.status, CHKPT_TRUNCATED) << "field " << number << ", length " << length;
            EXPECT_TRUE(result.is_clear);
            EXPECT_EQ(result.allocations, 0U);
        }
    }
}

TEST_P(EveryMessage, WithoutAnAllocatorTextsAndArraysFailAndTheOthersDecode) {
    for (std::uint32_t number = 1; number <= field_count(); ++number) {
        const outcome result = GetParam()->decode_without_allocator(only(number));
        EXPECT_EQ(result.status, field(number).needs_memory() ? CHKPT_NO_MEMORY : CHKPT_DECODED) << "field " << number;
        EXPECT_EQ(result.presence, field(number).needs_memory() ? 0 : bit(number)) << "field " << number;
    }
}

TEST_P(EveryMessage, EveryAllocationThatFailsEndsTheDecoding) {
    const sample full = full_sample(*GetParam());
    for (std::size_t fail_at = 0; fail_at < full.allocations; ++fail_at) {
        const outcome result = decode(full.bytes, fail_at);
        EXPECT_EQ(result.status, CHKPT_NO_MEMORY) << "allocation " << fail_at;
        EXPECT_EQ(result.allocations, fail_at + 1) << "nothing is asked for after it";
        EXPECT_NE(result.presence, GetParam()->every_field());
    }
}

TEST_P(EveryMessage, AStatusOfANestedMessageIsItsParentsStatus) {
    const std::pair<blob, std::int32_t> damages[] = {
        {blob().raw({0x80}), CHKPT_TRUNCATED},
        {blob().tag(15, 3), CHKPT_INVALID_TYPE},
        {blob().tag(1, 5), CHKPT_UNEXPECTED_TYPE},
    };
    for (std::uint32_t number = 1; number <= field_count(); ++number) {
        if (field(number).nested == nullptr) {
            continue;
        }
        for (const auto &[damage, status] : damages) {
            blob input;
            input.message(number, damage).number(15, 0);
            const outcome result = decode(input);
            EXPECT_EQ(result.status, status) << "field " << number;
            EXPECT_EQ(result.presence, 0U) << "field " << number;
        }
    }
}

}  // namespace
