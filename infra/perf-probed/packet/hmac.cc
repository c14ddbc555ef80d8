// SPDX-License-Identifier: Apache-2.0
// HMAC (RFC 2104) over two saved SHA-256 states.
//
// OpenSSL's newer digest contexts allocate when a state is copied, which this program must not do for each packet, so
// the plain structures are used; OpenSSL 3 marks them as deprecated.
#define OPENSSL_SUPPRESS_DEPRECATED
#include "perf-probed/packet/hmac.h"

#include <algorithm>
#include <openssl/crypto.h>

namespace probed {
namespace {

constexpr std::size_t BLOCK = 64;

SHA256_CTX state_after_pad(const std::array<std::uint8_t, BLOCK> &key, std::uint8_t pad) {
    std::array<std::uint8_t, BLOCK> block{};
    std::ranges::transform(key, block.begin(),
                           [pad](std::uint8_t octet) { return static_cast<std::uint8_t>(octet ^ pad); });
    SHA256_CTX state;
    SHA256_Init(&state);
    SHA256_Update(&state, block.data(), block.size());
    OPENSSL_cleanse(block.data(), block.size());
    return state;
}

}  // namespace

hmac_key::hmac_key(std::string_view key) {
    std::array<std::uint8_t, BLOCK> block{};
    if (key.size() > BLOCK) {
        SHA256(reinterpret_cast<const unsigned char *>(key.data()), key.size(), block.data());
    } else {
        std::ranges::copy(key, block.begin());
    }
    inner_ = state_after_pad(block, 0x36);
    outer_ = state_after_pad(block, 0x5c);
    OPENSSL_cleanse(block.data(), block.size());
}

hmac_key::~hmac_key() {
    OPENSSL_cleanse(&inner_, sizeof inner_);
    OPENSSL_cleanse(&outer_, sizeof outer_);
}

std::array<std::uint8_t, HMAC_SIZE> hmac_key::sign(std::span<const std::uint8_t> text) const {
    std::uint8_t digest[SHA256_DIGEST_LENGTH];
    SHA256_CTX state = inner_;
    SHA256_Update(&state, text.data(), text.size());
    SHA256_Final(digest, &state);
    state = outer_;
    SHA256_Update(&state, digest, sizeof digest);
    SHA256_Final(digest, &state);
    std::array<std::uint8_t, HMAC_SIZE> mac;
    std::copy_n(digest, HMAC_SIZE, mac.begin());
    return mac;
}

bool hmac_key::check(std::span<const std::uint8_t> text, std::span<const std::uint8_t> mac) const {
    const std::array<std::uint8_t, HMAC_SIZE> expected = sign(text);
    return mac.size() == HMAC_SIZE && CRYPTO_memcmp(expected.data(), mac.data(), HMAC_SIZE) == 0;
}

void hmac_key::sign_packet(std::span<std::uint8_t> packet) const {
    const std::array<std::uint8_t, HMAC_SIZE> mac = sign(packet.first(HMAC_OFFSET));
    std::ranges::copy(mac, packet.begin() + HMAC_OFFSET);
}

bool hmac_key::check_packet(std::span<const std::uint8_t> packet) const {
    return check(packet.first(HMAC_OFFSET), packet.subspan(HMAC_OFFSET, HMAC_SIZE));
}

}  // namespace probed
