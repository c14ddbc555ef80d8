// SPDX-License-Identifier: Apache-2.0
// The local platform's texts: addresses, times, names, bounded copies.
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <utility>

#include "platform/address.h"
#include "platform/bounded.h"
#include "platform/errcode.h"
#include "platform/ifnx.h"
#include "platform/kal_time.h"
#include "platform/opstore.h"
#include "platform/srv6_util.h"

namespace {

constexpr std::uint8_t DOCUMENTATION_V6[16] = {0x20, 0x01, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};

TEST(Address, IsReadInFourForms) {
    for (const char *text : {"0a000001", "0A000001", "10.0.0.1"}) {
        ip_address address{};
        ASSERT_EQ(hex_string2ip_addr(text, &address), 0) << text;
        EXPECT_EQ(address.family, 2U);
        EXPECT_EQ(std::memcmp(address.octets, "\x0a\0\0\x01\0\0\0\0\0\0\0\0\0\0\0\0", 16), 0);
    }
    for (const char *text : {"20010db8000000000000000000000001", "2001:db8::1"}) {
        ip_address address{};
        ASSERT_EQ(hex_string2ip_addr(text, &address), 0) << text;
        EXPECT_EQ(address.family, 10U);
        EXPECT_EQ(std::memcmp(address.octets, DOCUMENTATION_V6, 16), 0);
    }
}

TEST(Address, OfAnotherFormIsRefusedAndLeavesTheTarget) {
    for (const char *text : {"", "0a00000", "0a0000011", "0a00000g", "10.0.0", "10.0.0.256", "2001:db8::g", "name"}) {
        ip_address address{7, {9}};
        EXPECT_NE(hex_string2ip_addr(text, &address), 0) << text;
        EXPECT_EQ(address.family, 7U);
        EXPECT_EQ(address.octets[0], 9);
    }
}

TEST(Address, IsWrittenAsHexadecimalDigits) {
    char text[256];
    const ip_address v4{2, {10, 0, 0, 255}};
    EXPECT_EQ(ip_addr2hex_string2(&v4, text, sizeof text), 0);
    EXPECT_STREQ(text, "0a0000ff");
    ip_address v6{10, {}};
    std::memcpy(v6.octets, DOCUMENTATION_V6, 16);
    EXPECT_EQ(ip_addr2hex_string2(&v6, text, sizeof text), 0);
    EXPECT_STREQ(text, "20010db8000000000000000000000001");
    EXPECT_NE(ip_addr2hex_string2(&v6, text, 32), 0);
    EXPECT_EQ(ip_addr2hex_string2(&v6, text, 33), 0);
    const ip_address never_given{};
    EXPECT_NE(ip_addr2hex_string2(&never_given, text, sizeof text), 0);
}

TEST(Address, TextsLiveForSixteenCalls) {
    const char *first = inet_ntoa_r(0x0100000a);
    EXPECT_STREQ(first, "10.0.0.1");
    for (int i = 0; i < 15; ++i) {
        EXPECT_STREQ(inet6_ntoa_r(DOCUMENTATION_V6), "2001:db8::1");
    }
    EXPECT_STREQ(first, "10.0.0.1");
    EXPECT_EQ(inet_ntoa_r(0), first);  // the sixteenth takes the slot again
}

TEST(Address, APrefixHasTheTextOfItsFamily) {
    ip_prefix prefix{2, 24, {192, 0, 2, 0}};
    EXPECT_STREQ(ip_addr_string(&prefix), "192.0.2.0");
    EXPECT_EQ(ip_addr_ptr(&prefix), prefix.octets);
    prefix.family = 10;
    EXPECT_STREQ(ip_addr_string(&prefix), "c000:200::");
    prefix.family = 3;
    EXPECT_STREQ(ip_addr_string(&prefix), "Unknown");
}

TEST(Time, ConvertsBetweenTimespecAndMilliseconds) {
    const std::timespec time{1709647387, 42999999};
    EXPECT_EQ(kal_timespec_to_msec64(&time), 1709647387042ULL);
    std::timespec back{};
    kal_time_msec64_to_timespec(1709647387042ULL, &back);
    EXPECT_EQ(back.tv_sec, 1709647387);
    EXPECT_EQ(back.tv_nsec, 42000000);
}

TEST(Time, DifferenceBorrowsASecond) {
    const std::timespec earlier{10, 900000000};
    const std::timespec later{12, 100000000};
    std::timespec difference{};
    kal_time_diff(&earlier, &later, &difference);
    EXPECT_EQ(difference.tv_sec, 1);
    EXPECT_EQ(difference.tv_nsec, 200000000);
}

TEST(Time, IsFormattedInTheLocalZone) {
    setenv("TZ", "XYZ+3", 1);
    tzset();
    const std::timespec time{1709647387, 0};
    char text[32];
    kal_time_format_timespec2(&time, "%b %d %Y %T", KAL_TIME_LOCAL_ZONE, text, sizeof text);
    EXPECT_STREQ(text, "Mar 05 2024 11:03:07");
    kal_time_format_timespec2(&time, "%b %d %Y %T", KAL_TIME_LOCAL_ZONE, text, 8);
    EXPECT_STREQ(text, "");
    setenv("TZ", "UTC", 1);
    tzset();
}

// The calendar text of a time, by the platform and by the C library.
std::string calendar(std::time_t seconds) {
    const std::timespec time{seconds, 0};
    char text[64];
    kal_time_format_timespec2(&time, KAL_TIME_CALENDAR_FORMAT, KAL_TIME_LOCAL_ZONE, text, sizeof text);
    return text;
}
std::string calendar_of_the_library(std::time_t seconds) {
    std::tm local{};
    char text[64] = "";
    if (localtime_r(&seconds, &local) != nullptr) {
        static_cast<void>(std::strftime(text, sizeof text, KAL_TIME_CALENDAR_FORMAT, &local));
    }
    return text;
}

TEST(Time, IsWhatTheLibraryWritesInEveryZone) {
    // Zones with summer time, with a change at midnight, with an offset of odd seconds, and far from Greenwich.
    for (const char *zone : {"UTC", "CET-1CEST,M3.5.0,M10.5.0/3", "XYZ3ZYX,M10.3.0/0,M2.3.0/0", "LMT+0:44:30", "FAR-14",
                             "NEAR+12", "CET-1CEST,M3.5.0,M10.5.0/3"}) {
        setenv("TZ", zone, 1);
        tzset();
        std::mt19937_64 random(1);
        for (int i = 0; i < 20000; ++i) {
            const auto day = static_cast<std::time_t>(random() % 20000) * 86400;
            for (const std::time_t near : {day, day + static_cast<std::time_t>(random() % 86400)}) {
                ASSERT_EQ(calendar(near), calendar_of_the_library(near)) << zone << " " << near;
            }
        }
        for (const std::time_t time :
             {std::time_t{0}, std::time_t{-1}, std::time_t{253402300800}, std::time_t{1} << 61}) {
            EXPECT_EQ(calendar(time), calendar_of_the_library(time)) << zone << " " << time;
        }
    }
    setenv("TZ", "UTC", 1);
    tzset();
}

// Every half hour of a year in a zone with summer time, in the order of time.
TEST(Time, IsWhatTheLibraryWritesWhenTheOffsetChanges) {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    for (std::time_t time = 1704067200; time < 1704067200 + 366 * 86400; time += 1799) {
        ASSERT_EQ(calendar(time), calendar_of_the_library(time)) << time;
    }
    setenv("TZ", "UTC", 1);
    tzset();
}

// Times of many years in no order, most of them on another day than the one before.
TEST(Time, OfAnyDayReadsAsTheCLibraryWritesIt) {
    std::mt19937 random(1);
    for (const char *zone : {"UTC", "EST5EDT,M3.2.0,M11.1.0", "LHST-10:30LHDT-11,M10.1.0,M4.1.0"}) {
        setenv("TZ", zone, 1);
        tzset();
        for (int i = 0; i < 100000; ++i) {
            const auto time = static_cast<std::time_t>(random());
            ASSERT_EQ(calendar(time), calendar_of_the_library(time)) << zone << " " << time;
            ASSERT_EQ(calendar(time + 1800), calendar_of_the_library(time + 1800)) << zone << " " << time;
        }
    }
    setenv("TZ", "UTC", 1);
    tzset();
}

TEST(Time, NowIsTheMomentOfAReplay) {
    setenv("PERF_SHOW_NOW", "1709647387042", 1);
    std::timespec now{};
    kal_time_get_timespec_realtime(&now);
    EXPECT_EQ(now.tv_sec, 1709647387);
    EXPECT_EQ(now.tv_nsec, 42000000);
    unsetenv("PERF_SHOW_NOW");
}

TEST(Time, NowIsTheClocksUnlessAReplayGivesANumber) {
    for (const char *no_number : {"", "yesterday", "17096x", "-1", "18446744073709551616"}) {
        setenv("PERF_SHOW_NOW", no_number, 1);
        const std::time_t before = std::time(nullptr);
        std::timespec now{};
        kal_time_get_timespec_realtime(&now);
        EXPECT_GE(now.tv_sec + 1, before) << no_number;
        EXPECT_LE(now.tv_sec, std::time(nullptr) + 1) << no_number;
    }
    unsetenv("PERF_SHOW_NOW");
}

TEST(Time, AReplaysMomentInSecondsIsRefusedAndToldOnce) {
    testing::internal::CaptureStderr();
    for (const char *seconds : {"1709647387", "1000000000", "99999999999"}) {
        setenv("PERF_SHOW_NOW", seconds, 1);
        std::timespec now{};
        kal_time_get_timespec_realtime(&now);
        EXPECT_LE(std::time(nullptr) - now.tv_sec, 1) << seconds;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "perf-show: PERF_SHOW_NOW=1709647387 is in seconds; it is ignored, for it takes milliseconds\n");
    for (const auto &[msec, expected] : {std::pair{"100000000000", 100000000}, {"999999999", 999999}}) {
        setenv("PERF_SHOW_NOW", msec, 1);
        std::timespec now{};
        kal_time_get_timespec_realtime(&now);
        EXPECT_EQ(now.tv_sec, expected);
    }
    unsetenv("PERF_SHOW_NOW");
}

TEST(Time, ADurationHasDaysHoursMinutesAndSeconds) {
    EXPECT_STREQ(sprint_dhms(0), "0d 00:00:00");
    EXPECT_STREQ(sprint_dhms(93784), "1d 02:03:04");
    EXPECT_STREQ(sprint_dhms(0xFFFFFFFF), "49710d 06:28:15");
}

TEST(InterfaceName, IsParsedByItsNumbers) {
    ifnx_parsed_name parsed{};
    ASSERT_EQ(ifnx_ifname_parse("eth0/1/2/3", 0, &parsed), 0U);
    EXPECT_EQ(parsed.kind, 2U);
    EXPECT_EQ(parsed.location[0], 0U);
    EXPECT_EQ(parsed.location[1], 1U);
    EXPECT_EQ(parsed.location[2], 2U);
    for (const char *name : {"tunnel-te10", "Bundle-Ether7.100", "eth0"}) {
        parsed = {};
        EXPECT_EQ(ifnx_ifname_parse(name, 0, &parsed), 0U) << name;
        EXPECT_EQ(parsed.kind, 1U) << name;
    }
    parsed = {};
    EXPECT_EQ(ifnx_ifname_parse("eth0/1/0/4.100", 0, &parsed), 0U);
    EXPECT_EQ(parsed.kind, 2U);
}

TEST(InterfaceName, OfAnotherFormIsInvalid) {
    for (const char *name : {"", "eth", "0/1/0/4", "eth0/1", "eth0/1/0", "eth0/1/0/4/5", "eth0/1/0/", "eth0.", "eth0.x",
                             "eth0 ", "eth 0", "eth0/1/0/x", "eth99999999999", "policy_1"}) {
        ifnx_parsed_name parsed{};
        EXPECT_EQ(ifnx_ifname_parse(name, 0, &parsed), 22U) << name;
        EXPECT_EQ(parsed.kind, 0U) << name;
    }
}

std::string encoded(const char *text) {
    char *result = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(opstore_string_encode(text, &result, &length), 0U);
    const std::string copy = result;
    EXPECT_EQ(copy.size(), length);
    std::free(result);
    return copy;
}

TEST(Component, EscapesAllButLettersDigitsDotUnderscoreAndDash) {
    EXPECT_EQ(encoded("Gold-1_a.b"), "Gold-1_a.b");
    EXPECT_EQ(encoded("a/b,c d%"), "a%2Fb%2Cc%20d%25");
    EXPECT_EQ(encoded("\xc3\xa9\x7f"), "%C3%A9%7F");
    EXPECT_EQ(encoded(""), "");
}

TEST(Component, DecodesWhatItEncoded) {
    std::string all;
    for (int byte = 1; byte < 256; ++byte) {
        all.push_back(static_cast<char>(byte));
    }
    char *decoded = nullptr;
    std::size_t length = 0;
    ASSERT_EQ(opstore_string_decode(encoded(all.c_str()).c_str(), &decoded, &length), 0U);
    EXPECT_EQ(decoded, all);
    EXPECT_EQ(length, 255U);
    std::free(decoded);
}

TEST(Component, ThatIsDamagedIsRefused) {
    for (const char *text : {"%", "a%2", "%zz", "%2z", "%00", "%-1", "%+1"}) {
        char *decoded = nullptr;
        std::size_t length = 0;
        EXPECT_EQ(opstore_string_decode(text, &decoded, &length), 22U) << text;
        std::free(decoded);
    }
    char *decoded = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(opstore_string_encode(nullptr, &decoded, &length), 22U);
    EXPECT_EQ(opstore_string_decode(nullptr, &decoded, &length), 22U);
}

TEST(Bounded, CopiesThatDoNotFitLeaveAnEmptyText) {
    char text[4] = "abc";
    EXPECT_NE(strncpy_s(text, sizeof text, "long", 4), 0U);
    EXPECT_STREQ(text, "");
    EXPECT_EQ(strncpy_s(text, sizeof text, "long", 3), 0U);
    EXPECT_STREQ(text, "lon");
    EXPECT_NE(strncpy_s(text, sizeof text, nullptr, 3), 0U);
    EXPECT_STREQ(text, "");
    EXPECT_NE(strncpy_s(nullptr, 4, "a", 1), 0U);
    char bytes[4] = {1, 2, 3, 4};
    EXPECT_NE(memcpy_s(bytes, sizeof bytes, "12345", 5), 0U);
    EXPECT_EQ(std::memcmp(bytes, "\0\0\0\0", 4), 0);
    EXPECT_EQ(memcpy_s(bytes, sizeof bytes, "1234", 4), 0U);
    EXPECT_EQ(std::memcmp(bytes, "1234", 4), 0);
}

TEST(Bounded, SafeCopyCutsAndTerminates) {
    char text[4];
    safe_strncpy(text, "long", sizeof text);
    EXPECT_STREQ(text, "lon");
    safe_strncpy(text, nullptr, sizeof text);
    EXPECT_STREQ(text, "");
    safe_strncpy(nullptr, "a", 1);
}

TEST(Bounded, CompareReportsThroughItsResult) {
    int result = 7;
    EXPECT_EQ(strcmp_s("abc", 3, "abc", &result), 0U);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(strcmp_s("abc", 3, "abd", &result), 0U);
    EXPECT_LT(result, 0);
    EXPECT_EQ(strcmp_s("abd", 2, "ab", &result), 0U);
    EXPECT_EQ(result, 0) << "the text ends after its size";
    EXPECT_EQ(strcmp_s("ab", 2, "abc", &result), 0U);
    EXPECT_LT(result, 0) << "a beginning is not the whole";
    EXPECT_EQ(strcmp_s("abc", 3, "ab", &result), 0U);
    EXPECT_GT(result, 0);
    EXPECT_NE(strcmp_s(nullptr, 2, "abc", &result), 0U);
}

TEST(Bounded, NamedMemoryIsZero) {
    auto *block = static_cast<unsigned char *>(calloc_named(2, 8, "tag"));
    ASSERT_NE(block, nullptr);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(block[i], 0);
    }
    std::free(block);
}

