// SPDX-License-Identifier: Apache-2.0
// Histories, as no show command meets them. tests/golden has the others.
#include "pm_show_client/blocks/history.h"

#include <gtest/gtest.h>

namespace {

TEST(History, OfAKindWithoutATableAborts) {
    for (const int kind : {1, 9, -1}) {
        pm_history_info history{};
        history.HistoryType = static_cast<pm_history_type_e>(kind);
        EXPECT_DEATH(print_history_sample_union(&history, 0, 0), "FALSE, pm_show_client.*print_history_sample_union")
            << kind;
    }
}

}  // namespace
