// SPDX-License-Identifier: Apache-2.0
// The rules around headers.
#include "pm_show_client/pm_show_headers.h"

#include <gtest/gtest.h>
#include <string>

namespace {

TEST(Separators, HaveTheirShape) {
    EXPECT_EQ(std::string(pm_show_separator), std::string(160, '-') + "\n");
    EXPECT_EQ(std::string(pm_show_table_rule), " " + std::string(158, '-') + " \n");
}

}  // namespace