TEST(Srv6, NamesFormatsAndBehaviours) {
    EXPECT_STREQ(srv6_util_sid_fmt_str(0), "base");
    EXPECT_STREQ(srv6_util_sid_fmt_str(1), "f3216");
    EXPECT_STREQ(srv6_util_sid_fmt_str(2), "f3232");
    EXPECT_STREQ(srv6_util_sid_fmt_str(3), "unknown");
    const struct {
        std::uint32_t code;
        const char *name;
    } behaviours[] = {
        {0, "unknown"},
        {1, "End"},
        {2, "End with PSP"},
        {3, "End with USP"},
        {4, "End with PSP & USP"},
        {5, "End.X"},
        {8, "End.X with PSP & USP"},
        {9, "End.T"},
        {12, "End.T with PSP & USP"},
        {13, "unknown"},
        {14, "End.B6.Encaps"},
        {15, "End.BM"},
        {16, "End.DX6"},
        {17, "End.DX4"},
        {18, "End.DT6"},
        {19, "End.DT4"},
        {20, "End.DT46"},
        {21, "End.DX2"},
        {22, "End.DX2V"},
        {23, "End.DT2U"},
        {24, "End.DT2M"},
        {25, "unknown"},
        {26, "unknown"},
        {27, "End.B6.Encaps.Red"},
        {28, "End with USD"},
        {29, "End with PSP & USD"},
        {30, "End with USP & USD"},
        {31, "End with PSP, USP & USD"},
        {32, "End.X with USD"},
        {35, "End.X with PSP, USP & USD"},
        {36, "End.T with USD"},
        {39, "End.T with PSP, USP & USD"},
        {40, "unknown"},
        {0xFFFFFFFF, "unknown"},
    };
    for (const auto &each : behaviours) {
        EXPECT_STREQ(srv6_util_end_func_str(each.code), each.name) << each.code;
    }
}

