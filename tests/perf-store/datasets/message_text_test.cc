// SPDX-License-Identifier: Apache-2.0
// What messages repeat of the input.
#include "perf-store/datasets/message_text.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using namespace perf_store;
using namespace std::string_literals;

TEST(OnOneLine, ControlBytesAreShownByTheirNumber) {
    EXPECT_EQ(on_one_line(""), "");
    EXPECT_EQ(on_one_line("item.path: K\xC3\xB6ln\\"), "item.path: K\xC3\xB6ln\\");
    EXPECT_EQ(on_one_line("a\nb\tc\x1b[2J\x7f"), R"(a\x0ab\x09c\x1b[2J\x7f)");
    EXPECT_EQ(on_one_line("a\0b"s), R"(a\x00b)");
}

}  // namespace
