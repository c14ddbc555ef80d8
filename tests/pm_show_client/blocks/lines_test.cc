// SPDX-License-Identifier: Apache-2.0
// Indented lines.
#include "pm_show_client/blocks/lines.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/captured.h"

namespace {

TEST(Indented, PrintsBlanksAndTheText) {
    EXPECT_EQ(captured([] { pm_print_indented<"%-34s: %s\n">(2, "State", "Up"); }),
              "  State                             : Up\n");
    EXPECT_EQ(captured([] { pm_print_indented<"text\n">(0); }), "text\n");
}

TEST(Indented, CutsTheTextAndItsNewlineButNotTheIndent) {
    const std::string name(400, 'n');
    EXPECT_EQ(captured([&] { pm_print_indented<"%s\n">(10, name.c_str()); }),
              std::string(10, ' ') + std::string(255, 'n'));
}

TEST(Indented, ATextOf254BytesKeepsItsNewlineAndOneOf255LosesIt) {
    const std::string fits(254, 'n');
    const std::string cut(255, 'n');
    EXPECT_EQ(captured([&] { pm_print_indented<"%s\n">(0, fits.c_str()); }), fits + "\n");
    EXPECT_EQ(captured([&] { pm_print_indented<"%s\n">(0, cut.c_str()); }), cut);
}

}  // namespace
