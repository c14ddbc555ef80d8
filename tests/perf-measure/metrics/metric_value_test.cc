// SPDX-License-Identifier: Apache-2.0
#include "perf-measure/metrics/metric_value.h"

#include <cstdint>
#include <gtest/gtest.h>

namespace {

using namespace perf_measure;

std::string escaped(std::string_view value) {
    std::string text;
    append_label_value(value, &text);
    return text;
}

TEST(MetricValue, OfMicrosecondsIsInSeconds) {
    EXPECT_EQ(metric_value::of_microseconds(0).text(), "0");
    EXPECT_EQ(metric_value::of_microseconds(1).text(), "0.000001");
    EXPECT_EQ(metric_value::of_microseconds(1500).text(), "0.0015");
    EXPECT_EQ(metric_value::of_microseconds(1000000).text(), "1");
    EXPECT_EQ(metric_value::of_microseconds(UINT32_MAX).text(), "4294.967295");
}

TEST(MetricValue, OfAMomentIsInSecondsAndAbsentForNone) {
    EXPECT_EQ(metric_value::of_moment(0).text(), "");
    EXPECT_EQ(metric_value::of_moment(1709647380000).text(), "1709647380");
    EXPECT_EQ(metric_value::of_moment(1709647380250).text(), "1709647380.25");
    EXPECT_EQ(metric_value::of_moment(1).text(), "0.001");
    EXPECT_EQ(metric_value::of_moment(UINT64_MAX).text(), "18446744073709551.615");
}

TEST(MetricValue, OfLossIsARatioAndAbsentWithoutPackets) {
    EXPECT_EQ(metric_value::of_loss(0, 0).text(), "");
    EXPECT_EQ(metric_value::of_loss(0, 3).text(), "");
    EXPECT_EQ(metric_value::of_loss(10, 10).text(), "0");
    EXPECT_EQ(metric_value::of_loss(10, 12).text(), "0");  // doubled on their way
    EXPECT_EQ(metric_value::of_loss(10, 0).text(), "1");
    EXPECT_EQ(metric_value::of_loss(8, 7).text(), "0.125");
    EXPECT_EQ(metric_value::of_loss(3, 2).text(), "0.3333333333333333");
}

TEST(MetricValue, IsAbsentUnlessItWasSet) {
    EXPECT_EQ(metric_value().text(), "");
    EXPECT_EQ(metric_value::of_number(0).text(), "0");
    EXPECT_EQ(metric_value::of_number(UINT64_MAX).text(), "18446744073709551615");
    EXPECT_EQ(metric_value::of_flag(true).text(), "1");
}

TEST(Label, EscapesWhatItsTextGivesAMeaning) {
    EXPECT_EQ(escaped("eth0/1/0/4"), "eth0/1/0/4");
    EXPECT_EQ(escaped("a\\b\"c\nd"), "a\\\\b\\\"c\\nd");
    EXPECT_EQ(escaped("\t\x01\x7f"), "\t\x01\x7f");
}

TEST(Label, IsUtf8WhateverTheNameIs) {
    EXPECT_EQ(escaped("Zürich"), "Zürich");
    EXPECT_EQ(escaped("a\xff"
                      "b"),
              "a\xEF\xBF\xBD"
              "b");
    EXPECT_EQ(escaped("\xc3"), "\xEF\xBF\xBD");
    EXPECT_EQ(escaped("\xed\xa0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");  // a surrogate
}

TEST(Label, IsLeftOutWhenEmpty) {
    std::string labels;
    append_label("a", "1", &labels);
    append_label("b", "", &labels);
    append_label("c", "3", &labels);
    EXPECT_EQ(labels, R"(a="1",c="3")");
}

}  // namespace