TEST(Errcode, HasATextForEachCode) {
    EXPECT_STREQ(errcode_strerror(0), "Success");
    EXPECT_STREQ(errcode_strerror(6), "Item not found");
    EXPECT_STREQ(errcode_strerror(22), "Invalid argument");
    EXPECT_STREQ(errcode_strerror(0x40812a00), "Not published on this node");
    EXPECT_STREQ(errcode_strerror(0x40818600), "Publisher unreachable");
    EXPECT_STREQ(errcode_strerror(0x40818a00), "Publisher starting");
    EXPECT_STREQ(errcode_strerror(0x40819000), "Publisher stopped");
    EXPECT_STREQ(errcode_strerror(0x8081c200), "Store client not available");
    EXPECT_STREQ(errcode_strerror(77), "Unknown error");
    for (const errcode code :
         {OPSTORE_DAMAGED, OPSTORE_BUSY, PARCEL_MALFORMED, PARCEL_CHECKSUM, PARCEL_OTHER_TYPE, PARCEL_UNKNOWN_SCHEMA,
          PARCEL_SCHEMA_CHANGED, PARCEL_BAD_DESCRIPTOR, ERRCODE_NO_MEMORY}) {
        EXPECT_STRNE(errcode_strerror(code), "Unknown error") << code;
    }
}

}  // namespace
