// SPDX-License-Identifier: Apache-2.0
#include "perf-measure/metrics/sample_spool.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/temporary_folder.h"

namespace {

using namespace perf_measure;

class SampleSpool : public testing::Test {
protected:
    SampleSpool() { setenv("TMPDIR", folder_.path().c_str(), 1); }
    ~SampleSpool() override { unsetenv("TMPDIR"); }

    pm_error add(const std::string &labels, std::uint64_t first, bool has_second) {
        const metric_value values[] = {metric_value::of_number(first),
                                       has_second ? metric_value::of_number(first + 1) : metric_value()};
        return spool_.add(labels, values);
    }
    // "LABELS=VALUE;" for each sample of a slot.
    std::string samples(std::size_t slot) {
        std::string text;
        EXPECT_FALSE(spool_.visit(slot, [&](std::string_view labels, std::string_view value) {
            text.append(labels).append("=").append(value).append(";");
            return pm_error();
        }));
        return text;
    }

    temporary_folder folder_;
    sample_spool spool_;
};

TEST_F(SampleSpool, GivesTheSamplesOfASlotInTheirOrder) {
    EXPECT_EQ(samples(0), "");
    EXPECT_FALSE(add("a", 1, true));
    EXPECT_FALSE(add("", 5, false));
    EXPECT_FALSE(add("b", 7, true));
    EXPECT_EQ(samples(0), "a=1;=5;b=7;");
    EXPECT_EQ(samples(1), "a=2;b=8;");
}

// Entries of all sizes, so that they lie across the ends of what is read at once; some longer than that.
TEST_F(SampleSpool, GivesBackMoreThanItKeepsInMemory) {
    std::string expected;
    for (std::uint64_t i = 0; i < 3000; ++i) {
        const std::string labels(i % 1000 == 999 ? 300'000 : i * 7919 % 1500, static_cast<char>('a' + i % 26));
        ASSERT_FALSE(add(labels, i, i % 3 == 0));
        expected += i % 3 == 0 ? labels + '=' + std::to_string(i + 1) + ';' : "";
    }
    EXPECT_TRUE(samples(1) == expected);
    EXPECT_TRUE(samples(1) == expected) << "the second time";
    EXPECT_TRUE(std::filesystem::is_empty(folder_.path())) << "the file has no name";
}

TEST_F(SampleSpool, SaysWhereNoFileCanBeMade) {
    setenv("TMPDIR", "/no/such/folder", 1);
    const pm_error error = add(std::string(1 << 20, 'x'), 1, true);
    EXPECT_EQ(error.text(), "/no/such/folder: No such file or directory");
}

TEST_F(SampleSpool, EndsWhenAVisitFails) {
    EXPECT_FALSE(add("a", 1, true));
    EXPECT_FALSE(add("b", 2, true));
    int visits = 0;
    const pm_error error = spool_.visit(0, [&](std::string_view, std::string_view) {
        ++visits;
        return pm_error("full");
    });
    EXPECT_EQ(error.text(), "full");
    EXPECT_EQ(visits, 1);
}

}  // namespace
