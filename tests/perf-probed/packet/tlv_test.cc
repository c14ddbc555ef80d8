// SPDX-License-Identifier: Apache-2.0
// What a reflector makes of TLVs, from bytes written by hand.
#include "perf-probed/packet/tlv.h"

#include <gtest/gtest.h>

#include "perf-probed/packet/byte_order.h"
#include "tests/perf-probed/support/hex.h"

namespace {

using namespace probed;

constexpr tlv_context CONTEXT{0x2E, 0x01, clock_source::ntp, stamp_method::software_local,
                              stamp_method::software_local};

struct reflected {
    std::string hex;
    tlv_verdict verdict;
};

reflected reflect(std::string_view hex, const hmac_key *key = nullptr) {
    std::vector<std::uint8_t> tlvs = from_hex(hex);
    const tlv_verdict verdict = reflect_tlvs(tlvs, CONTEXT, key);
    return {to_hex(tlvs), verdict};
}

std::string plain(std::string_view hex) { return to_hex(from_hex(hex)); }

TEST(tlv, padding_is_understood_and_comes_back) {
    const reflected back = reflect("80 01 0003 aabbcc");
    EXPECT_EQ(back.hex, plain("00 01 0003 aabbcc"));
    EXPECT_FALSE(back.verdict.malformed);
}

TEST(tlv, an_unknown_type_keeps_u_and_its_value) {
    EXPECT_EQ(reflect("80 c8 0002 1234  80 01 0000").hex, plain("80 c8 0002 1234  00 01 0000"));
}

// Location, direct measurement, access report and follow-up telemetry: a reflector without state has nothing to say.
TEST(tlv, types_that_need_a_state_are_not_understood) {
    const char TLVS[] =
        "80 02 0004 00000000  80 05 000c 000000010000000000000000  80 06 0004 00000000  "
        "80 07 0010 00000000000000000000000000000000";
    const reflected back = reflect(TLVS);
    EXPECT_EQ(back.hex, plain(TLVS));
    EXPECT_FALSE(back.verdict.malformed);
}

TEST(tlv, the_sender_does_not_decide_about_u) { EXPECT_EQ(reflect("00 c8 0001 12").hex, plain("80 c8 0001 12")); }

TEST(tlv, time_stamp_information_says_where_the_stamps_come_from) {
    EXPECT_EQ(reflect("80 03 0004 00000000").hex, plain("00 03 0004 01 02 01 02"));
}

TEST(tlv, class_of_service_reports_the_dscp_and_asks_for_one) {
    // DSCP1 = 0x0a; the answer adds DSCP2 = 0x2e and ECN = 1: 001010 101110 01 00.
    const reflected back = reflect("80 04 0004 28000000");
    EXPECT_EQ(back.hex, plain("00 04 0004 2ae40000"));
    EXPECT_EQ(back.verdict.reply_dscp, 0x0A);
}

TEST(tlv, a_length_beyond_the_packet_gets_m_and_ends_the_work) {
    const reflected back = reflect("80 01 0000  80 01 0005 aabbccdd");
    EXPECT_EQ(back.hex, plain("00 01 0000  40 01 0005 aabbccdd"));
    EXPECT_TRUE(back.verdict.malformed);
}

TEST(tlv, a_known_type_of_another_size_gets_m_and_the_rest_is_left_alone) {
    const reflected back = reflect("80 04 0003 280000  80 c8 0001 12");
    EXPECT_EQ(back.hex, plain("40 04 0003 280000  80 c8 0001 12"));
    EXPECT_TRUE(back.verdict.malformed);
}

TEST(tlv, an_end_too_short_for_a_header_is_left_alone) {
    for (const char *const rest : {"80", "80 01", "80 01 00"}) {
        const reflected back = reflect(std::string("80 01 0001 11") + rest);
        EXPECT_EQ(back.hex, plain(std::string("00 01 0001 11") + rest));
        EXPECT_TRUE(back.verdict.malformed);
    }
}

TEST(tlv, no_tlv_at_all_is_fine) { EXPECT_FALSE(reflect("").verdict.malformed); }

TEST(tlv, an_hmac_is_not_understood_in_unauthenticated_mode) {
    EXPECT_EQ(reflect("80 08 0010 00112233445566778899aabbccddeeff").hex,
              plain("80 08 0010 00112233445566778899aabbccddeeff"));
}

std::string with_hmac(std::string_view tlvs, const hmac_key &key) {
    return std::string(tlvs) + "80080010" + to_hex(key.sign(from_hex(tlvs)));
}

TEST(tlv, in_authenticated_mode_the_answer_has_an_hmac_of_its_own) {
    const hmac_key key("secret");
    const reflected back = reflect(with_hmac("80 04 0004 28000000", key), &key);
    const std::string answered = "00 04 0004 2ae40000";
    EXPECT_EQ(back.hex, plain(answered + "00080010" + to_hex(key.sign(from_hex(answered)))));
    EXPECT_FALSE(back.verdict.integrity_failed);
}

TEST(tlv, a_wrong_hmac_puts_i_into_every_tlv) {
    const hmac_key key("secret");
    const reflected back = reflect("80 c8 0001 12  80 08 0010 00112233445566778899aabbccddeeff", &key);
    EXPECT_EQ(back.hex, plain("a0 c8 0001 12  a0 08 0010 00112233445566778899aabbccddeeff"));
    EXPECT_TRUE(back.verdict.integrity_failed);
}

TEST(tlv, a_missing_hmac_fails_unless_padding_is_all_there_is) {
    const hmac_key key("secret");
    EXPECT_TRUE(reflect("80 c8 0001 12", &key).verdict.integrity_failed);
    EXPECT_EQ(reflect("80 01 0002 0000", &key).hex, plain("00 01 0002 0000"));
}

TEST(tlv, an_hmac_that_is_not_the_last_fails_but_padding_may_follow) {
    const hmac_key key("secret");
    EXPECT_TRUE(reflect(with_hmac("80040004 28000000", key) + "80c80000", &key).verdict.integrity_failed);
    EXPECT_FALSE(reflect(with_hmac("80040004 28000000", key) + "80010000", &key).verdict.integrity_failed);
}

TEST(tlv, an_hmac_of_another_size_fails) {
    const hmac_key key("secret");
    EXPECT_TRUE(reflect("80 08 000f 00112233445566778899aabbccddee", &key).verdict.integrity_failed);
}

TEST(tlv, padding_fills_what_it_is_given) {
    std::vector<std::uint8_t> room(7, 0xEE);
    ASSERT_TRUE(write_padding(room));
    EXPECT_EQ(to_hex(room), plain("80 01 0003 000000"));
    EXPECT_FALSE(write_padding(std::span(room).first(3)));
}

}  // namespace
