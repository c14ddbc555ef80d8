// SPDX-License-Identifier: Apache-2.0
// Checks a whole table of names through the routine that reads it.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <map>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

// Expects the listed texts, and `fallback` for every other value from -300 to 300 and for the
// values at both ends of 32 bits. `Kind` is an enumeration or a 32-bit integer.
template <class Kind>
void expect_names(const char *(*name_of)(Kind), std::initializer_list<std::pair<const std::int64_t, std::string>> names,
                  const std::string &fallback) {
    static_assert(sizeof(Kind) == 4);
    const std::map<std::int64_t, std::string> expected(names);
    ASSERT_EQ(expected.size(), names.size()) << "a value is listed twice";
    const auto expect = [&](std::int64_t value) {
        const auto found = expected.find(value);
        EXPECT_EQ(name_of(static_cast<Kind>(value)), found != expected.end() ? found->second : fallback)
            << "for the value " << value;
    };
    for (std::int64_t value = -300; value <= 300; ++value) {
        expect(value);
    }
    expect(std::numeric_limits<std::int32_t>::min());
    expect(std::numeric_limits<std::int32_t>::max());
}

// The same for a routine that answers yes or no: yes for the listed values only, or no for them only.
template <class Kind>
void expect_answers(bool (*predicate)(Kind), std::initializer_list<std::int64_t> listed, bool answer_for_listed) {
    const auto expect = [&](std::int64_t value) {
        bool is_listed = false;
        for (const std::int64_t candidate : listed) {
            is_listed = is_listed || candidate == value;
        }
        EXPECT_EQ(predicate(static_cast<Kind>(value)), is_listed ? answer_for_listed : !answer_for_listed)
            << "for the value " << value;
    };
    for (std::int64_t value = -300; value <= 300; ++value) {
        expect(value);
    }
    expect(std::numeric_limits<std::int32_t>::min());
    expect(std::numeric_limits<std::int32_t>::max());
}
