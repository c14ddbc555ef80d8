// SPDX-License-Identifier: Apache-2.0
// Texts of addresses, beside those of the C library.
#include "base/pm_address_text.h"

#include <arpa/inet.h>
#include <array>
#include <cstdio>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using ipv6_octets = std::array<std::uint8_t, 16>;

std::string ipv4_text(std::array<std::uint8_t, 4> octets) {
    char text[PM_IPV4_TEXT_SIZE];
    return {text, pm_write_ipv4(text, octets.data())};
}

std::string ipv6_text(const ipv6_octets &octets) {
    char text[PM_IPV6_TEXT_SIZE];
    return {text, pm_write_ipv6(text, octets.data())};
}

std::string ipv6_text_of_words(std::array<unsigned, 8> words) {
    ipv6_octets octets{};
    for (std::size_t i = 0; i < words.size(); ++i) {
        octets[2 * i] = static_cast<std::uint8_t>(words[i] >> 8);
        octets[2 * i + 1] = static_cast<std::uint8_t>(words[i] & 0xFF);
    }
    return ipv6_text(octets);
}

TEST(AddressText, Ipv4IsDotted) {
    EXPECT_EQ(ipv4_text({0, 0, 0, 0}), "0.0.0.0");
    EXPECT_EQ(ipv4_text({10, 1, 99, 100}), "10.1.99.100");
    EXPECT_EQ(ipv4_text({255, 255, 255, 255}), "255.255.255.255");
}

TEST(AddressText, Ipv6IsAsShortAsItCanBe) {
    EXPECT_EQ(ipv6_text_of_words({0, 0, 0, 0, 0, 0, 0, 0}), "::");
    EXPECT_EQ(ipv6_text_of_words({0, 0, 0, 0, 0, 0, 0, 1}), "::1");
    EXPECT_EQ(ipv6_text_of_words({0x2001, 0xDB8, 0, 0, 0, 0, 0, 1}), "2001:db8::1");
    EXPECT_EQ(ipv6_text_of_words({0xFE80, 0, 0, 0, 0, 0, 0, 0}), "fe80::");
    EXPECT_EQ(ipv6_text_of_words({1, 0x23, 0x456, 0x789A, 0xBCDE, 0xF, 0x10, 0x100}), "1:23:456:789a:bcde:f:10:100");
    EXPECT_EQ(ipv6_text_of_words({0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}),
              "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff");
}

TEST(AddressText, OneZeroWordIsWrittenAndOfTwoRunsTheLongerOrTheFirstIsNot) {
    EXPECT_EQ(ipv6_text_of_words({1, 0, 2, 3, 4, 5, 6, 7}), "1:0:2:3:4:5:6:7");
    EXPECT_EQ(ipv6_text_of_words({0, 1, 2, 3, 4, 5, 6, 0}), "0:1:2:3:4:5:6:0");
    EXPECT_EQ(ipv6_text_of_words({1, 0, 0, 2, 0, 0, 0, 3}), "1:0:0:2::3");
    EXPECT_EQ(ipv6_text_of_words({1, 0, 0, 2, 3, 0, 0, 4}), "1::2:3:0:0:4");
    EXPECT_EQ(ipv6_text_of_words({0, 0, 1, 2, 3, 4, 5, 6}), "::1:2:3:4:5:6");
}

TEST(AddressText, AnEmbeddedIpv4AddressIsDotted) {
    EXPECT_EQ(ipv6_text_of_words({0, 0, 0, 0, 0, 0, 0x0A00, 0x0001}), "::10.0.0.1");
    EXPECT_EQ(ipv6_text_of_words({0, 0, 0, 0, 0, 0xFFFF, 0x0A00, 0x0001}), "::ffff:10.0.0.1");
    EXPECT_EQ(ipv6_text_of_words({0, 0, 0, 0, 0, 0xFFFE, 0x0A00, 0x0001}), "::fffe:a00:1");
    EXPECT_EQ(ipv6_text_of_words({0, 0, 0, 0, 0xFFFF, 0, 0x0A00, 0x0001}), "::ffff:0:a00:1");
}

TEST(AddressText, MacsAndBytesAreHexadecimal) {
    const std::array<std::uint8_t, 6> octets{0x00, 0x11, 0x22, 0xAB, 0x0C, 0xFF};
    char text[PM_MAC_TEXT_SIZE];
    EXPECT_EQ(std::string(text, pm_write_mac(text, octets.data())), "00:11:22:ab:0c:ff");
    EXPECT_EQ(std::string(text, pm_write_hexadecimal(text, octets.data(), 6)), "001122ab0cff");
    EXPECT_EQ(std::string(text, pm_write_hexadecimal(text, octets.data(), 0)), "");
}

TEST(AddressText, Ipv4IsTheTextOfTheCLibrary) {
    std::mt19937 random(1);
    for (int i = 0; i < 1000000; ++i) {
        const auto value = static_cast<std::uint32_t>(random());
        std::array<std::uint8_t, 4> octets{};
        for (std::size_t at = 0; at < octets.size(); ++at) {
            octets[at] = static_cast<std::uint8_t>(value >> (8 * at));
        }
        char expected[INET_ADDRSTRLEN];
        ASSERT_EQ(ipv4_text(octets), inet_ntop(AF_INET, octets.data(), expected, sizeof expected));
    }
}

// Each word is zero or short as often as not, so that all runs and lengths occur.
TEST(AddressText, Ipv6IsTheTextOfTheCLibrary) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 1000000; ++i) {
        ipv6_octets octets{};
        const std::uint64_t shape = random();
        const std::uint64_t bits[] = {random(), random()};
        for (std::size_t word = 0; word < 8; ++word) {
            const std::uint64_t kind = shape >> (4 * word) & 0xF;
            std::uint64_t value = bits[word / 4] >> (16 * (word % 4)) & 0xFFFF;
            value = kind < 7 ? 0 : kind < 12 ? value >> (kind - 3) : kind < 14 ? 0xFFFF : value;
            octets[2 * word] = static_cast<std::uint8_t>(value >> 8);
            octets[2 * word + 1] = static_cast<std::uint8_t>(value & 0xFF);
        }
        char expected[INET6_ADDRSTRLEN];
        ASSERT_EQ(ipv6_text(octets), inet_ntop(AF_INET6, octets.data(), expected, sizeof expected));
    }
}

TEST(AddressText, MacIsTheTextOfTheCLibrary) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 500000; ++i) {
        const std::uint64_t value = random();
        std::array<std::uint8_t, 6> octets{};
        for (std::size_t at = 0; at < octets.size(); ++at) {
            octets[at] = static_cast<std::uint8_t>(value >> (8 * at));
        }
        char expected[PM_MAC_TEXT_SIZE + 1];
        std::snprintf(expected, sizeof expected, "%02x:%02x:%02x:%02x:%02x:%02x", octets[0], octets[1], octets[2],
                      octets[3], octets[4], octets[5]);
        char text[PM_MAC_TEXT_SIZE];
        ASSERT_EQ(std::string(text, pm_write_mac(text, octets.data())), expected);
    }
}

}  // namespace
