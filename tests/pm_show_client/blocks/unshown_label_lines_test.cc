// SPDX-License-Identifier: Apache-2.0
// Label lines with their column and indent as arguments.
#include "pm_show_client/blocks/unshown_label_lines.h"

#include <cstring>
#include <gtest/gtest.h>

#include "tests/support/captured.h"

namespace {

TEST(UnshownLabelLines, ATextHasItsColonInTheColumn) {
    EXPECT_EQ(captured([] { pm_print_label_str(36, 2, "State", "Up"); }), "  State                             : Up\n");
    EXPECT_EQ(captured([] { pm_print_label_str(8, 0, "Name", nullptr); }), "Name    : (null)\n");
}

TEST(UnshownLabelLines, ANumberPrintsNoUnit) {
    EXPECT_EQ(captured([] { pm_print_label_u32(36, 4, "Rolling average", 7, "%"); }),
              "    Rolling average                 : 7\n");
    EXPECT_EQ(captured([] { pm_print_label_u64(36, 4, "Packets", 18446744073709551615ULL, "pkts"); }),
              "    Packets                         : 18446744073709551615\n");
}

TEST(UnshownLabelLines, ACounterHasItsColonInColumn48) {
    EXPECT_EQ(captured([] { pm_print_counter(2, "Total sent", 5); }),
              "  Total sent                                    : 5\n");
}

TEST(UnshownLabelLines, AnAddressIsTextOrUnknown) {
    pm_record_address address{};
    address.IPAddressType = PM_RECORD_ADDRESS_IPV4;
    const std::uint8_t octets[] = {10, 0, 0, 254};
    std::memcpy(&address.IPv4, octets, sizeof octets);
    EXPECT_EQ(captured([&] { pm_print_label_address("Source", address, 2, 12); }), "  Source    : 10.0.0.254\n");
    address.IPAddressType = static_cast<pm_addr_type_e>(2);
    EXPECT_EQ(captured([&] { pm_print_label_address("Source", address, 0, 8); }), "Source  : Unknown\n");
}

}  // namespace
