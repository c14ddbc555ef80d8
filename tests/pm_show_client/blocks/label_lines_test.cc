// SPDX-License-Identifier: Apache-2.0
// Lines of a label and a value.
#include "pm_show_client/blocks/label_lines.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/captured.h"

namespace {

TEST(LabelLines, PutTheColonInItsColumnWhateverTheIndent) {
    EXPECT_EQ(captured([] { pm_lines{2, 36}.text("State", "Up"); }), "  State                             : Up\n");
    EXPECT_EQ(captured([] { pm_lines{0, 36}.text("State", "Up"); }), "State                               : Up\n");
}

TEST(LabelLines, LetALongLabelPushItsColonRight) {
    EXPECT_EQ(captured([] { pm_lines{2, 8}.text("Longer label", "x"); }), "  Longer label: x\n");
}

TEST(LabelLines, PadByTheDifferenceWhenTheIndentIsBeyondTheColon) {
    EXPECT_EQ(captured([] { pm_lines{10, 4}.text("ab", "x"); }), "          ab    : x\n");
    EXPECT_EQ(captured([] { pm_lines{4, 4}.text("ab", "x"); }), "    ab: x\n");
}

TEST(LabelLines, PrintAWordForAnAbsentText) {
    EXPECT_EQ(captured([] { pm_lines{0, 8}.text("Name", static_cast<const char *>(nullptr)); }), "Name    : (null)\n");
}

TEST(LabelLines, AreCutLikeEveryLine) {
    const std::string text(300, 't');
    EXPECT_EQ(captured([&] { pm_lines{2, 8}.text("Name", text.c_str()); }), "  Name  : " + std::string(255 - 8, 't'));
}

TEST(LabelLines, PrintNumbersOf32And64Bits) {
    EXPECT_EQ(captured([] {
                  pm_lines{4, 36}.number("Rolling average", 7U);
              }),
              "    Rolling average                 : 7\n");
    EXPECT_EQ(captured([] {
                  pm_lines{4, 36}.number("Packets", 18446744073709551615ULL);
              }),
              "    Packets                         : 18446744073709551615\n");
    EXPECT_EQ(captured([] { pm_lines{0, 20}.number("Most", 4294967295U); }), "Most                : 4294967295\n");
}

TEST(LabelLines, HaveTheirColonsInColumn48UnlessABlockSaysOtherwise) {
    EXPECT_EQ(captured([] { pm_lines_at(2).number("Total sent", 5U); }),
              "  Total sent                                    : 5\n");
    EXPECT_EQ(captured([] { pm_lines_at(12).number("Total sent", 1ULL << 63); }),
              "            Total sent                          : 9223372036854775808\n");
}

pm_record_address address_of_kind(std::int32_t kind) {
    pm_record_address address{};
    address.IPAddressType = static_cast<pm_addr_type_e>(kind);
    return address;
}

TEST(LabelLines, PrintIPv4) {
    pm_record_address address = address_of_kind(PM_RECORD_ADDRESS_IPV4);
    const std::uint8_t octets[] = {10, 0, 0, 254};
    std::memcpy(&address.IPv4, octets, sizeof octets);
    EXPECT_EQ(captured([&] { pm_lines{2, 12}.address("Source", address); }), "  Source    : 10.0.0.254\n");
}

TEST(LabelLines, PrintIPv6InItsShortestForm) {
    pm_record_address address = address_of_kind(PM_RECORD_ADDRESS_IPV6);
    address.IPv6.octets[0] = 0x20;
    address.IPv6.octets[1] = 0x01;
    address.IPv6.octets[2] = 0x0d;
    address.IPv6.octets[3] = 0xb8;
    address.IPv6.octets[15] = 1;
    EXPECT_EQ(captured([&] { pm_lines{0, 8}.address("Source", address); }), "Source  : 2001:db8::1\n");
}

TEST(LabelLines, CallAnyOtherAddressUnknown) {
    for (const std::int32_t kind : {2, 3, -1}) {
        const pm_record_address address = address_of_kind(kind);
        EXPECT_EQ(captured([&] { pm_lines{0, 8}.address("Source", address); }), "Source  : Unknown\n");
    }
}

TEST(LabelLines, PrintANumberWithASign) {
    EXPECT_EQ(captured([] { pm_lines{2, 10}.signed_number("NPU", 0xFFFFFFFF); }), "  NPU     : -1\n");
    EXPECT_EQ(captured([] { pm_lines{2, 10}.signed_number("NPU", 7); }), "  NPU     : 7\n");
}

TEST(LabelLines, PrintHexadecimalNumbersPlainOrWithEightDigits) {
    EXPECT_EQ(captured([] { pm_lines{2, 10}.hex("Handle", 0x2a); }), "  Handle  : 0x2a\n");
    EXPECT_EQ(captured([] { pm_lines{2, 10}.padded_hex("Handle", 0x2a); }), "  Handle  : 0x0000002a\n");
}

TEST(LabelLines, PrintPercentAndUnits) {
    EXPECT_EQ(captured([] { pm_lines{0, 6}.percent("Usage", 5); }), "Usage : 5%\n");
    EXPECT_EQ(captured([] { pm_lines{0, 6}.unit("Rate", 10, "pkts/sec"); }), "Rate  : 10 pkts/sec\n");
}

TEST(LabelLines, PrintFlagsAsWords) {
    EXPECT_EQ(captured([] {
                  pm_lines{0, 6}.flag("Stale", 1);
                  pm_lines{0, 6}.flag("Stale", 0);
                  pm_lines{0, 6}.enabled("Delay", 4);
                  pm_lines{0, 6}.enabled("Delay", 0);
              }),
              "Stale : True\n"
              "Stale : False\n"
              "Delay : Enabled\n"
              "Delay : Disabled\n");
}

TEST(LabelLines, WithoutAColumnHaveTheColonAfterTheLabel) {
    EXPECT_EQ(captured([] { pm_plain_lines(4).text("A flag set", "True"); }), "    A flag set: True\n");
    EXPECT_EQ(captured([] { pm_plain_lines(0).number("Missed count", 3U); }), "Missed count: 3\n");
}

}  // namespace
