// Label lines and time stamps.
#include "pm_show_client/blocks/lines.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <gtest/gtest.h>

#include "pm_show_client/pm_show_clock.h"
#include "pm_show_client/pm_show_headers.h"
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

TEST(LabelText, PutsTheColonInItsColumnWhateverTheIndent) {
    EXPECT_EQ(captured([] { pm_print_label_str(36, 2, "State", "Up"); }), "  State                             : Up\n");
    EXPECT_EQ(captured([] { pm_print_label_str(36, 0, "State", "Up"); }), "State                               : Up\n");
}

TEST(LabelText, ALongLabelPushesItsColonRight) {
    EXPECT_EQ(captured([] { pm_print_label_str(8, 2, "Longer label", "x"); }), "  Longer label: x\n");
}

TEST(LabelText, AnIndentBeyondTheWidthPadsByTheDifference) {
    EXPECT_EQ(captured([] { pm_print_label_str(4, 10, "ab", "x"); }), "          ab    : x\n");
    EXPECT_EQ(captured([] { pm_print_label_str(4, 4, "ab", "x"); }), "    ab: x\n");
}

TEST(LabelText, AnAbsentTextPrintsAWord) {
    EXPECT_EQ(captured([] { pm_print_label_str(8, 0, "Name", nullptr); }), "Name    : (null)\n");
}

TEST(LabelText, IsCutLikeEveryLine) {
    const std::string text(300, 't');
    EXPECT_EQ(captured([&] { pm_print_label_str(8, 2, "Name", text.c_str()); }),
              "  Name  : " + std::string(255 - 8, 't'));
}

TEST(LabelNumber, PrintsNoUnit) {
    EXPECT_EQ(captured([] { pm_print_label_u32(36, 4, "Rolling average", 7, "%"); }),
              "    Rolling average                 : 7\n");
    EXPECT_EQ(captured([] { pm_print_label_u64(36, 4, "Packets", 18446744073709551615ULL, "pkts"); }),
              "    Packets                         : 18446744073709551615\n");
    EXPECT_EQ(captured([] { pm_print_label_u32(20, 0, "Most", 4294967295U, ""); }),
              "Most                : 4294967295\n");
}

TEST(Counter, HasItsColonInColumn48) {
    EXPECT_EQ(captured([] { pm_print_counter(2, "Total sent", 5); }),
              "  Total sent                                    : 5\n");
    EXPECT_EQ(captured([] { pm_print_counter(12, "Total sent", 1ULL << 63); }),
              "            Total sent                          : 9223372036854775808\n");
}

pm_record_address address_of_kind(std::int32_t kind) {
    pm_record_address address{};
    address.IPAddressType = static_cast<pm_addr_type_e>(kind);
    return address;
}

TEST(LabelAddress, PrintsIPv4) {
    pm_record_address address = address_of_kind(PM_RECORD_ADDRESS_IPV4);
    const std::uint8_t octets[] = {10, 0, 0, 254};
    std::memcpy(&address.IPv4, octets, sizeof octets);
    EXPECT_EQ(captured([&] { pm_print_label_address("Source", address, 2, 12); }), "  Source    : 10.0.0.254\n");
}

TEST(LabelAddress, PrintsIPv6InItsShortestForm) {
    pm_record_address address = address_of_kind(PM_RECORD_ADDRESS_IPV6);
    address.IPv6.octets[0] = 0x20;
    address.IPv6.octets[1] = 0x01;
    address.IPv6.octets[2] = 0x0d;
    address.IPv6.octets[3] = 0xb8;
    address.IPv6.octets[15] = 1;
    EXPECT_EQ(captured([&] { pm_print_label_address("Source", address, 0, 8); }), "Source  : 2001:db8::1\n");
}

TEST(LabelAddress, AnyOtherKindIsUnknown) {
    for (const std::int32_t kind : {2, 3, -1}) {
        const pm_record_address address = address_of_kind(kind);
        EXPECT_EQ(captured([&] { pm_print_label_address("Source", address, 0, 8); }), "Source  : Unknown\n");
    }
}

class TimeText : public testing::Test {
protected:
    void SetUp() override { set_zone("UTC"); }
    void TearDown() override { set_zone("UTC"); }
    static void set_zone(const char *zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
};

TEST_F(TimeText, ZeroMeansNever) {
    EXPECT_STREQ(pm_time_str(0), "N/A");
    EXPECT_STREQ(pm_time_nsec_str(0), "N/A");
}

TEST_F(TimeText, IsTheCalendarTimeWithMilliseconds) {
    EXPECT_STREQ(pm_time_str(1), "Jan 01 1970 00:00:00.001");
    EXPECT_STREQ(pm_time_str(1709647387042ULL), "Mar 05 2024 14:03:07.042");
}

TEST_F(TimeText, IsInTheLocalTimeZone) {
    set_zone("XYZ-2");
    EXPECT_STREQ(pm_time_str(1709647387042ULL), "Mar 05 2024 16:03:07.042");
}

TEST_F(TimeText, ANanosecondStampReadsItsDateAsMilliseconds) {
    // 1709647387042 % 1000000000 = 647387042
    EXPECT_STREQ(pm_time_nsec_str(1709647387042ULL), "Mar 05 2024 14:03:07.647387042");
    EXPECT_STREQ(pm_time_nsec_str(5), "Jan 01 1970 00:00:00.000000005");
}

TEST_F(TimeText, TheTwoKindsDoNotOverwriteEachOther) {
    const char *msec = pm_time_str(1);
    const char *nsec = pm_time_nsec_str(2);
    EXPECT_STREQ(msec, "Jan 01 1970 00:00:00.001");
    EXPECT_STREQ(nsec, "Jan 01 1970 00:00:00.000000002");
}

TEST_F(TimeText, TwoInOneStatementAreTheLaterOne) {
    const char *first = pm_time_str(1);
    const char *second = pm_time_str(2);
    EXPECT_STREQ(first, second);
}

std::string duration_text(const pm_duration &duration) {
    return captured([&] { pm_print<"%u.%u">(duration.seconds, duration.msec); });
}

TEST(Duration, IsSecondsAndUnpaddedMilliseconds) {
    EXPECT_EQ(duration_text(pm_duration_of(1005)), "1.5");
    EXPECT_EQ(duration_text(pm_duration_of(1050)), "1.50");
    EXPECT_EQ(duration_text(pm_duration_of(999)), "0.999");
    EXPECT_EQ(duration_text(pm_duration_of(0)), "0.0");
}

TEST(Duration, AnAgeCountsFromTheStartOfTheProgram) {
    pm_show_now_msec = 1709647387042ULL;
    EXPECT_EQ(duration_text(pm_age_of(1709647385037ULL)), "2.5");
    EXPECT_EQ(duration_text(pm_age_of(pm_show_now_msec)), "0.0");
    pm_show_now_msec = 0;
}

TEST(Duration, AnAgeOfTheFutureShowsTheLowBitsOfWhatWrapped) {
    // 2^64 - 1 ms is 18446744073709551 s and 615 ms; 18446744073709551 mod 2^32 is 1271310319.
    pm_show_now_msec = 0;
    EXPECT_EQ(duration_text(pm_age_of(1)), "1271310319.615");
}

TEST(Separators, HaveTheirShape) {
    EXPECT_EQ(std::string(pm_show_separator), std::string(160, '-') + "\n");
    EXPECT_EQ(std::string(pm_show_table_rule), " " + std::string(158, '-') + " \n");
}

}  // namespace
