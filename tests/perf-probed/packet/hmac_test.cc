// SPDX-License-Identifier: Apache-2.0
// The HMAC against the test cases of RFC 4231 and against OpenSSL's own.
#include "perf-probed/packet/hmac.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <string>

#include "tests/perf-probed/support/hex.h"

namespace {

using namespace probed;

std::string signed_hex(std::string_view key, std::string_view text) {
    return to_hex(hmac_key(key).sign({reinterpret_cast<const std::uint8_t *>(text.data()), text.size()}));
}

TEST(hmac, rfc_4231_cases_cut_to_16_octets) {
    EXPECT_EQ(signed_hex(std::string(20, '\x0b'), "Hi There"), "b0344c61d8db38535ca8afceaf0bf12b");
    EXPECT_EQ(signed_hex("Jefe", "what do ya want for nothing?"), "5bdcc146bf60754e6a042426089575c7");
    EXPECT_EQ(signed_hex(std::string(20, '\xaa'), std::string(50, '\xdd')), "773ea91e36800e46854db8ebd09181a7");
    EXPECT_EQ(signed_hex(std::string(131, '\xaa'), "Test Using Larger Than Block-Size Key - Hash Key First"),
              "60e431591ee0b67f0d8a26aacbf5b77f");
}

TEST(hmac, agrees_with_openssl_for_every_length_of_key_and_text_around_a_block) {
    for (std::size_t size = 0; size < 140; ++size) {
        const std::string key(size, 'k');
        const std::vector<std::uint8_t> text(size * 3 / 2, 0x5A);
        std::uint8_t whole[EVP_MAX_MD_SIZE];
        ::HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), text.data(), text.size(), whole, nullptr);
        EXPECT_EQ(to_hex(hmac_key(key).sign(text)), to_hex({whole, HMAC_SIZE})) << size;
    }
}

TEST(hmac, a_packet_is_signed_over_its_first_96_octets) {
    const hmac_key key("Jefe");
    std::vector<std::uint8_t> packet(120, 0x21);
    key.sign_packet(packet);
    EXPECT_TRUE(key.check_packet(packet));
    EXPECT_EQ(to_hex(std::span(packet).subspan(96, 16)), to_hex(key.sign(std::span(packet).first(96))));
    packet[119] ^= 1;  // after the base packet
    EXPECT_TRUE(key.check_packet(packet));
    packet[119] ^= 1;
}

TEST(hmac, every_changed_bit_is_noticed) {
    const hmac_key key("Jefe");
    std::vector<std::uint8_t> packet(112, 0x21);
    key.sign_packet(packet);
    for (std::size_t bit = 0; bit < 112 * 8; ++bit) {
        packet[bit / 8] = static_cast<std::uint8_t>(packet[bit / 8] ^ (1U << (bit % 8)));
        EXPECT_FALSE(key.check_packet(packet)) << bit;
        packet[bit / 8] = static_cast<std::uint8_t>(packet[bit / 8] ^ (1U << (bit % 8)));
    }
    EXPECT_FALSE(hmac_key("jefe").check_packet(packet));
}

}  // namespace
