// SPDX-License-Identifier: Apache-2.0
// The promises of allowed prefixes that no stored record can break;
// tests/golden/allowed-queriers and tests/golden/allowed-responders have the whole reports.
#include "pm_show_client/blocks/allowed_prefixes.h"

#include <gtest/gtest.h>

#include "tests/support/captured.h"

namespace {

TEST(AllowedPrefixesDeath, ACountOfPrefixesWithoutPrefixesAborts) {
    pm_prefixes_info prefixes{};
    prefixes.PrefixList.count = 1;
    EXPECT_DEATH(pm_print_allowed_prefixes("Prefixes", prefixes),
                 "Assertion failed: NULL != parcel, pm_show_client:9882, "
                 "void print_prefix_entry_parcel\\(pm_prefix_entry_parcel \\*, uint32_t, uint32_t\\)\n$");
}

TEST(AllowedPrefixesDeath, NoCountersAbort) {
    EXPECT_DEATH(
        print_prefix_counter_generic(nullptr, 0),
        "^Assertion failed: NULL != parcel, pm_show_client:9859, "
        "void print_prefix_counter_generic\\(const pm_prefix_reference_counters \\*, uint32_t, uint32_t\\)\n$");
}

}  // namespace
